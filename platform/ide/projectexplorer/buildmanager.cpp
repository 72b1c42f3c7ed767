#include <host/buildmanager.h>

#include "buildrun.h"
#include <host/issues.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>

#include <utils/qtcassert.h>

namespace ProjectExplorer {

class BuildManager::Private
{
public:
    void finish(bool success);

    std::unique_ptr<BuildRun> run;
};

void BuildManager::Private::finish(bool success)
{
    run.release()->deleteLater(); // this comes from one of its signals
    emit instance()->buildQueueFinished(success);
}

BuildManager::BuildManager()
    : d(std::make_unique<Private>())
{
    connect(ProjectManager::instance(),
            &ProjectManager::aboutToRemoveProject,
            this,
            [](const Project *project) {
                if (isBuilding(project))
                    cancel();
            });
}

BuildManager::~BuildManager() = default;

BuildManager *BuildManager::instance()
{
    static BuildManager manager;
    return &manager;
}

bool BuildManager::buildList(BuildStepList *stepList)
{
    QTC_ASSERT(stepList, return false);
    if (isBuilding())
        return false;
    Private *d = instance()->d.get();
    d->run = std::make_unique<BuildRun>(stepList);
    BuildRun *run = d->run.get();
    connect(run, &BuildRun::outputAdded, instance(), &BuildManager::outputAdded);
    connect(run, &BuildRun::finished, instance(), [d](bool success) { d->finish(success); });
    Host::Issues::instance()->clear();
    emit instance()->buildQueueStarted();
    if (d->run.get() == run)
        run->start();
    return true;
}

bool BuildManager::isBuilding()
{
    return instance()->d->run != nullptr;
}

static const BuildStepList *runningList(const BuildRun *run)
{
    return run ? run->stepList() : nullptr;
}

bool BuildManager::isBuilding(const BuildStep *step)
{
    const BuildStepList *list = runningList(instance()->d->run.get());
    return list && list == step->stepList();
}

bool BuildManager::isBuilding(const Project *project)
{
    const BuildStepList *list = runningList(instance()->d->run.get());
    return list && list->target()->project() == project;
}

void BuildManager::cancel()
{
    if (isBuilding())
        instance()->d->run->cancel();
}

Tasking::GroupItem BuildManager::recipeOf(BuildStep *step)
{
    return step->runRecipe();
}

} // namespace ProjectExplorer
