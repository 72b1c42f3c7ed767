#include <veyraos/kilnprocessstep.h>

namespace Kiln::Internal {

KilnProcessStep::KilnProcessStep(ProjectExplorer::BuildStepList *stepList, Utils::Id id)
    : AbstractProcessStep(stepList, id)
{
}

bool KilnProcessStep::init()
{
    return init(NoInitOptions);
}

bool KilnProcessStep::init(InitOptions options)
{
    return options.testFlag(WithoutCommandLine) || AbstractProcessStep::init();
}

} // namespace Kiln::Internal
