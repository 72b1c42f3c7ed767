#pragma once

#include <utils/filepath.h>

#include <QWidget>

#include <memory>

namespace Kiln::Internal {
class KilnProcessStep;
}

class Ui_RpmsignExternalWidget;

namespace Sealkit::Internal {

/// Configures a rpmsign-external step: the global keys, or a key and certificate of its own that
/// lie in the workspace.
class RpmsignExternalWidget : public QWidget
{
    Q_OBJECT

public:
    explicit RpmsignExternalWidget(Kiln::Internal::KilnProcessStep *step);
    ~RpmsignExternalWidget() override;

    /// Only kept: paths must be in the workspace.
    void setSharedHomePath(const Utils::FilePath &path) { m_sharedHomePath = path; }
    void setSharedSrcPath(const Utils::FilePath &path);
    void formatAndSetSummaryText(const QString &text);

    /// Whether \a path lies in the workspace; otherwise \a error is a text for the user.
    bool verifyPath(const QString &path, QString *error) const;

public slots:
    /// An empty path changes nothing.
    void setKey(const QString &path);
    void setCertificate(const QString &path);
    /// Chooses between the global and custom keys; clears the paths of both choosers.
    void setDefault(bool useDefault);

signals:
    void keyChanged(const QString &path);
    void certificateChanged(const QString &path);
    void useDefaultValuesChanged(bool useDefaultValues);

private:
    void updatePathChoosers(int index);

    Kiln::Internal::KilnProcessStep *const m_step;
    const std::unique_ptr<Ui_RpmsignExternalWidget> m_ui;
    Utils::FilePath m_sharedHomePath;
    Utils::FilePath m_sharedSrcPath;
};

} // namespace Sealkit::Internal
