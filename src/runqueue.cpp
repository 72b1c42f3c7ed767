#include "runqueue.h"

#include <QWidget>

namespace Sealkit::Internal {

RunQueue::RunQueue(QWidget *window, const Work &work)
    : m_window(window)
    , m_work(work)
{
}

void RunQueue::request(std::initializer_list<Task> tasks)
{
    for (const Task task : tasks) {
        m_waiting.removeAll(task);
        m_waiting << task;
    }
    if (m_isLocked)
        return;
    lock();
    // A widget that requests a task in a signal would not survive if the window went during the
    // run.
    QMetaObject::invokeMethod(this, &RunQueue::doTasks, Qt::QueuedConnection);
}

void RunQueue::doTasks()
{
    const QPointer<RunQueue> self(this);
    const Work work = m_work;
    while (!m_waiting.isEmpty()) {
        const Show show = work(m_waiting.takeFirst());
        if (!self)
            return; // the window has gone while the tool ran
        if (show)
            show();
    }
    unlock();
}

void RunQueue::lock()
{
    m_isLocked = true;
    m_focus = m_window->focusWidget();
    emit lockChanged(true);
    m_focusWhenLocked = m_window->focusWidget();
}

void RunQueue::unlock()
{
    m_isLocked = false;
    emit lockChanged(false);
    // Unless the user has moved the focus on since.
    if (m_focus && m_focus->isVisible() && m_window->focusWidget() == m_focusWhenLocked)
        m_focus->setFocus();
}

} // namespace Sealkit::Internal
