#pragma once

#include <QListWidget>

namespace ProjectExplorer {
class Task;
}

namespace Workbench {

/// What steps reported as issues in the present or the last run.
class IssuesPane : public QListWidget
{
    Q_OBJECT

public:
    explicit IssuesPane(QWidget *parent = nullptr);

signals:
    void countChanged(int count);
    /// The run has its first error.
    void errorArrived();

private:
    void add(const ProjectExplorer::Task &issue);
};

} // namespace Workbench
