#pragma once

#include <projectexplorer/project.h>

#include <QPointer>
#include <QWidget>

class QAction;
class QComboBox;
class QLabel;

namespace ProjectExplorer {
class BuildStepList;
}

namespace Workbench {

class StepListWidget;

/// How one project is deployed: for which kit, in which steps; and the actions that start and stop
/// a run.
class DeployPage : public QWidget
{
    Q_OBJECT

public:
    explicit DeployPage(QWidget *parent = nullptr);

    ProjectExplorer::Project *project() const { return m_project; }
    /// Shows the active configuration of \a project; null shows none.
    void setProject(ProjectExplorer::Project *project);
    /// To be called when the project's targets or configurations have changed.
    void refresh();

    /// What a deploy runs now; null when there is nothing to run.
    ProjectExplorer::BuildStepList *stepList() const;

    QAction *deployAction() const { return m_deployAction; }
    QAction *cancelAction() const { return m_cancelAction; }

signals:
    void aboutToDeploy();

private:
    void fillKits();
    void chooseKit(int index);
    void deploy();
    void updateActions();

    QPointer<ProjectExplorer::Project> m_project;
    QAction *m_deployAction;
    QAction *m_cancelAction;
    QLabel *m_title;
    QComboBox *m_kits;
    StepListWidget *m_steps;
};

} // namespace Workbench
