#pragma once

#include "constants.h"

#include <projectexplorer/buildstep.h>
#include <projectexplorer/projectexplorerconstants.h>

namespace ProjectExplorer {
class BuildStepList;
class Kit;
} // namespace ProjectExplorer

namespace Sealkit::Internal {

/// Lets the user add step \a T to the deploy steps of a Veyra OS kit. It makes the step from list
/// and id alone, so the default argument of T's constructor decides that the step starts enabled.
template<class T>
class DeployStepFactory : public ProjectExplorer::BuildStepFactory
{
public:
    DeployStepFactory()
    {
        registerStep<T>(T::stepId());
        setDisplayName(T::displayName());
        setSupportedStepList(ProjectExplorer::Constants::BUILDSTEPS_DEPLOY);
        setSupportedDeviceType(Constants::KILN_DEVICE_TYPE);
    }
};

class StepFactory
{
public:
    /// A new sign step for the tools of the kit's build target; null when it has none. The caller
    /// owns the step until it joins a list.
    static ProjectExplorer::BuildStep *createStep(ProjectExplorer::Kit *kit,
                                                  ProjectExplorer::BuildStepList *stepList);
};

} // namespace Sealkit::Internal
