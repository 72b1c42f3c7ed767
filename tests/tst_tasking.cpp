#include "straywarnings.h"
#include "testrow.h"

#include <solutions/tasking/tasktree.h>

#include <QProcess>

using namespace Tasking;

Q_DECLARE_METATYPE(Tasking::SetupResult)

static QString nameOf(DoneWith with)
{
    return QStringList{"success", "error", "cancel"}.at(int(with));
}

class TaskingTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void handlersDecide_data();
    void handlersDecide();
    void treeDeletedInAHandlerEndsTheProgram();

private:
    GroupItem setup(const QString &name, SetupResult result = SetupResult::Continue)
    {
        return onGroupSetup([=, this] {
            m_trace.append(name);
            return result;
        });
    }
    GroupItem done(const QString &name)
    {
        return onGroupDone(
            [=, this](DoneWith with) { m_trace.append(name + ": " + nameOf(with)); });
    }
    void run(const Group &recipe)
    {
        m_trace.clear();
        TaskTree tree(recipe);
        connect(&tree, &TaskTree::done, this, [this](DoneWith with) {
            m_trace.append("tree: " + nameOf(with));
        });
        tree.start();
    }

    QStringList m_trace;
};

void TaskingTest::handlersDecide_data()
{
    // verdict: of the done handler, if any
    addColumns<SetupResult, QString, QString>("setupResult", "verdict", "expected");

    const auto goOn = SetupResult::Continue;
    const auto error = SetupResult::StopWithError;
    const auto success = SetupResult::StopWithSuccess;
    addRow("the group keeps its success", goOn, "", "setup, child, done: success, tree: success");
    addRow("the done handler fails", goOn, "error", "setup, child, done: success, tree: error");
    addRow("a success skips the children", success, "", "setup, done: success, tree: success");
    addRow("an error skips the children", error, "", "setup, done: error, tree: error");
    addRow("the done handler saves", error, "success", "setup, done: error, tree: success");
}

void TaskingTest::handlersDecide()
{
    QFETCH(SetupResult, setupResult);
    QFETCH(QString, verdict);
    const auto decide = [&](DoneWith with) {
        m_trace.append("done: " + nameOf(with));
        return verdict == "success";
    };
    run({setup("setup", setupResult),
         Group{setup("child")},
         verdict.isEmpty() ? done("done") : onGroupDone(decide)});
    QTEST(m_trace.join(", "), "expected");
}

// As the IDE does that cancels a deploy while a step's handler waits for a tool
void TaskingTest::treeDeletedInAHandlerEndsTheProgram()
{
    constexpr char DELETES[] = "SEALKIT_TEST_DELETES_ITS_TREE";
    if (qEnvironmentVariableIsSet(DELETES)) {
        TaskTree *tree = nullptr;
        tree = new TaskTree(Group{onGroupSetup([&tree] { delete tree; })});
        tree->start();
        return;
    }
    qputenv(DELETES, "1");
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QCoreApplication::applicationFilePath(), {QTest::currentTestFunction()});
    QVERIFY(program.waitForFinished());
    qunsetenv(DELETES);
    QCOMPARE(program.exitStatus(), QProcess::CrashExit);
    QVERIFY(program.readAll().contains("deleted from within one of its handlers"));
}

QTEST_GUILESS_MAIN(TaskingTest)
#include "tst_tasking.moc"
