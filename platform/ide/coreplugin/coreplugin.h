#pragma once

#include <extensionsystem/iplugin.h>

namespace Core::Internal {

/// Makes the menus that other plugins add to, and opens the panes.
class CorePlugin final : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "Core.json")

public:
    ~CorePlugin() override;

protected:
    void initialize() override;
};

} // namespace Core::Internal
