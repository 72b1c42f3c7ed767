#include <solutions/tasking/tasktree.h>

#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Tasking;

Q_DECLARE_METATYPE(Tasking::SetupResult)

namespace {

/// Ends when it is told to, or at once when it is made with a result.
class TestTask : public TaskInterface
{
public:
    explicit TestTask(QStringList *trace, std::optional<DoneResult> immediateResult = {})
        : m_trace(trace)
        , m_immediateResult(immediateResult)
    {
    }
    ~TestTask() override { m_trace->append("task gone"); }

    void start() override
    {
        m_trace->append("task started");
        if (m_immediateResult)
            emit done(*m_immediateResult);
    }
    void cancel() override
    {
        m_trace->append("task canceled");
        QTimer::singleShot(0, this, [this] { emit done(DoneResult::Success); });
    }

private:
    QStringList *m_trace;
    std::optional<DoneResult> m_immediateResult;
};

QString nameOf(DoneWith with)
{
    switch (with) {
    case DoneWith::Success:
        return "success";
    case DoneWith::Error:
        return "error";
    case DoneWith::Cancel:
        return "cancel";
    }
    Q_UNREACHABLE();
}

} // namespace

class TaskingTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void handlersDecide_data();
    void handlersDecide();
    void childrenRunInOrderUntilOneFails();
    void treeGoesOnWhenATaskIsDone();
    void cancelInAHandler_data();
    void cancelInAHandler();
    void cancelWaitsForTheTask();
    void destructionInAHandler_data();
    void destructionInAHandler();
    void destructionWhileATaskRuns();
    void secondHandlersAreReported();

private:
    GroupItem traceSetup(const QString &name, SetupResult result = SetupResult::Continue)
    {
        return onGroupSetup([this, name, result] {
            m_trace.append(name);
            return result;
        });
    }
    GroupItem traceDone(const QString &name)
    {
        return onGroupDone([this, name](DoneWith with) { m_trace.append(name + nameOf(with)); });
    }
    GroupItem task(std::optional<DoneResult> immediateResult = {})
    {
        return Task([this, immediateResult] {
            auto made = std::make_unique<TestTask>(&m_trace, immediateResult);
            m_task = made.get();
            return made;
        });
    }
    void traceEnd(TaskTree *tree)
    {
        connect(tree, &TaskTree::done, this, [this](DoneWith with) {
            m_trace.append("tree: " + nameOf(with));
        });
        connect(tree, &TaskTree::setupFailed, this, [this] { m_trace.append("setup failed"); });
    }
    QStringList run(const Group &recipe)
    {
        TaskTree tree(recipe);
        traceEnd(&tree);
        tree.start();
        return m_trace;
    }

    QStringList m_trace;
    QPointer<TestTask> m_task;
};

void TaskingTest::init()
{
    m_trace.clear();
}

void TaskingTest::handlersDecide_data()
{
    QTest::addColumn<SetupResult>("setupResult");
    QTest::addColumn<QString>("doneHandler");
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const char *name,
                        SetupResult result,
                        const QString &doneHandler,
                        const QStringList &expected) {
        QTest::newRow(name) << result << doneHandler << expected;
    };
    row("the group keeps its success",
        SetupResult::Continue,
        "void",
        {"setup", "child", "done: success", "tree: success"});
    row("the done handler makes it an error",
        SetupResult::Continue,
        "error",
        {"setup", "child", "done: success", "tree: error"});
    row("children are skipped after a success",
        SetupResult::StopWithSuccess,
        "void",
        {"setup", "done: success", "tree: success"});
    row("and after an error",
        SetupResult::StopWithError,
        "void",
        {"setup", "setup failed", "done: error", "tree: error"});
    row("the done handler makes it a success",
        SetupResult::StopWithError,
        "success",
        {"setup", "setup failed", "done: error", "tree: success"});
}

void TaskingTest::handlersDecide()
{
    QFETCH(SetupResult, setupResult);
    QFETCH(QString, doneHandler);
    QFETCH(QStringList, expected);

    const GroupItem done = doneHandler == "void"
                               ? traceDone("done: ")
                               : onGroupDone([this, doneHandler](DoneWith with) {
                                     m_trace.append("done: " + nameOf(with));
                                     return toDoneResult(doneHandler == "success");
                                 });
    const Group recipe{traceSetup("setup", setupResult), Group{traceSetup("child")}, done};
    QCOMPARE(run(recipe), expected);
}

void TaskingTest::childrenRunInOrderUntilOneFails()
{
    const Group recipe{
        traceDone("outer: "),
        Group{traceSetup("first")},
        Group{traceSetup("second"), task(DoneResult::Error), traceDone("second: ")},
        Group{traceSetup("third")},
    };
    run(recipe);
    m_trace.removeAll("task gone");
    const QStringList expected{
        "first", "second", "task started", "second: error", "outer: error", "tree: error"};
    QCOMPARE(m_trace, expected);
}

void TaskingTest::treeGoesOnWhenATaskIsDone()
{
    TaskTree tree({task(), Group{traceSetup("after the task")}});
    traceEnd(&tree);
    tree.start();
    QVERIFY(tree.isRunning());
    QVERIFY(!tree.isInHandler());
    emit m_task->done(DoneResult::Success);
    const QStringList expected{"task started", "after the task", "tree: success"};
    QCOMPARE(m_trace, expected);
    QVERIFY(!tree.isRunning());
}

void TaskingTest::cancelInAHandler_data()
{
    QTest::addColumn<bool>("inSetup");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("setup") << true
                           << QStringList{
                                  "setup", "inner: cancel", "outer: cancel", "tree: cancel"};
    QTest::newRow("done")
        << false
        << QStringList{"setup", "child", "inner: success", "outer: cancel", "tree: cancel"};
}

void TaskingTest::cancelInAHandler()
{
    QFETCH(bool, inSetup);
    QFETCH(QStringList, expected);

    std::unique_ptr<TaskTree> tree;
    // As a step's handler does that waits for a tool: the user cancels meanwhile.
    const auto spinAndCancel = [&tree] {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&] {
            QVERIFY(tree->isInHandler());
            tree->cancel();
            QVERIFY(tree->isRunning());
            loop.quit();
        });
        loop.exec();
    };
    const auto setup = [&] {
        m_trace.append("setup");
        if (inSetup)
            spinAndCancel();
    };
    const auto done = [&](DoneWith with) {
        m_trace.append("inner: " + nameOf(with));
        if (!inSetup)
            spinAndCancel();
        return DoneResult::Success;
    };
    tree = std::make_unique<TaskTree>(Group{
        traceDone("outer: "),
        Group{onGroupSetup(setup), Group{traceSetup("child")}, onGroupDone(done)},
        Group{traceSetup("never")},
    });
    traceEnd(tree.get());
    tree->start();
    QCOMPARE(m_trace, expected);
}

void TaskingTest::cancelWaitsForTheTask()
{
    TaskTree tree({task(), Group{traceSetup("never")}, traceDone("group: ")});
    QSignalSpy done(&tree, &TaskTree::done);
    traceEnd(&tree);
    tree.start();
    tree.cancel();
    tree.cancel();
    QVERIFY(tree.isRunning());
    QVERIFY(done.wait());
    const QStringList expected{"task started", "task canceled", "group: cancel", "tree: cancel"};
    QCOMPARE(m_trace, expected);
}

void TaskingTest::destructionInAHandler_data()
{
    QTest::addColumn<QString>("where");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("setup") << "setup" << QStringList{"setup"};
    QTest::newRow("done") << "done" << QStringList{"setup", "child", "done"};
    QTest::newRow("setup failed") << "signal" << QStringList{"setup", "signal"};
}

void TaskingTest::destructionInAHandler()
{
    QFETCH(QString, where);
    QFETCH(QStringList, expected);

    QPointer<TaskTree> tree;
    const auto trace = [&](const QString &place) {
        m_trace.append(place);
        if (where == place)
            delete tree;
    };
    const auto setup = [&] {
        trace("setup");
        return where == "signal" ? SetupResult::StopWithError : SetupResult::Continue;
    };
    tree = new TaskTree(Group{
        traceDone("outer: "),
        Group{onGroupSetup(setup), Group{traceSetup("child")}, onGroupDone([&] { trace("done"); })},
    });
    connect(tree, &TaskTree::setupFailed, this, [&] { trace("signal"); });
    tree->start();
    QCOMPARE(m_trace, expected);
    QVERIFY(tree.isNull());
}

void TaskingTest::destructionWhileATaskRuns()
{
    auto tree = std::make_unique<TaskTree>(Group{task(), traceDone("group: ")});
    traceEnd(tree.get());
    tree->start();
    tree.reset();
    const QStringList expected{"task started", "task gone"};
    QCOMPARE(m_trace, expected);
}

void TaskingTest::secondHandlersAreReported()
{
    const QRegularExpression report("^SOFT ASSERT: ");
    QTest::ignoreMessage(QtDebugMsg, report);
    QTest::ignoreMessage(QtDebugMsg, report);
    run({traceSetup("a"), traceSetup("b"), traceDone("c: "), traceDone("d: ")});
}

QTEST_GUILESS_MAIN(TaskingTest)

#include "tst_tasking.moc"
