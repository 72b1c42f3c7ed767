#pragma once

#include <utils/filepath.h>
#include <utils/id.h>

#include <QMetaType>
#include <QStringList>

namespace ProjectExplorer {

/// An issue that a step reports, beside what it prints.
class Task
{
public:
    enum TaskType : char { Unknown, Error, Warning };

    Task() = default;
    /// The first line of \a description becomes the summary, the others are the details.
    Task(TaskType type,
         const QString &description,
         const Utils::FilePath &file,
         int line,
         Utils::Id category);

    TaskType type = Unknown;
    QString summary;
    QStringList details;
    Utils::FilePath file;
    int line = -1;
    Utils::Id category;
};

/// An issue of a deployment.
class DeploymentTask : public Task
{
public:
    DeploymentTask(TaskType type, const QString &description);
};

using Tasks = QList<Task>;

} // namespace ProjectExplorer

Q_DECLARE_METATYPE(ProjectExplorer::Task)
