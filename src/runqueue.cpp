#include "runqueue.h"

#include <QWidget>

#include <algorithm>

namespace Sealkit::Internal {

RunQueue::Run::Run(RunQueue *queue)
    : m_queue(queue)
{
    if (m_queue->m_runs++ == 0)
        m_queue->lock();
}

RunQueue::Run::~Run()
{
    if (m_queue && --m_queue->m_runs == 0)
        m_queue->unlock();
}

RunQueue::RunQueue(QWidget *window)
    : m_window(window)
{
}

void RunQueue::lock()
{
    m_focus = m_window->focusWidget();
    emit lockChanged(true);
    tellWhetherBusy();
    m_focusWhenLocked = m_window->focusWidget();
}

void RunQueue::unlock()
{
    emit lockChanged(false);
    tellWhetherBusy();
    // Unless the user has moved the focus on since.
    if (m_focus && m_focus->isVisible() && m_window->focusWidget() == m_focusWhenLocked)
        m_focus->setFocus();
    if (!m_requests.isEmpty())
        QMetaObject::invokeMethod(this, &RunQueue::doRequests, Qt::QueuedConnection);
}

void RunQueue::request(const QString &name, const std::function<void()> &action)
{
    const auto isSame = [&name](const Request &request) { return request.name == name; };
    if (std::none_of(m_requests.cbegin(), m_requests.cend(), isSame))
        m_requests << Request{name, action};
    tellWhetherBusy();
    QMetaObject::invokeMethod(this, &RunQueue::doRequests, Qt::QueuedConnection);
}

void RunQueue::withdraw(const QString &name)
{
    m_requests.removeIf([&name](const Request &request) { return request.name == name; });
}

void RunQueue::doRequests()
{
    const QPointer<RunQueue> self(this);
    while (self && m_runs == 0 && !m_requests.isEmpty()) {
        const Request request = m_requests.takeFirst();
        request.action();
    }
    if (self)
        tellWhetherBusy();
}

void RunQueue::tellWhetherBusy()
{
    emit busyChanged(m_runs > 0 || !m_requests.isEmpty());
}

} // namespace Sealkit::Internal
