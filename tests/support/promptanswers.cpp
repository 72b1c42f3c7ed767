#include "promptanswers.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

PromptAnswers::PromptAnswers(const QStringList &answers)
    : m_answers(answers)
{
    connect(&m_timer, &QTimer::timeout, this, &PromptAnswers::answer);
    m_timer.start(5);
}

void PromptAnswers::answer()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
    if (!dialog)
        return;
    auto *edit = dialog->findChild<QLineEdit *>();
    if (!edit || edit->echoMode() != QLineEdit::Password)
        return;

    m_prompts << dialog->findChild<QLabel *>()->text();
    const QString answer = m_answers.isEmpty() ? QString() : m_answers.takeFirst();
    if (answer.isNull()) {
        QTest::keyClick(dialog, Qt::Key_Escape);
        return;
    }
    edit->insert(answer);
    QTest::keyClick(edit, Qt::Key_Return);
}
