#include "signstep.h"

#include "signtool.h"
#include "toolreason.h"

#include <coreplugin/messagemanager.h>
#include <projectexplorer/buildstep.h>
#include <projectexplorer/task.h>
#include <veyraos/kilnsdkkitaspect.h>

#include <QPointer>

using namespace Tasking;
using Kiln::Internal::KilnSdkKitAspectFactory;
using ProjectExplorer::BuildStep;
using ProjectExplorer::DeploymentTask;

namespace Sealkit::Internal {

Group signRecipe(QObject *step,
                 SignTool *tool,
                 const std::function<SetupResult()> &run,
                 const std::function<void()> &cancel)
{
    const QPointer<QObject> guard(step);
    const auto onSetup = [guard, tool, run] {
        if (!guard)
            return SetupResult::StopWithError;
        tool->setStopped(false);
        return run();
    };
    const auto onDone = [guard, tool, cancel](DoneWith result) {
        const bool isStopped = guard && tool->isStopped();
        if (result != DoneWith::Cancel && !isStopped)
            return DoneResult::Success;
        if (guard)
            cancel();
        return DoneResult::Error;
    };
    return Group{onGroupSetup(onSetup), onGroupDone(onDone)};
}

void reportFailure(BuildStep *step, const QString &reason, const QString &details)
{
    emit step->addOutput(reason, BuildStep::OutputFormat::ErrorMessage);
    const QString description = details.isEmpty() ? reason : reason + QLatin1Char('\n') + details;
    emit step->addTask(DeploymentTask(ProjectExplorer::Task::Error, description));
}

void reportFailedRun(BuildStep *step, const Command::Result &result)
{
    const QString why = whyFailed(result);
    if (result.cancelled) {
        Core::MessageManager::writeSilently(QStringLiteral("[W]\t%1").arg(why));
        reportFailure(step, QObject::tr("Error: package sign cancelled"), why);
    } else {
        // The tool itself may have ended without a word.
        reportFailure(step, QObject::tr("Error: package sign failed"), why);
    }
}

void forwardOutput(const SignTool *tool, BuildStep *step)
{
    QObject::connect(tool, &SignTool::addError, step, [step](const QString &line) {
        emit step->addOutput(line, BuildStep::OutputFormat::Stderr, BuildStep::DoAppendNewline);
    });
    QObject::connect(tool, &SignTool::addOutput, step, [step](const QString &line) {
        emit step->addOutput(line, BuildStep::OutputFormat::Stdout, BuildStep::DoAppendNewline);
    });
}

bool hasBuildTarget(const Brisk::BuildEngine *engine,
                    const ProjectExplorer::Kit *kit,
                    QString *error)
{
    if (!engine) {
        *error = QObject::tr("Error: the kit has no build engine");
        return false;
    }
    if (KilnSdkKitAspectFactory::buildTarget(kit).name.isEmpty()) {
        *error = QObject::tr("Error: the kit has no build target");
        return false;
    }
    return true;
}

} // namespace Sealkit::Internal
