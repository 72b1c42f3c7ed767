#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>

class QWidget;

namespace Sealkit::Internal {

/// Lets a window run its tools one after the other. While a tool runs the window is locked; what
/// is requested meanwhile waits in a queue and is done after the run. When the lock ends, the
/// keyboard focus returns to where it was.
class RunQueue : public QObject
{
    Q_OBJECT

public:
    /// Stands for a run of tools, or several in a row: the window is locked while it lives. A run
    /// within a run belongs to the outer one. False when the window went while a tool ran.
    class Run
    {
    public:
        explicit Run(RunQueue *queue);
        ~Run();
        Q_DISABLE_COPY_MOVE(Run)

        explicit operator bool() const { return !m_queue.isNull(); }

    private:
        const QPointer<RunQueue> m_queue;
    };

    /// \a window owns this queue as a member.
    explicit RunQueue(QWidget *window);

    /// Has \a action called from the event loop as soon as no tool runs; once, however often it is
    /// requested by this \a name until then. Even when no tool runs it is not called at once: a
    /// widget that requests it in a signal would not survive if the window went during the run.
    void request(const QString &name, const std::function<void()> &action);
    /// Removes the request, if there is one; for a caller that has just done the same by itself.
    void withdraw(const QString &name);

signals:
    void lockChanged(bool locked);
    /// Whether a tool runs or a request waits.
    void busyChanged(bool busy);

private:
    struct Request
    {
        QString name;
        std::function<void()> action;
    };

    void lock();
    void unlock();
    void doRequests();
    void tellWhetherBusy();

    QWidget *const m_window;
    int m_runs = 0;
    QList<Request> m_requests;
    QPointer<QWidget> m_focus;           ///< has the focus when the lock begins
    QPointer<QWidget> m_focusWhenLocked; ///< has it when all is locked
};

} // namespace Sealkit::Internal
