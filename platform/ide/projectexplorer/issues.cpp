#include <host/issues.h>

namespace ProjectExplorer::Host {

Issues *Issues::instance()
{
    static Issues issues;
    return &issues;
}

void Issues::add(const Task &task)
{
    m_tasks.append(task);
    emit added(task);
}

void Issues::clear()
{
    m_tasks.clear();
    emit cleared();
}

} // namespace ProjectExplorer::Host
