#pragma once

#include <extensionsystem/iplugin.h>

namespace ProjectExplorer {

class ProjectExplorerPlugin final : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "ProjectExplorer.json")

public:
    void extensionsInitialized() override;
    /// Closes the projects that are still open.
    ShutdownFlag aboutToShutdown() override;
};

} // namespace ProjectExplorer
