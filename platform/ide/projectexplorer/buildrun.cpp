#include "buildrun.h"

#include "projectexplorertr.h"
#include <host/buildmanager.h>
#include <host/issues.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/project.h>
#include <projectexplorer/target.h>

#include <QPointer>

namespace ProjectExplorer {

using OutputFormat = BuildStep::OutputFormat;

BuildRun::BuildRun(BuildStepList *stepList)
    : m_stepList(stepList)
    , m_projectName(stepList->target()->project()->displayName())
    , m_steps(stepList->steps())
{
    erase_if(m_steps, [](const BuildStep *step) { return !step->stepEnabled(); });
    for (const BuildStep *step : std::as_const(m_steps)) {
        connect(step, &BuildStep::addOutput, this, &BuildRun::addStepOutput);
        connect(step, &BuildStep::addTask, this, [](const Task &task) {
            Host::Issues::instance()->add(task);
        });
    }
}

BuildRun::~BuildRun() = default;

void BuildRun::start()
{
    addLine(Tr::tr("Running steps for project %1...").arg(m_projectName),
            OutputFormat::NormalMessage);
    if (!initSteps())
        return;

    Tasking::GroupItems recipes;
    for (BuildStep *step : std::as_const(m_steps))
        recipes.append(recipeOf(step));
    m_tree = std::make_unique<Tasking::TaskTree>(Tasking::Group(recipes));
    connect(m_tree.get(), &Tasking::TaskTree::done, this, &BuildRun::treeDone);
    m_tree->start();
}

/// False when the run is over: a step refused, or it was cancelled meanwhile, and may be deleted
/// then.
bool BuildRun::initSteps()
{
    const QPointer<BuildRun> self(this);
    for (BuildStep *step : std::as_const(m_steps)) {
        const bool ready = step->init();
        if (!self || m_isOver)
            return false; // nothing is left to go on with
        if (!ready) {
            reportFailureOf(step);
            treeDone(Tasking::DoneWith::Error);
            return false;
        }
    }
    return true;
}

Tasking::GroupItem BuildRun::recipeOf(BuildStep *step)
{
    const auto onSetup = [this, step] {
        addLine(Tr::tr("Running step \"%1\"...").arg(step->displayName()),
                OutputFormat::NormalMessage);
    };
    const auto onDone = [this, step](Tasking::DoneWith with) { stepDone(step, with); };
    return Tasking::Group{
        Tasking::onGroupSetup(onSetup),
        BuildManager::recipeOf(step),
        Tasking::onGroupDone(onDone),
    };
}

void BuildRun::stepDone(const BuildStep *step, Tasking::DoneWith with)
{
    if (with == Tasking::DoneWith::Error)
        reportFailureOf(step);
}

void BuildRun::treeDone(Tasking::DoneWith with)
{
    if (with == Tasking::DoneWith::Error)
        finish(false, Tr::tr("The steps for project %1 failed.").arg(m_projectName));
    else
        finish(true, Tr::tr("The steps for project %1 are over.").arg(m_projectName));
}

void BuildRun::reportFailureOf(const BuildStep *step)
{
    const QString stepName = step->displayName();
    addLine(Tr::tr("Error while building/deploying project %1 (kit: %2)")
                .arg(m_projectName, step->target()->displayName()),
            OutputFormat::ErrorMessage);
    addLine(Tr::tr("When executing step \"%1\"").arg(stepName), OutputFormat::ErrorMessage);
}

void BuildRun::cancel()
{
    m_tree.reset();
    finish(false, Tr::tr("Canceled build/deployment."));
}

void BuildRun::finish(bool success, const QString &lastLine)
{
    if (m_isOver)
        return;
    m_isOver = true;
    addLine(lastLine, success ? OutputFormat::NormalMessage : OutputFormat::ErrorMessage);
    emit finished(success);
}

void BuildRun::addStepOutput(const QString &text,
                             OutputFormat format,
                             BuildStep::OutputNewlineSetting newlineSetting)
{
    if (m_isOver)
        return;
    const bool appendNewline = newlineSetting == BuildStep::DoAppendNewline;
    addOutput(appendNewline ? text + QLatin1Char('\n') : text, format);
}

void BuildRun::addLine(const QString &line, OutputFormat format)
{
    addOutput(line + QLatin1Char('\n'), format);
}

void BuildRun::addOutput(const QString &text, OutputFormat format)
{
    emit outputAdded(text, format);
}

} // namespace ProjectExplorer
