#include <projectexplorer/abstractprocessstep.h>

#include "processtask.h"

namespace ProjectExplorer {

AbstractProcessStep::AbstractProcessStep(BuildStepList *stepList, Utils::Id id)
    : BuildStep(stepList, id)
{
}

bool AbstractProcessStep::init()
{
    return true;
}

void AbstractProcessStep::setCommandLineProvider(
    const std::function<Utils::CommandLine()> &provider)
{
    m_commandLineProvider = provider;
}

void AbstractProcessStep::setWorkingDirectoryProvider(
    const std::function<Utils::FilePath()> &provider)
{
    m_workingDirectoryProvider = provider;
}

Tasking::GroupItem AbstractProcessStep::defaultProcessTask()
{
    return ProcessTask([this](ProcessSetup &setup) {
        setup.step = this;
        if (m_commandLineProvider)
            setup.commandLine = m_commandLineProvider();
        if (m_workingDirectoryProvider)
            setup.workingDirectory = m_workingDirectoryProvider();
    });
}

Tasking::GroupItem AbstractProcessStep::runRecipe()
{
    return Tasking::Group{defaultProcessTask()};
}

} // namespace ProjectExplorer
