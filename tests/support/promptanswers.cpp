#include "promptanswers.h"

#include <QTest>
#include <QtWidgets>

PromptAnswers::PromptAnswers(const QStringList &answers, std::chrono::milliseconds interval)
    : m_answers(answers)
{
    connect(&m_timer, &QTimer::timeout, this, &PromptAnswers::answer);
    m_timer.start(interval);
}

void PromptAnswers::answer()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (!dialog)
        return;
    auto *edit = dialog->findChild<QLineEdit *>();
    if (!edit || edit->echoMode() != QLineEdit::Password)
        return;

    QStringList texts;
    for (const QLabel *label : dialog->findChildren<QLabel *>()) {
        if (label->isVisible() && label->buddy() != edit)
            texts << label->text();
    }
    m_prompts << texts.takeFirst();
    m_hints << texts.join(' ');
    QString answer = m_answers.isEmpty() ? QString() : m_answers.takeFirst();
    const bool declines = answer.isNull() || answer.endsWith(ESCAPE);
    edit->insert(answer.remove(ESCAPE));
    QTest::keyClick(edit, declines ? Qt::Key_Escape : Qt::Key_Return);
}
