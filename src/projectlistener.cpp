#include "projectlistener.h"

#include "constants.h"
#include "stepfactory.h"

#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <veyraos/kilnkb2rpmbuildstep.h>

#include <algorithm>

using namespace ProjectExplorer;

namespace Sealkit::Internal {

static void insertSignStep(BuildStepList *stepList, Kit *kit)
{
    if (stepList->contains(Constants::RPMSIGN_EXTERNAL_STEP_ID)
        || stepList->contains(Constants::CUSTOMER_SIGN_STEP_ID)) {
        return;
    }
    const QList<BuildStep *> steps = stepList->steps();
    const auto rpmBuildStep = std::find_if(steps.begin(), steps.end(), [](const BuildStep *step) {
        return step->id() == Kiln::Internal::KilnKb2RpmBuildStep::stepId();
    });
    if (rpmBuildStep == steps.end())
        return;
    if (BuildStep *signStep = StepFactory::createStep(kit, stepList))
        stepList->insertStep(int(rpmBuildStep - steps.begin()) + 1, signStep);
}

static void updateTarget(Target *target)
{
    if (!target)
        return;
    const QList<DeployConfiguration *> configurations = target->deployConfigurations();
    for (DeployConfiguration *configuration : configurations)
        insertSignStep(configuration->stepList(), target->kit());
}

static void startWatch(Project * /*project*/, Target *target)
{
    updateTarget(target);
    QObject::connect(
        target, &Target::addedDeployConfiguration, target, [target] { updateTarget(target); });
}

static void watchProject(Project *project)
{
    const QList<Target *> targets = project->targets();
    for (Target *target : targets)
        startWatch(project, target);
    QObject::connect(project, &Project::addedTarget, project, [project](Target *target) {
        startWatch(project, target);
    });
}

ProjectListener::ProjectListener()
{
    connect(ProjectManager::instance(), &ProjectManager::projectAdded, this, watchProject);
}

ProjectListener::~ProjectListener()
{
    QObject::disconnect(this, nullptr, nullptr, nullptr);
}

} // namespace Sealkit::Internal
