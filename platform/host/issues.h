#pragma once

#include <projectexplorer/task.h>

#include <QObject>

namespace ProjectExplorer::Host {

/// What the steps of the present or the last run reported, for the pane or stream that shows it.
class Issues : public QObject
{
    Q_OBJECT

public:
    static Issues *instance();

    const Tasks &tasks() const { return m_tasks; }
    void add(const Task &task);
    void clear();

signals:
    void added(const ProjectExplorer::Task &task);
    void cleared();

private:
    Issues() = default;

    Tasks m_tasks;
};

} // namespace ProjectExplorer::Host
