#pragma once

#include <QCoreApplication>
#include <QString>

class Ui_SignDialog;

namespace Sealkit::Internal {

namespace Command {
struct Result;
}
struct TargetToolsInfo;

/// Shows in the sign dialog what its tools have found. It runs nothing.
class ResultView
{
    Q_DECLARE_TR_FUNCTIONS(Sealkit::Internal::ResultView)

public:
    explicit ResultView(Ui_SignDialog *ui);

    /// Offers what can be done with the tools of a target, and says which of them it lacks.
    void showTools(const TargetToolsInfo &tools);
    /// Says what to do when openssl is lacking.
    void showOpenssl(const TargetToolsInfo &tools);

    // How an operation went: an empty problem is a good end. What is said of a package names it and
    // the time, since it stays when the user chooses another one.
    void showSigning(const QString &package, const QString &signers, const QString &problem);
    void showRemoval(const QString &package, const QString &problem);
    void clearSigning();
    /// The key at \a usedKey was there before; empty when it was made for the \a request.
    void showRequest(const QString &problem, const QString &usedKey, const QString &request);
    void clearRequest();
    /// Takes \a reason away, which does not hold any more.
    void forgetReason(const QString &reason);

    /// Offers what a new key at \a path can be like; a key that exists is as it is.
    void showKeyToUse(const QString &path);

    void showVerdict(const Command::Result &result, const QString &package);
    void showNoVerdict(); ///< for lack of a tool
    void clearVerdict();

    void showDump(const QString &dump, const QString &package);
    void showNoDump(); ///< for lack of a tool
    void clearDump();

private:
    Ui_SignDialog *const m_ui;
};

/// The subject and group lines of a signature's dump.
QString parseDumpForSort(const QString &dump);

} // namespace Sealkit::Internal
