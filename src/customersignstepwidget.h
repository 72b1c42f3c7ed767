#pragma once

#include <utils/filepath.h>

#include <QWidget>

#include <memory>

namespace Kiln::Internal {
class KilnProcessStep;
}

class Ui_CustomerSignStepWidget;

namespace Sealkit::Internal {

/// Configures a customer-sign step: its four files, which lie in the folders that the build engine
/// shares with the host, and whether debug packages are signed.
class CustomerSignStepWidget : public QWidget
{
    Q_OBJECT

public:
    explicit CustomerSignStepWidget(Kiln::Internal::KilnProcessStep *step);
    ~CustomerSignStepWidget() override;

    void setCommandText(const QString &text);
    QString commnadText() const; ///< kept for other callers, like its spelling
    /// Does nothing: the summary of the step stays as it is.
    void formatAndSetSummaryText(const QString & /*text*/) {}

    void setSharedHomePath(const Utils::FilePath &path);
    void setSharedSrcPath(const Utils::FilePath &path);

    void setBinariesKey(const QString &path);
    void setPackagesKey(const QString &path);
    void setPackagesCert(const QString &path);
    void setPackagesClientCert(const QString &path);
    void setSignDebugPackages(bool sign);

    /// Lets the user choose a file, from the shared home on; empty when declined. Kept for other
    /// callers: the fields of this widget browse by themselves.
    QString openFileSelectDialog(const QString &title);
    /// Whether \a path lies in one of the shared folders; otherwise \a error is a text for the
    /// user.
    bool verifyPath(const QString &path, QString *error) const;

signals:
    void binariesKeyChanged(const QString &path);
    void packagesKeyChanged(const QString &path);
    void packagesCertChanged(const QString &path);
    void packagesClientCertChanged(const QString &path);
    void signDebugPackages(bool sign);

private:
    void validatePaths();

    const std::unique_ptr<Ui_CustomerSignStepWidget> m_ui;
    Utils::FilePath m_sharedHomePath;
    Utils::FilePath m_sharedSrcPath;
};

} // namespace Sealkit::Internal
