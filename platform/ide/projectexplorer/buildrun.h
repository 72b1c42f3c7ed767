#pragma once

#include <projectexplorer/buildstep.h>
#include <solutions/tasking/tasktree.h>

#include <QList>
#include <QObject>

#include <memory>

namespace ProjectExplorer {

/// One run of a step list, which must outlive it.
class BuildRun : public QObject
{
    Q_OBJECT

public:
    explicit BuildRun(BuildStepList *stepList);
    ~BuildRun() override;

    BuildStepList *stepList() const { return m_stepList; }

    /// The run may be over when this returns.
    void start();
    /// Deletes what runs, at once. So this must not be called from a handler of a step's recipe.
    void cancel();

signals:
    /// The end, told once.
    void finished(bool success);
    void outputAdded(const QString &text, ProjectExplorer::BuildStep::OutputFormat format);

private:
    bool initSteps();
    Tasking::GroupItem recipeOf(BuildStep *step);
    void stepDone(const BuildStep *step, Tasking::DoneWith with);
    void treeDone(Tasking::DoneWith with);
    void reportFailureOf(const BuildStep *step);
    void finish(bool success, const QString &lastLine);
    void addStepOutput(const QString &text,
                       BuildStep::OutputFormat format,
                       BuildStep::OutputNewlineSetting newlineSetting);
    void addLine(const QString &line, BuildStep::OutputFormat format);
    void addOutput(const QString &text, BuildStep::OutputFormat format);

    BuildStepList *const m_stepList;
    const QString m_projectName;
    QList<BuildStep *> m_steps;
    std::unique_ptr<Tasking::TaskTree> m_tree;
    bool m_isOver = false;
};

} // namespace ProjectExplorer
