#include "runqueue.h"

#include <QLineEdit>
#include <QTest>

using Sealkit::Internal::RunQueue;
using Task = RunQueue::Task;

/// Has a field that is locked while tasks are done, between two that stay usable.
class Window : public QWidget
{
public:
    explicit Window(const RunQueue::Work &work)
        : queue(this, work)
    {
        connect(&queue, &RunQueue::lockChanged, &locked, &QWidget::setDisabled);
        show();
        locked.setFocus();
    }

    QLineEdit free{this}, locked{this}, other{this};
    RunQueue queue;
};

class RunQueueTest : public QObject
{
    Q_OBJECT

private slots:
    void locksFromTheFirstTaskToTheLast();
    void leavesTheFocusWhereTheUserMovedIt();
    void survivesItsWindow();
};

void RunQueueTest::locksFromTheFirstTaskToTheLast()
{
    QList<Task> begun, shown;
    Window *self = nullptr;
    const auto work = [&](Task task) -> RunQueue::Show {
        begun << task;
        if (task == Task::Sign)
            self->queue.request({Task::Verify, Task::Dump}); // by the user
        QCoreApplication::processEvents();                   // as a tool's run does
        if (task == Task::Remove)
            return {};
        return [&, task] {
            QVERIFY(!self->locked.isEnabled());
            shown << task;
            if (task == Task::Sign)
                self->queue.request({Task::Verify, Task::Dump}); // once more
        };
    };
    Window window(work);
    self = &window;
    window.queue.request({Task::Dump, Task::Sign});
    window.queue.request({Task::Remove});
    QVERIFY(!window.locked.isEnabled() && begun.isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(begun, QList({Task::Dump, Task::Sign, Task::Remove, Task::Verify, Task::Dump}));
    QCOMPARE(shown, QList({Task::Dump, Task::Sign, Task::Verify, Task::Dump}));
    QVERIFY(window.locked.isEnabled());
    QCOMPARE(window.focusWidget(), &window.locked);

    window.queue.request({Task::Remove});
    QCoreApplication::processEvents();
    QCOMPARE(begun.last(), Task::Remove);
}

void RunQueueTest::leavesTheFocusWhereTheUserMovedIt()
{
    Window window([](Task) { return RunQueue::Show(); });
    window.queue.request({Task::Verify});
    window.free.setFocus();
    QCoreApplication::processEvents();
    QVERIFY(window.locked.isEnabled());
    QCOMPARE(window.focusWidget(), &window.free);

    window.free.clearFocus();
    window.queue.request({Task::Verify});
    QCoreApplication::processEvents();
    QCOMPARE(window.focusWidget(), nullptr);
}

void RunQueueTest::survivesItsWindow()
{
    QPointer<Window> window;
    int begun = 0;
    window = new Window([&](Task) {
        ++begun;
        delete window;
        return [] { QFAIL("The window has gone."); };
    });
    window->queue.request({Task::Verify, Task::Dump});
    QCoreApplication::processEvents();
    QVERIFY(!window);
    QCOMPARE(begun, 1);
}

QTEST_MAIN(RunQueueTest)
#include "tst_runqueue.moc"
