#include <veyraos/kilnsettings.h>

#include <brisk/sdk.h>

#include <extensionsystem/pluginmanager.h>
#include <utils/qtcsettings.h>

namespace Kiln::Internal {

constexpr char BRISK_PATH_KEY[] = "Kiln.BriskPath";

QString KilnSettings::briskPath()
{
    const QString path =
        ExtensionSystem::PluginManager::settings()->value(BRISK_PATH_KEY).toString();
    if (!path.isEmpty() || Brisk::Sdk::installationPath().isEmpty())
        return path;
    return Brisk::Sdk::installationPath() + QLatin1String("/bin/brisk");
}

} // namespace Kiln::Internal
