#pragma once

#include <projectexplorer/buildstep.h>

#include <QObject>

#include <solutions/tasking/tasktree.h>

#include <memory>

namespace ProjectExplorer {

class BuildStepList;
class Project;
class Target;

/// Runs the enabled steps of one list at a time, one after the other, and collects what they print.
class BuildManager : public QObject
{
    Q_OBJECT

public:
    static BuildManager *instance();

    /// Initializes all enabled steps, then runs them, which may be over when this returns. False
    /// when a run is going on already.
    static bool buildList(BuildStepList *stepList);
    static bool isBuilding();
    /// Whether the list that runs is the one with this step, or of this project.
    static bool isBuilding(const BuildStep *step);
    static bool isBuilding(const Project *project);
    /// Deletes what runs, at once, and emits buildQueueFinished(). Not to be called from a handler
    /// of a step's recipe.
    static void cancel();
    /// What \a step does when its turn comes.
    static Tasking::GroupItem recipeOf(BuildStep *step);

signals:
    void buildQueueStarted();
    /// \a success is false after a failed or cancelled run. It is the recipes of the steps that
    /// fail a run: a step that printed an error or reported an issue need not have failed.
    void buildQueueFinished(bool success);
    /// Text of a step, with its line end.
    void outputAdded(const QString &text, ProjectExplorer::BuildStep::OutputFormat format);

private:
    BuildManager();
    ~BuildManager() override;

    class Private;
    const std::unique_ptr<Private> d;
};

} // namespace ProjectExplorer
