#include "passworddialog.h"

#include "ideclosing.h"

#include <coreplugin/icore.h>

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QVBoxLayout>

namespace Sealkit::Internal {

PasswordDialogPrivate::PasswordDialogPrivate(const QString &text, const PromptHints &hints)
    : m_passwordLineEdit(new QLineEdit)
    , m_errorLabel(new QLabel)
{
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);

    auto *promptLabel = new QLabel(text);
    // The prompt is a tool's text: a path in it may look like markup.
    promptLabel->setTextFormat(Qt::PlainText);
    m_passwordLineEdit->setEchoMode(QLineEdit::Password);
    m_errorLabel->setStyleSheet(QStringLiteral("color: red"));
    m_errorLabel->setTextFormat(Qt::PlainText);
    m_errorLabel->setWordWrap(true);
    m_errorLabel->hide();

    auto *formLayout = new QFormLayout;
    formLayout->addRow(tr("Password:"), m_passwordLineEdit);

    auto *buttonBox = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttonBox, &QDialogButtonBox::accepted, this, &PasswordDialogPrivate::validate);
    connect(buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(promptLabel);
    if (!hints.note.isEmpty()) {
        auto *noteLabel = new QLabel(hints.note);
        noteLabel->setTextFormat(Qt::PlainText);
        layout->addWidget(noteLabel);
    }
    layout->addLayout(formLayout);
    layout->addWidget(m_errorLabel);
    layout->addWidget(buttonBox);

    if (!hints.problem.isEmpty())
        showError(hints.problem);
    m_passwordLineEdit->setFocus(Qt::OtherFocusReason);
}

QString PasswordDialogPrivate::takePassword()
{
    const QString password = m_passwordLineEdit->text();
    m_passwordLineEdit->setText({}); // unlike clear(), this forgets the undo history
    return password;
}

void PasswordDialogPrivate::validate()
{
    static const QRegularExpression newline(QStringLiteral("\r\n|\r|\n"));
    const QString password = m_passwordLineEdit->text();
    if (password.isEmpty())
        showError(tr("Password can't be empty"));
    else if (password.contains(newline))
        showError(tr("Password contains invalid newline characters"));
    else
        accept();
}

void PasswordDialogPrivate::showError(const QString &text)
{
    m_errorLabel->setText(text);
    m_errorLabel->show();
}

QString PasswordDialog::getPassord(const QString &text,
                                   bool *ok,
                                   std::stop_token stop,
                                   const PromptHints &hints)
{
    *ok = false;
    if (isIdeClosing() || stop.stop_requested())
        return {};

    auto *dialog = new PasswordDialogPrivate(text, hints);
    // When the IDE closes, an open dialog would keep it from ending.
    QObject::connect(Core::ICore::instance(),
                     &Core::ICore::coreAboutToClose,
                     dialog,
                     &PasswordDialogPrivate::reject);
    const std::stop_callback rejectAtStop(stop, [dialog] { dialog->reject(); });
    *ok = dialog->exec() == QDialog::Accepted;
    // A declined dialog is not deleted, so its text must be removed.
    const QString password = dialog->takePassword();
    if (!*ok)
        return {};
    dialog->deleteLater();
    return password;
}

} // namespace Sealkit::Internal
