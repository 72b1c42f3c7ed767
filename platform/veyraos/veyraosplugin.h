#pragma once

#include "kilndeployconfiguration.h"
#include "kilndevice.h"

#include <extensionsystem/iplugin.h>

namespace Kiln::Internal {

class VeyraOSPlugin final : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "VeyraOS.json")

public:
    bool initialize(const QStringList &arguments, QString *errorString) override;

private:
    void addToolsMenu();

    KilnDeviceFactory m_deviceFactory;
    KilnKb2RpmBuildStepFactory m_rpmBuildStepFactory;
    KilnRpmDeployConfigurationFactory m_rpmDeployConfigurationFactory;
};

} // namespace Kiln::Internal
