#pragma once

#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/deployconfiguration.h>

namespace Kiln::Internal {

/// The first step of kind \a Step that stands before \a laterStep in \a configuration; null when
/// there is none.
template<class Step>
Step *earlierBuildStep(ProjectExplorer::DeployConfiguration *configuration,
                       const ProjectExplorer::BuildStep *laterStep)
{
    const QList<ProjectExplorer::BuildStep *> steps = configuration->stepList()->steps();
    for (ProjectExplorer::BuildStep *step : steps) {
        if (step == laterStep)
            return nullptr;
        if (auto *found = qobject_cast<Step *>(step))
            return found;
    }
    return nullptr;
}

} // namespace Kiln::Internal
