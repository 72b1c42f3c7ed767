#pragma once

#include <veyraos/veyraos_global.h>

#include <projectexplorer/buildstep.h>
#include <projectexplorer/deployconfiguration.h>

namespace Kiln::Internal {

/// Packages are built and brought to the device.
class VEYRAOS_EXPORT KilnRpmDeployConfigurationFactory
    : public ProjectExplorer::DeployConfigurationFactory
{
public:
    KilnRpmDeployConfigurationFactory();
};

class VEYRAOS_EXPORT KilnKb2RpmBuildStepFactory : public ProjectExplorer::BuildStepFactory
{
public:
    KilnKb2RpmBuildStepFactory();
};

} // namespace Kiln::Internal
