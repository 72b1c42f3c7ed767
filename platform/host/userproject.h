#pragma once

#include <projectexplorer/project.h>

namespace ProjectExplorer::Host {

/// A project of a package description (`<folder>/rpm/<name>.spec`). What the user configured is
/// kept in a file beside it.
class UserProject final : public Project
{
    Q_OBJECT

public:
    explicit UserProject(const Utils::FilePath &projectFilePath);

    /// Reads the user's settings; without a file there are simply none. False, with the reason,
    /// when there is one that cannot be understood; it is then not overwritten.
    /// What is there for kits that are unknown now is kept for the next saving, also that one of
    /// them is the active one, until another target is chosen by setActiveTarget().
    bool restoreSettings(QString *errorMessage);
    /// False, with the reason, when the file cannot be written.
    bool saveSettings(QString *errorMessage);
    Utils::FilePath settingsFilePath() const;

private:
    QString m_savingForbiddenReason;
};

} // namespace ProjectExplorer::Host
