#pragma once

#include <QList>
#include <QObject>

namespace ProjectExplorer {

class Project;

/// The open projects; owns them.
class ProjectManager : public QObject
{
    Q_OBJECT

public:
    static ProjectManager *instance();

    static const QList<Project *> projects();
    /// Takes ownership of a project whose settings have been restored.
    static void addProject(Project *project);
    /// Closes the project and deletes it.
    static void removeProject(Project *project);

signals:
    void projectAdded(ProjectExplorer::Project *project);
    void aboutToRemoveProject(ProjectExplorer::Project *project);
    void projectRemoved(ProjectExplorer::Project *project);

private:
    ProjectManager() = default;

    QList<Project *> m_projects;
};

} // namespace ProjectExplorer
