#pragma once

#include <projectexplorer/buildstep.h>

#include <utils/commandline.h>
#include <utils/filepath.h>

#include <functional>

namespace ProjectExplorer {

/// A step that runs one program and shows what it prints.
class AbstractProcessStep : public BuildStep
{
    Q_OBJECT

protected:
    AbstractProcessStep(BuildStepList *stepList, Utils::Id id);

    bool init() override;

    void setCommandLineProvider(const std::function<Utils::CommandLine()> &provider);
    void setWorkingDirectoryProvider(const std::function<Utils::FilePath()> &provider);

    /// Runs the program; ends with its success.
    Tasking::GroupItem defaultProcessTask();

private:
    Tasking::GroupItem runRecipe() override;

    std::function<Utils::CommandLine()> m_commandLineProvider;
    std::function<Utils::FilePath()> m_workingDirectoryProvider;
};

} // namespace ProjectExplorer
