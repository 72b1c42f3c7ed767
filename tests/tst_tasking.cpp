#include "straywarnings.h"
#include "testrow.h"

#include <solutions/tasking/tasktree.h>

#include <QPointer>
#include <QProcess>
#include <QTimer>

using namespace Tasking;

Q_DECLARE_METATYPE(Tasking::SetupResult)

struct TestTask
{
    ~TestTask() { trace->append("task gone"); }

    QStringList *trace = nullptr;
    std::optional<DoneResult> immediateResult;
};

/// Ends when it is told to, or at once when it has a result.
class TestTaskAdapter : public TaskAdapter<TestTask>
{
    void start() override
    {
        task()->trace->append("task started");
        theStarted = this;
        if (task()->immediateResult)
            emit done(*task()->immediateResult);
    }

public:
    static inline QPointer<TestTaskAdapter> theStarted;
};

static QString nameOf(DoneWith with)
{
    return QStringList{"success", "error", "cancel"}.at(int(with));
}

class TaskingTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnStrayWarnings();
        m_trace.clear();
    }
    void handlersDecide_data();
    void handlersDecide();
    void childrenRunInOrderUntilOneFails();
    void treeGoesOnWhenATaskIsDone();
    void cancelInAHandler_data();
    void cancelInAHandler();
    void cancelDeletesTheTask();
    void destructionInAHandlerEndsTheProgram_data();
    void destructionInAHandlerEndsTheProgram();
    void destructionWhileATaskRuns();

private:
    GroupItem traceSetup(const QString &name)
    {
        return onGroupSetup([this, name] { m_trace.append(name); });
    }
    GroupItem traceDone(const QString &name)
    {
        return onGroupDone([this, name](DoneWith with) { m_trace.append(name + nameOf(with)); });
    }
    GroupItem task(std::optional<DoneResult> immediateResult = {})
    {
        return CustomTask<TestTaskAdapter>([this, immediateResult](TestTask &task) {
            task.trace = &m_trace;
            task.immediateResult = immediateResult;
        });
    }
    void traceEnd(const TaskTree *tree)
    {
        connect(tree, &TaskTree::done, this, [this](DoneWith with) {
            m_trace.append("tree: " + nameOf(with));
        });
    }
    std::unique_ptr<TaskTree> start(const Group &recipe)
    {
        auto tree = std::make_unique<TaskTree>(recipe);
        traceEnd(tree.get());
        tree->start();
        return tree;
    }

    QStringList m_trace;
};

void TaskingTest::handlersDecide_data()
{
    QTest::addColumn<SetupResult>("setupResult");
    QTest::addColumn<QString>("verdict"); // of the done handler, if any
    QTest::addColumn<QStringList>("expected");

    const QStringList all{"setup", "child", "done: success"};
    const QStringList skipped{"setup", "done: success", "tree: success"};
    const QStringList failed{"setup", "done: error"};
    const auto goOn = SetupResult::Continue;
    const auto error = SetupResult::StopWithError;
    addRow("the group keeps its success", goOn, "", all + QStringList("tree: success"));
    addRow("the done handler makes it an error", goOn, "error", all + QStringList("tree: error"));
    addRow("children are skipped after a success", SetupResult::StopWithSuccess, "", skipped);
    addRow("and after an error", error, "", failed + QStringList("tree: error"));
    addRow(
        "the handler makes it a success", error, "success", failed + QStringList("tree: success"));
}

void TaskingTest::handlersDecide()
{
    QFETCH(SetupResult, setupResult);
    QFETCH(QString, verdict);

    const auto setup = [&] {
        m_trace.append("setup");
        return setupResult;
    };
    const auto done = [&](DoneWith with) {
        m_trace.append("done: " + nameOf(with));
        return verdict == "success";
    };
    start({onGroupSetup(setup),
           Group{traceSetup("child")},
           verdict.isEmpty() ? traceDone("done: ") : onGroupDone(done)});
    QTEST(m_trace, "expected");
}

void TaskingTest::childrenRunInOrderUntilOneFails()
{
    start({traceDone("outer: "),
           Group{traceSetup("first")},
           Group{traceSetup("second"), task(DoneResult::Error), traceDone("second: ")},
           Group{traceSetup("third")}});
    m_trace.removeAll("task gone");
    const QStringList expected{
        "first", "second", "task started", "second: error", "outer: error", "tree: error"};
    QCOMPARE(m_trace, expected);
}

void TaskingTest::treeGoesOnWhenATaskIsDone()
{
    const auto tree = start({task(), Group{traceSetup("after the task")}});
    QVERIFY(tree->isRunning());
    emit TestTaskAdapter::theStarted->done(DoneResult::Success);
    QCOMPARE(m_trace, (QStringList{"task started", "after the task", "tree: success"}));
    QVERIFY(!tree->isRunning());
}

void TaskingTest::cancelInAHandler_data()
{
    QTest::addColumn<QString>("where");
    QTest::addColumn<QStringList>("expected");

    const QStringList end{"outer: cancel", "tree: cancel"};
    addRow("setup", "setup", QStringList{"setup", "inner: cancel"} + end);
    addRow("done", "done", QStringList{"setup", "child", "inner: success"} + end);
}

void TaskingTest::cancelInAHandler()
{
    QFETCH(QString, where);

    TaskTree *tree = nullptr;
    // As a step's handler does that waits for a tool: the user cancels meanwhile.
    const auto spinAndCancel = [&tree] {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&] {
            tree->cancel();
            QVERIFY(tree->isRunning());
            loop.quit();
        });
        loop.exec();
    };
    const auto setup = [&] {
        m_trace.append("setup");
        if (where == "setup")
            spinAndCancel();
    };
    const auto done = [&](DoneWith with) {
        m_trace.append("inner: " + nameOf(with));
        if (where == "done")
            spinAndCancel();
        return DoneResult::Success;
    };
    TaskTree canceled(Group{
        traceDone("outer: "),
        Group{onGroupSetup(setup), Group{traceSetup("child")}, onGroupDone(done)},
        Group{traceSetup("never")},
    });
    tree = &canceled;
    traceEnd(tree);
    tree->start();
    QTEST(m_trace, "expected");
}

void TaskingTest::cancelDeletesTheTask()
{
    const auto tree = start({task(), Group{traceSetup("never")}, traceDone("group: ")});
    tree->cancel();
    QVERIFY(!tree->isRunning());
    QCOMPARE(m_trace, (QStringList{"task started", "task gone", "group: cancel", "tree: cancel"}));
}

void TaskingTest::destructionInAHandlerEndsTheProgram_data()
{
    QTest::addColumn<QString>("where");
    addRow("setup", "setup");
    addRow("done", "done");
}

void TaskingTest::destructionInAHandlerEndsTheProgram()
{
    QFETCH(QString, where);
    constexpr char DELETES[] = "SEALKIT_TEST_DELETES_ITS_TREE";
    if (!qEnvironmentVariableIsSet(DELETES)) {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(DELETES, "1");
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.start(QCoreApplication::applicationFilePath(),
                      {QString(QTest::currentTestFunction()) + ':' + where});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::CrashExit);
        QVERIFY(program.readAll().contains("deleted from within one of its handlers"));
        return;
    }

    TaskTree *tree = nullptr;
    const auto trace = [&](const QString &place) {
        if (where == place)
            delete tree;
    };
    tree = new TaskTree(
        Group{onGroupSetup([&] { trace("setup"); }), onGroupDone([&] { trace("done"); })});
    tree->start();
}

void TaskingTest::destructionWhileATaskRuns()
{
    start({task(), traceDone("group: ")}).reset();
    QCOMPARE(m_trace, (QStringList{"task started", "task gone"}));
}

QTEST_GUILESS_MAIN(TaskingTest)
#include "tst_tasking.moc"
