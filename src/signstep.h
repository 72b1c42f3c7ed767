#pragma once

#include "command.h"

#include <solutions/tasking/tasktree.h>

#include <functional>

class QObject;

namespace Brisk {
class BuildEngine;
}

namespace ProjectExplorer {
class BuildStep;
class Kit;
} // namespace ProjectExplorer

namespace Sealkit::Internal {

class SignTool;

/// The recipe of a sign step: \a run does all the work when the group is set up, \a cancel is
/// called after a run that was cancelled, or whose \a tool, a member of the step, was stopped by
/// the user. Nothing is called once \a step is gone. Only such a run ends as failed: any other
/// failure has been told by the step.
Tasking::Group signRecipe(QObject *step,
                          SignTool *tool,
                          const std::function<Tasking::SetupResult()> &run,
                          const std::function<void()> &cancel);

/// Says in the step's output and among the issues why nothing was signed; \a details are for the
/// issue alone.
void reportFailure(ProjectExplorer::BuildStep *step,
                   const QString &reason,
                   const QString &details = {});

/// The same for a tool that has failed, or that the user has cancelled at a prompt.
void reportFailedRun(ProjectExplorer::BuildStep *step, const Command::Result &result);

/// Shows what \a tool prints in the output of \a step, line by line.
void forwardOutput(const SignTool *tool, ProjectExplorer::BuildStep *step);

/// Whether \a engine, the one that the step was made for, is still there and has the kit's target;
/// otherwise \a error is a text for the user.
bool hasBuildTarget(const Brisk::BuildEngine *engine,
                    const ProjectExplorer::Kit *kit,
                    QString *error);

} // namespace Sealkit::Internal
