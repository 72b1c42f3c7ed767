#include <projectexplorer/task.h>

#include <projectexplorer/projectexplorerconstants.h>

namespace ProjectExplorer {

Task::Task(TaskType theType,
           const QString &description,
           const Utils::FilePath &theFile,
           int theLine,
           Utils::Id theCategory)
    : type(theType)
    , details(description.split(QLatin1Char('\n')))
    , file(theFile)
    , line(theLine)
    , category(theCategory)
{
    summary = details.takeFirst();
}

DeploymentTask::DeploymentTask(TaskType theType, const QString &description)
    : Task(theType, description, {}, -1, Constants::TASK_CATEGORY_DEPLOYMENT)
{
}

} // namespace ProjectExplorer
