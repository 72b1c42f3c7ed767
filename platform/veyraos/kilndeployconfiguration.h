#pragma once

#include <projectexplorer/buildstep.h>
#include <projectexplorer/deployconfiguration.h>

namespace Kiln::Internal {

/// Packages are built and brought to the device.
class KilnRpmDeployConfigurationFactory : public ProjectExplorer::DeployConfigurationFactory
{
public:
    KilnRpmDeployConfigurationFactory();
};

class KilnKb2RpmBuildStepFactory : public ProjectExplorer::BuildStepFactory
{
public:
    KilnKb2RpmBuildStepFactory();
};

} // namespace Kiln::Internal
