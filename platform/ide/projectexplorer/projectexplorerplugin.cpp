#include "projectexplorerplugin.h"

#include <projectexplorer/kitmanager.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>

namespace ProjectExplorer {

void ProjectExplorerPlugin::extensionsInitialized()
{
    emit KitManager::instance()->kitsLoaded();
}

ExtensionSystem::IPlugin::ShutdownFlag ProjectExplorerPlugin::aboutToShutdown()
{
    // Steps are made of other plugins' code: they go while all of it is still loaded.
    while (!ProjectManager::projects().isEmpty())
        ProjectManager::removeProject(ProjectManager::projects().constLast());
    return SynchronousShutdown;
}

} // namespace ProjectExplorer
