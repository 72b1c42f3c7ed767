#include "signrun.h"

#include "ideclosing.h"
#include "runlog.h"
#include "signtool.h"
#include "toolreason.h"

#include <brisk/buildengine.h>
#include <projectexplorer/buildstep.h>
#include <projectexplorer/target.h>
#include <projectexplorer/task.h>
#include <veyraos/kilnkb2rpmbuildstep.h>
#include <veyraos/kilnsdkkitaspect.h>

using namespace Kiln::Internal;
using namespace Tasking;
using ProjectExplorer::BuildStep;
using ProjectExplorer::DeploymentTask;

namespace Sealkit::Internal {

void forwardOutput(const SignTool *tool, BuildStep *step)
{
    const auto forward = [step](BuildStep::OutputFormat format) {
        return [step, format](const QString &line) { emit step->addOutput(line, format); };
    };
    QObject::connect(tool, &SignTool::addError, step, forward(BuildStep::OutputFormat::Stderr));
    QObject::connect(tool, &SignTool::addOutput, step, forward(BuildStep::OutputFormat::Stdout));
}

namespace {

/// Stands for a run in the IDE's tree, which deletes it to stop the run.
class SignTaskAdapter : public TaskAdapter<std::shared_ptr<SignRun>>
{
public:
    ~SignTaskAdapter() override
    {
        if (const std::shared_ptr<SignRun> run = *task())
            run->giveUp();
    }

private:
    void start() override
    {
        SignRun *run = task()->get();
        connect(run, &SignRun::done, this, [this](DoneResult result) {
            task()->reset();
            emit done(result);
        });
        QMetaObject::invokeMethod(run, &SignRun::exec, Qt::QueuedConnection);
    }
};

} // namespace

Group SignRun::recipe(BuildStep *step, SignTool *tool, const Work &work)
{
    const auto onSetup = [step, tool, work](std::shared_ptr<SignRun> &run) {
        run = std::make_shared<SignRun>(step, tool, work);
    };
    return Group{CustomTask<SignTaskAdapter>(onSetup)};
}

SignRun::SignRun(BuildStep *step, SignTool *tool, const Work &work)
    : m_step(step)
    , m_tool(tool)
    , m_work(work)
{
    connect(step, &QObject::destroyed, this, [this] { m_stop.request_stop(); });
}

Group SignRun::innerRecipe()
{
    const auto onSetup = [this] { return m_work.doRun(*this); };
    const auto onDone = [this](DoneWith with) {
        if (with != DoneWith::Cancel && !m_stop.stop_requested())
            return DoneResult::Success;
        giveUp();
        return DoneResult::Error;
    };
    return Group{onGroupSetup(onSetup), onGroupDone(onDone)};
}

void SignRun::exec()
{
    const std::shared_ptr<SignRun> self = shared_from_this();
    DoneResult result = DoneResult::Error;
    if (!m_stop.stop_requested()) {
        m_tool->setStopToken(m_stop.get_token());
        TaskTree tree(innerRecipe());
        connect(&tree, &TaskTree::done, this, [&result](DoneWith with) {
            result = toDoneResult(with == DoneWith::Success);
        });
        tree.start();
    }
    emit done(result);
}

void SignRun::giveUp()
{
    if (m_stop.request_stop() && m_step)
        m_work.doCancel();
}

/// The one place that asks, after a tool has run, whether anybody is still there to hear of it.
std::optional<Command::Result> SignRun::ifWanted(const Command::Result &result) const
{
    return m_stop.stop_requested() || isIdeClosing() ? std::nullopt : std::optional(result);
}

SetupResult SignRun::sign(const Plan &plan)
{
    emit m_step->addOutput(plan.startText, BuildStep::OutputFormat::NormalMessage);

    if (!plan.buildEngine)
        return fail(QObject::tr("Error: the kit has no build engine"));
    m_targetName = KilnSdkKitAspectFactory::buildTarget(m_step->target()->kit()).name;
    if (m_targetName.isEmpty())
        return fail(QObject::tr("Error: the kit has no build target"));
    QString error;
    if (!(plan.data.*plan.isValid)(plan.buildEngine->sharedSrcPath(), &error))
        return fail(error);

    if (!plan.packages)
        return fail(plan.noBuildStepText.arg(KilnKb2RpmBuildStep::displayName()));
    if (plan.packages->isEmpty())
        return fail(plan.noPackagesText);

    const auto result = ifWanted(m_tool->addSignature(m_targetName, *plan.packages, plan.data));
    if (!result)
        return SetupResult::StopWithError;
    if (!result->succeeded())
        return failAfter(*result);
    emit m_step->addOutput(plan.successText, BuildStep::OutputFormat::NormalMessage);
    return SetupResult::Continue;
}

std::optional<Command::Result> SignRun::dump(const QStringList &packages)
{
    return ifWanted(m_tool->dumpSignature(m_targetName, packages));
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

/// Of a tool that has failed, perhaps without a word, or that the user has cancelled at a prompt.
SetupResult SignRun::failAfter(const Command::Result &result) const
{
    const QString why = whyFailed(result);
    if (!result.cancelled)
        return fail(QObject::tr("Error: package sign failed"), why);
    logWarning(why);
    return fail(QObject::tr("Error: package sign cancelled"), why);
}

} // namespace Sealkit::Internal
