#include "promptanswerer.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

namespace Workbench {

static QLineEdit *passphraseEdit(const QDialog *dialog)
{
    const QList<QLineEdit *> edits = dialog->findChildren<QLineEdit *>();
    const auto hidesText = [](const QLineEdit *edit) {
        return edit->echoMode() == QLineEdit::Password;
    };
    const auto found = std::find_if(edits.begin(), edits.end(), hidesText);
    return found == edits.end() ? nullptr : *found;
}

static QString question(const QDialog *dialog)
{
    if (const auto *box = qobject_cast<const QMessageBox *>(dialog))
        return box->text();
    // A label with a buddy names a field; the question is the one without.
    for (const QLabel *label : dialog->findChildren<QLabel *>()) {
        if (!label->buddy() && !label->text().isEmpty())
            return label->text().trimmed();
    }
    return dialog->windowTitle();
}

static void decline(QDialog *dialog)
{
    dialog->close(); // as by the window's close button, which message boxes map to their "No"
    if (dialog->isVisible())
        dialog->reject();
}

void declineOpenDialogs()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *dialog = qobject_cast<QDialog *>(widget);
        if (dialog && dialog->isModal() && dialog->isVisible())
            decline(dialog);
    }
}

PromptAnswerer::PromptAnswerer(const std::optional<QString> &passphrase)
    : m_passphrase(passphrase)
{
    qApp->installEventFilter(this);
}

void PromptAnswerer::declineAll()
{
    m_declinesAll = true;
    declineOpenDialogs();
}

bool PromptAnswerer::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        // Not from within the dialog's own show(): its event loop has to run before it can end.
        if (const QPointer<QDialog> dialog = qobject_cast<QDialog *>(watched);
            dialog && dialog->isModal()) {
            QTimer::singleShot(0, this, [this, dialog] {
                if (dialog && dialog->isVisible())
                    deal(dialog);
            });
        }
    }
    return QObject::eventFilter(watched, event);
}

void PromptAnswerer::deal(QDialog *dialog)
{
    if (m_declinesAll) {
        decline(dialog);
        return;
    }
    const QString asked = question(dialog);
    const bool asksForPassphrase = passphraseEdit(dialog);
    if (answer(dialog))
        return;

    decline(dialog);
    if (!asksForPassphrase)
        emit declined(
            QString("A dialog asked: \"%1\". Declined: no display to ask on.").arg(asked));
    else if (m_passphrase)
        emit declined(QString("A tool asked: \"%1\". Declined: the pass phrase from the file "
                              "cannot be used.")
                          .arg(asked));
    else
        emit declined(QString("A tool asked: \"%1\". Declined: no display to ask on; use "
                              "--passphrase-file.")
                          .arg(asked));
}

// False when the dialog is still open afterwards.
bool PromptAnswerer::answer(QDialog *dialog)
{
    QLineEdit *edit = passphraseEdit(dialog);
    auto *buttons = dialog->findChild<QDialogButtonBox *>();
    QPushButton *ok = buttons ? buttons->button(QDialogButtonBox::Ok) : nullptr;
    if (!m_passphrase || !edit || !ok)
        return false;
    const QPointer<QDialog> guard(dialog);
    edit->setText(*m_passphrase);
    ok->click();
    return !guard || !guard->isVisible();
}

} // namespace Workbench
