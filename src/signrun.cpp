#include "signrun.h"

#include "signprogress.h"
#include "signtool.h"
#include "toolreason.h"

#include <brisk/buildengine.h>
#include <coreplugin/messagemanager.h>
#include <projectexplorer/buildstep.h>
#include <projectexplorer/target.h>
#include <projectexplorer/task.h>
#include <veyraos/kilnkb2rpmbuildstep.h>
#include <veyraos/kilnsdkkitaspect.h>

#include <QPointer>

using namespace Kiln::Internal;
using namespace Tasking;
using ProjectExplorer::BuildStep;
using ProjectExplorer::DeploymentTask;

namespace Sealkit::Internal {

SignRun::SignRun(BuildStep *step, SignTool *tool)
    : m_step(step)
    , m_tool(tool)
{
}

void SignRun::forwardOutput() const
{
    const auto forward = [step = m_step](BuildStep::OutputFormat format) {
        return [step, format](const QString &line) { emit step->addOutput(line, format); };
    };
    QObject::connect(m_tool, &SignTool::addError, m_step, forward(BuildStep::OutputFormat::Stderr));
    QObject::connect(
        m_tool, &SignTool::addOutput, m_step, forward(BuildStep::OutputFormat::Stdout));
}

Group SignRun::recipe(const std::function<SetupResult()> &run,
                      const std::function<void()> &cancel) const
{
    const QPointer<BuildStep> step(m_step);
    const auto onSetup = [step, tool = m_tool, run] {
        if (!step)
            return SetupResult::StopWithError;
        tool->setStopped(false);
        return run();
    };
    const auto onDone = [step, tool = m_tool, cancel](DoneWith result) {
        const bool isStopped = step && tool->isStopped();
        if (result != DoneWith::Cancel && !isStopped)
            return DoneResult::Success;
        if (step)
            cancel();
        return DoneResult::Error;
    };
    return Group{onGroupSetup(onSetup), onGroupDone(onDone)};
}

SetupResult SignRun::carryOut(const Plan &plan) const
{
    emit m_step->addOutput(plan.startText, BuildStep::OutputFormat::NormalMessage);

    if (!plan.buildEngine)
        return fail(QObject::tr("Error: the kit has no build engine"));
    const QString targetName = KilnSdkKitAspectFactory::buildTarget(m_step->target()->kit()).name;
    if (targetName.isEmpty())
        return fail(QObject::tr("Error: the kit has no build target"));
    QString error;
    if (!(plan.data.*plan.isValid)(plan.buildEngine->sharedSrcPath(), &error))
        return fail(error);

    const std::optional<QStringList> packages = plan.findPackages();
    if (!packages)
        return fail(plan.noBuildStepText.arg(KilnKb2RpmBuildStep::displayName()));
    if (packages->isEmpty())
        return fail(plan.noPackagesText);

    const QPointer<BuildStep> step(m_step);
    const SignProgress progress(m_tool, *packages);
    if (!runSign(targetName, *packages, plan.data) || !step)
        return SetupResult::StopWithError;
    emit step->addOutput(plan.successText, BuildStep::OutputFormat::NormalMessage);
    if (plan.report)
        plan.report(targetName, *packages);
    return SetupResult::Continue;
}

/// Says in the step's output and among the issues why nothing was signed; \a details are for the
/// issue alone.
SetupResult SignRun::fail(const QString &reason, const QString &details) const
{
    emit m_step->addOutput(reason, BuildStep::OutputFormat::ErrorMessage);
    const QString description = details.isEmpty() ? reason : reason + QLatin1Char('\n') + details;
    emit m_step->addTask(DeploymentTask(ProjectExplorer::Task::Error, description));
    return SetupResult::StopWithError;
}

bool SignRun::runSign(const QString &targetName,
                      const QStringList &packages,
                      const SignData &data) const
{
    const QPointer<BuildStep> step(m_step);
    const Command::Result result = m_tool->addSignature(targetName, packages, data);
    if (step && !result.succeeded() && !m_tool->isStopped())
        reportFailedRun(result);
    return result.succeeded();
}

/// Of a tool that has failed, perhaps without a word, or that the user has cancelled at a prompt.
void SignRun::reportFailedRun(const Command::Result &result) const
{
    const QString why = whyFailed(result);
    if (result.cancelled)
        Core::MessageManager::writeSilently(QStringLiteral("[W]\t%1").arg(why));
    fail(result.cancelled ? QObject::tr("Error: package sign cancelled")
                          : QObject::tr("Error: package sign failed"),
         why);
}

} // namespace Sealkit::Internal
