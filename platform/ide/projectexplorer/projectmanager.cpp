#include <projectexplorer/projectmanager.h>

#include <projectexplorer/project.h>

#include <utils/qtcassert.h>

#include <memory>

namespace ProjectExplorer {

ProjectManager *ProjectManager::instance()
{
    static ProjectManager manager;
    return &manager;
}

const QList<Project *> ProjectManager::projects()
{
    return instance()->m_projects;
}

void ProjectManager::addProject(Project *project)
{
    QTC_ASSERT(project && !projects().contains(project), return );
    instance()->m_projects.append(project);
    emit instance()->projectAdded(project);
}

void ProjectManager::removeProject(Project *project)
{
    QTC_ASSERT(projects().contains(project), return );
    emit instance()->aboutToRemoveProject(project);
    const std::unique_ptr<Project> removed(project);
    instance()->m_projects.removeOne(project);
    emit instance()->projectRemoved(project);
}

} // namespace ProjectExplorer
