#pragma once

#include <QDialog>

#include <stop_token>

class QLabel;
class QLineEdit;

namespace Sealkit::Internal {

/// What stands beside a tool's prompt; empty texts leave nothing.
struct PromptHints
{
    QString note;    ///< what the pass phrase is for
    QString problem; ///< with the last answer to the same prompt
};

/// Asks for one pass phrase; does not accept an empty one, nor one with line breaks.
class PasswordDialogPrivate : public QDialog
{
    Q_OBJECT

public:
    explicit PasswordDialogPrivate(const QString &text, const PromptHints &hints = {});

    /// Returns what was typed, and removes it from the dialog.
    QString takePassword();

private:
    void validate();
    void showError(const QString &text);

    QLineEdit *m_passwordLineEdit;
    QLabel *m_errorLabel;
};

class PasswordDialog
{
public:
    /// Asks with \a text as the prompt. \a ok tells whether the user answered before \a stop was
    /// requested or the IDE closed; if not, the result is null.
    static QString getPassord(const QString &text,
                              bool *ok,
                              std::stop_token stop = {},
                              const PromptHints &hints = {});
};

} // namespace Sealkit::Internal
