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
    return Tasking::CustomTask([this] {
        const Utils::FilePath workingDirectory =
            m_workingDirectoryProvider ? m_workingDirectoryProvider() : Utils::FilePath();
        const Utils::CommandLine commandLine =
            m_commandLineProvider ? m_commandLineProvider() : Utils::CommandLine();
        return std::make_unique<ProcessTask>(this, commandLine, workingDirectory);
    });
}

Tasking::GroupItem AbstractProcessStep::runRecipe()
{
    return Tasking::Group{defaultProcessTask()};
}

} // namespace ProjectExplorer
