#pragma once

#include <extensionsystem/iplugin.h>

/// Runs the test functions of SEALKIT_IDE_TEST once the IDE has opened its project, and closes it.
class IdeTestPlugin final : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "SealkitIdeTest.json")

public:
    void extensionsInitialized() override;

private:
    void runWhenProjectIsOpen();
};
