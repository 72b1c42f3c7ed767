#include "veyraosplugin.h"

#include "kilnkits.h"
#include <veyraos/kilnconstants.h>

#include <brisk/installation.h>
#include <brisk/sdk.h>

#include <coreplugin/actionmanager/actioncontainer.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/coreconstants.h>
#include <coreplugin/messagemanager.h>
#include <extensionsystem/pluginmanager.h>
#include <projectexplorer/kitmanager.h>
#include <utils/qtcsettings.h>

#include <QMenu>

namespace Kiln::Internal {

constexpr char SDK_VARIABLE[] = "VEYRAOS_SDK";
constexpr char SDK_PATH_KEY[] = "Kiln.SdkPath";

VeyraOSPlugin::VeyraOSPlugin() = default;
VeyraOSPlugin::~VeyraOSPlugin() = default;

/// From the environment, otherwise from the settings. A shell around this plugin may have opened
/// one before.
static void openSdk()
{
    if (!Brisk::Sdk::installationPath().isEmpty())
        return;
    QString path = qEnvironmentVariable(SDK_VARIABLE);
    if (path.isEmpty())
        path = ExtensionSystem::PluginManager::settings()->value(SDK_PATH_KEY).toString();
    if (path.isEmpty())
        return;
    QString error;
    if (!Brisk::openInstallation(Utils::FilePath::fromUserInput(path), &error))
        Core::MessageManager::writeDisrupting(error);
}

bool VeyraOSPlugin::initialize(const QStringList &, QString *)
{
    // Now, since plugins that build on this one ask for the build engines in their turn.
    openSdk();
    addToolsMenu();
    using ProjectExplorer::KitManager;
    connect(KitManager::instance(), &KitManager::kitsLoaded, this, [] {
        addDevice();
        registerKits();
    });
    return true;
}

void VeyraOSPlugin::addToolsMenu()
{
    using Core::ActionManager;
    Core::ActionContainer *menu = ActionManager::createMenu(Constants::KILN_TOOLS_MENU);
    menu->menu()->setTitle(Brisk::Sdk::osVariant());
    if (Core::ActionContainer *tools = ActionManager::actionContainer(Core::Constants::M_TOOLS))
        tools->addMenu(menu);
}

} // namespace Kiln::Internal
