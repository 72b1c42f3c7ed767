#pragma once

#include <QTreeWidget>

namespace ProjectExplorer {
class DeployConfiguration;
class Project;
class Target;
} // namespace ProjectExplorer

namespace Workbench {

/// The open projects, their targets, and the deploy configurations of these.
class ProjectTree : public QTreeWidget
{
    Q_OBJECT

public:
    explicit ProjectTree(QWidget *parent = nullptr);

    /// Shows what is open now, and selects the active configuration of \a current.
    void refresh(const ProjectExplorer::Project *current);

signals:
    /// The user chose something; \a target and \a configuration are null when it was something
    /// above them.
    void chosen(ProjectExplorer::Project *project,
                ProjectExplorer::Target *target,
                ProjectExplorer::DeployConfiguration *configuration);

private:
    void announceChoice(QTreeWidgetItem *item);
};

} // namespace Workbench
