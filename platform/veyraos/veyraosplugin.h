#pragma once

#include "kilndeployconfiguration.h"
#include "kilndevice.h"

#include <extensionsystem/iplugin.h>
#include <veyraos/veyraos_global.h>

namespace Kiln::Internal {

/// Opens the SDK, unless somebody else has, and offers its targets as kits.
class VEYRAOS_EXPORT VeyraOSPlugin final : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "VeyraOS.json")

public:
    VeyraOSPlugin();
    ~VeyraOSPlugin() override;

    bool initialize(const QStringList &arguments, QString *errorString) override;

private:
    void addToolsMenu();

    KilnDeviceFactory m_deviceFactory;
    KilnKb2RpmBuildStepFactory m_rpmBuildStepFactory;
    KilnRpmDeployConfigurationFactory m_rpmDeployConfigurationFactory;
};

} // namespace Kiln::Internal
