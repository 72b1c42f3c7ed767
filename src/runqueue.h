#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>
#include <initializer_list>

class QWidget;

namespace Sealkit::Internal {

/// Does the tasks of a window, one after the other, from the event loop. The window is locked from
/// the first request until no task waits any more; then the keyboard focus returns to where it was.
class RunQueue : public QObject
{
    Q_OBJECT

public:
    enum class Task { FollowTarget, LookForOpenssl, Sign, Remove, Verify, Dump, Request };

    /// Shows in the window what a task has found.
    using Show = std::function<void()>;
    /// Does a task and returns how to show its result; nothing, when there is nothing to show. Its
    /// tool keeps the event loop turning, which may delete the window: what is behind the tool's
    /// run may not touch the window any more.
    using Work = std::function<Show(Task)>;

    /// \a window owns this queue as a member.
    RunQueue(QWidget *window, const Work &work);

    /// Has \a tasks done after those that wait. Each waits but once: one that waits already moves
    /// behind.
    void request(std::initializer_list<Task> tasks);

signals:
    void lockChanged(bool locked);

private:
    void lock();
    void unlock();
    void doTasks();

    QWidget *const m_window;
    const Work m_work;
    bool m_isLocked = false;
    QList<Task> m_waiting;
    QPointer<QWidget> m_focus;                  ///< has the focus when the lock begins
    const QWidget *m_focusWhenLocked = nullptr; ///< has it when all is locked
};

} // namespace Sealkit::Internal
