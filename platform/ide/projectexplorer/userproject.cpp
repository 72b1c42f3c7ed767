#include <host/userproject.h>

#include "usersettings.h"

#include <utils/qtcassert.h>

namespace ProjectExplorer::Host {

UserProject::UserProject(const Utils::FilePath &projectFilePath)
    : Project(projectFilePath)
{
}

bool UserProject::restoreSettings(QString *errorMessage)
{
    QTC_ASSERT(targets().isEmpty(), return false);
    const auto settings = UserSettings::read(settingsFilePath(), errorMessage);
    if (!settings) {
        if (settingsFilePath().exists())
            m_savingForbiddenReason = *errorMessage;
        return false;
    }
    restoreTargets(*settings);
    return true;
}

bool UserProject::saveSettings(QString *errorMessage)
{
    if (!m_savingForbiddenReason.isEmpty()) {
        *errorMessage = m_savingForbiddenReason;
        return false;
    }
    return UserSettings::write(settingsFilePath(), targetSettings(), errorMessage);
}

Utils::FilePath UserProject::settingsFilePath() const
{
    return Utils::FilePath::fromString(projectFilePath().toFSPathString() + QLatin1String(".user"));
}

} // namespace ProjectExplorer::Host
