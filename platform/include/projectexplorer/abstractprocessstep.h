#pragma once

#include <projectexplorer/buildstep.h>

#include <utils/filepath.h>

#include <QStringList>

#include <functional>

namespace ProjectExplorer {

/// A program and its arguments.
struct CommandLine
{
    QString program;
    QStringList arguments;
};

/// A step that runs one program and shows what it prints.
class AbstractProcessStep : public BuildStep
{
    Q_OBJECT

protected:
    AbstractProcessStep(BuildStepList *stepList, Utils::Id id);

    /// Fails when no provider yields a program.
    bool init() override;

    void setCommandLineProvider(const std::function<CommandLine()> &provider);
    void setWorkingDirectoryProvider(const std::function<Utils::FilePath()> &provider);

    /// Runs the program; ends with its success.
    Tasking::GroupItem defaultProcessTask();

private:
    Tasking::GroupItem runRecipe() override;

    std::function<CommandLine()> m_commandLineProvider;
    std::function<Utils::FilePath()> m_workingDirectoryProvider;
};

} // namespace ProjectExplorer
