#pragma once

#include "kilndeployconfiguration.h"

#include <extensionsystem/iplugin.h>

namespace Kiln::Internal {

class VeyraOSPlugin final : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "VeyraOS.json")

public:
    bool initialize(const QStringList &arguments, QString *errorString) override;

private:
    KilnKb2RpmBuildStepFactory m_rpmBuildStepFactory;
    KilnRpmDeployConfigurationFactory m_rpmDeployConfigurationFactory;
};

} // namespace Kiln::Internal
