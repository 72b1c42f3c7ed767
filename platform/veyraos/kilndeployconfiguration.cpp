#include "kilndeployconfiguration.h"

#include "kilntr.h"
#include <veyraos/kilnconstants.h>
#include <veyraos/kilnkb2rpmbuildstep.h>

#include <projectexplorer/projectexplorerconstants.h>

namespace Kiln::Internal {

KilnRpmDeployConfigurationFactory::KilnRpmDeployConfigurationFactory()
{
    setConfigBaseId("Kiln.DeployConfiguration.Rpm");
    setDefaultDisplayName(Tr::tr("Deploy as RPM Package"));
    addSupportedTargetDeviceType(Constants::KILN_DEVICE_TYPE);
    addInitialStep(KilnKb2RpmBuildStep::stepId());
}

KilnKb2RpmBuildStepFactory::KilnKb2RpmBuildStepFactory()
{
    registerStep<KilnKb2RpmBuildStep>(KilnKb2RpmBuildStep::stepId());
    setDisplayName(KilnKb2RpmBuildStep::displayName());
    setSupportedStepList(ProjectExplorer::Constants::BUILDSTEPS_DEPLOY);
    setSupportedDeviceType(Constants::KILN_DEVICE_TYPE);
}

} // namespace Kiln::Internal
