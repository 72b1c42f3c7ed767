#include "runqueue.h"

#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

using Sealkit::Internal::RunQueue;

/// Has a field that is locked during a run, between two that stay usable.
class Window : public QWidget
{
public:
    Window()
    {
        auto *layout = new QVBoxLayout(this);
        for (QWidget *widget : {free, locked, other})
            layout->addWidget(widget);
        connect(&queue, &RunQueue::lockChanged, locked, &QWidget::setDisabled);
        connect(&queue, &RunQueue::busyChanged, this, [this](bool busy) { isBusy = busy; });
        show();
        locked->setFocus();
    }

    RunQueue queue{this};
    QWidget *free = new QLineEdit;
    QWidget *locked = new QLineEdit;
    QWidget *other = new QLineEdit;
    QStringList done;
    bool isBusy = false;

    void request(const QString &name)
    {
        queue.request(name, [this, name] {
            const RunQueue::Run run(&queue);
            done << name;
        });
    }
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
        {
            const RunQueue::Run inner(&window.queue);
        }
        QVERIFY(!window.locked->isEnabled());
        QVERIFY(window.focusWidget() != window.locked);
        QVERIFY(window.isBusy);
    }
    QVERIFY(window.locked->isEnabled());
    QCOMPARE(window.focusWidget(), window.locked);
    QVERIFY(!window.isBusy);
    {
        const RunQueue::Run run(&window.queue);
        window.free->setFocus(); // by the user, who goes on there
    }
    QCOMPARE(window.focusWidget(), window.free);
}

void RunQueueTest::doesRequestsAfterTheRun()
{
    Window window;
    {
        const RunQueue::Run run(&window.queue);
        for (const char *name : {"one", "two", "withdrawn", "one"})
            window.request(name);
        window.queue.withdraw("withdrawn");
        QCoreApplication::processEvents();
        QCOMPARE(window.done, QStringList());
    }
    QVERIFY(window.isBusy);
    QCoreApplication::processEvents();
    QCOMPARE(window.done, QStringList({"one", "two"}));
    QVERIFY(!window.isBusy);
}

void RunQueueTest::survivesItsWindow()
{
    auto window = std::make_unique<Window>();
    RunQueue *queue = &window->queue;
    bool isGone = false;
    queue->request("close", [&] {
        const RunQueue::Run run(queue);
        window->request("too late");
        window.reset();
        isGone = !run;
    });
    QCoreApplication::processEvents();
    QVERIFY(isGone);
}

QTEST_MAIN(RunQueueTest)
#include "tst_runqueue.moc"
