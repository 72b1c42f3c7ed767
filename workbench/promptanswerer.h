#pragma once

#include <QObject>

#include <optional>

class QDialog;

namespace Workbench {

/// Closes all modal dialogs as a user would who wants none of what they offer.
void declineOpenDialogs();

/// Deals with modal dialogs where nobody can see them: types the pass phrase into dialogs that ask
/// for one and declines all others, so that no dialog is ever waited for.
class PromptAnswerer : public QObject
{
    Q_OBJECT

public:
    /// Watches the whole application. Without a \a passphrase every prompt is declined.
    explicit PromptAnswerer(const std::optional<QString> &passphrase);

    /// From now on everything is declined; what is open now is closed at once.
    void declineAll();

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    /// Says what was asked and why it was declined; never holds the pass phrase.
    void declined(const QString &explanation);

private:
    void deal(QDialog *dialog);
    bool answer(QDialog *dialog);

    std::optional<QString> m_passphrase;
    bool m_declinesAll = false;
};

} // namespace Workbench
