#include <projectexplorer/abstractprocessstep.h>

#include "processtask.h"

namespace ProjectExplorer {

AbstractProcessStep::AbstractProcessStep(BuildStepList *stepList, Utils::Id id)
    : BuildStep(stepList, id)
{
}

bool AbstractProcessStep::init()
{
    return m_commandLineProvider && !m_commandLineProvider().program.isEmpty();
}

void AbstractProcessStep::setCommandLineProvider(const std::function<CommandLine()> &provider)
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
        return std::make_unique<ProcessTask>(this, m_commandLineProvider(), workingDirectory);
    });
}

Tasking::GroupItem AbstractProcessStep::runRecipe()
{
    return Tasking::Group{defaultProcessTask()};
}

} // namespace ProjectExplorer
