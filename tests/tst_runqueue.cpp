#include "runqueue.h"

#include <QLineEdit>
#include <QTest>

using Sealkit::Internal::RunQueue;

/// Has a field that is locked during a run, between two that stay usable.
class Window : public QWidget
{
public:
    Window()
    {
        connect(&queue, &RunQueue::lockChanged, &locked, &QWidget::setDisabled);
        connect(&queue, &RunQueue::busyChanged, this, [this](bool busy) { isBusy = busy; });
        show();
        locked.setFocus();
    }

    RunQueue queue{this};
    QLineEdit free{this}, locked{this}, other{this};
    bool isBusy = false;
};

class RunQueueTest : public QObject
{
    Q_OBJECT

private slots:
    void locksAndGivesTheFocusBack();
    void doesRequestsAfterTheRun();
    void survivesItsWindow();
};

void RunQueueTest::locksAndGivesTheFocusBack()
{
    Window window;
    {
        const RunQueue::Run outer(&window.queue);
        RunQueue::Run{&window.queue}; // within the outer one
        QVERIFY(window.isBusy && !window.locked.isEnabled());
    }
    QVERIFY(!window.isBusy && window.locked.isEnabled());
    QCOMPARE(window.focusWidget(), &window.locked);
}

void RunQueueTest::doesRequestsAfterTheRun()
{
    Window window;
    QStringList done;
    {
        const RunQueue::Run run(&window.queue);
        for (const char *name : {"one", "two", "withdrawn", "one"})
            window.queue.request(name, [&done, name] { done << name; });
        window.queue.withdraw("withdrawn");
        window.free.setFocus(); // by the user, who goes on there
        QCoreApplication::processEvents();
        QCOMPARE(done, QStringList());
    }
    QVERIFY(window.isBusy);
    QCoreApplication::processEvents();
    QCOMPARE(done, QStringList({"one", "two"}));
    QVERIFY(!window.isBusy && window.focusWidget() == &window.free);
}

void RunQueueTest::survivesItsWindow()
{
    const QPointer<Window> window(new Window);
    window->queue.request("close", [&window] {
        const RunQueue::Run run(&window->queue);
        window->queue.request("too late", [] { QFAIL("The window has gone."); });
        delete window;
        QVERIFY(!run);
    });
    QCoreApplication::processEvents();
    QVERIFY(!window);
}

QTEST_MAIN(RunQueueTest)
#include "tst_runqueue.moc"
