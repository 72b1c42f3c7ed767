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
};

void TaskingTest::handlersDecide_data()
{
    // verdict: of the done handler, if any
    addColumns<SetupResult, QString, QString>("setupResult", "verdict", "expected");

    const auto goOn = SetupResult::Continue;
    const auto error = SetupResult::StopWithError;
    const auto success = SetupResult::StopWithSuccess;
    addRow("the group keeps its success", goOn, "", "child, done: success, tree: success");
    addRow("the done handler fails", goOn, "error", "child, done: success, tree: error");
    addRow("a success skips the children", success, "", "done: success, tree: success");
    addRow("an error skips the children", error, "", "done: error, tree: error");
    addRow("the done handler saves", error, "success", "done: error, tree: success");
}

void TaskingTest::handlersDecide()
{
    QFETCH(SetupResult, setupResult);
    QFETCH(QString, verdict);
    QStringList trace;
    const auto onDone = [&](DoneWith with) { trace << "done: " + nameOf(with); };
    const auto decide = [&](DoneWith with) {
        onDone(with);
        return verdict == "success";
    };
    TaskTree tree({onGroupSetup([&] { return setupResult; }),
                   Group{onGroupSetup([&] { trace << "child"; })},
                   verdict.isEmpty() ? onGroupDone(onDone) : onGroupDone(decide)});
    connect(&tree, &TaskTree::done, [&](DoneWith with) { trace << "tree: " + nameOf(with); });
    tree.start();
    QTEST(trace.join(", "), "expected");
}

// As the IDE does that cancels a deploy while a step's handler waits for a tool
void TaskingTest::treeDeletedInAHandlerEndsTheProgram()
{
    const QString deletes = "SEALKIT_TEST_DELETES_ITS_TREE";
    if (qEnvironmentVariableIsSet(deletes.toLatin1())) {
        TaskTree *tree = nullptr;
        tree = new TaskTree(Group{onGroupSetup([&tree] { delete tree; })});
        tree->start();
        return;
    }
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.setEnvironment(QProcess::systemEnvironment() << deletes + "=1");
    program.start(QCoreApplication::applicationFilePath(), {QTest::currentTestFunction()});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::CrashExit);
    QVERIFY(program.readAll().contains("deleted from within one of its handlers"));
}

QTEST_GUILESS_MAIN(TaskingTest)
#include "tst_tasking.moc"
