#include "files.h"
#include "processes.h"
#include "promptanswers.h"
#include "rpmpackage.h"
#include "rpmsignexternalstep.h"
#include "straywarnings.h"
#include "workplace.h"
#include "wrappedprogram.h"

#include <host/application.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/task.h>

#include <QSignalSpy>
#include <QTest>
#include <QtWidgets>

#include <ctime>
#include <functional>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;

constexpr int TIMEOUT = 20'000;

using Action = std::function<void(HeldProgram &)>;

/// What the user finds in front of the IDE while a step signs: a window of the IDE in which a
/// click, a key or the closing would reach something.
class SignProgressTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void inputIsDeliveredAfterTheRun();
    void windowOffersToCancel();
    void promptIsNotCovered();

private:
    QStringList sign(const QByteArray &word, const QString &key, const Action &act);
    static QProgressDialog *progressWindow()
    {
        return qobject_cast<QProgressDialog *>(QApplication::activeModalWidget());
    }

    Workplace m_workplace;
    QMainWindow m_ide;
    RpmsignExternalStep *m_step = nullptr;
    QString m_package;
};

void SignProgressTest::init()
{
    failOnStrayWarnings();
    m_ide.show();
    QVERIFY(QTest::qWaitForWindowActive(&m_ide));
    Core::Host::setMainWindow(&m_ide);
    const Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    m_package = m_workplace.makePackages(project, {"hello.rpm"}).first();
    BuildStepList *steps = deploySteps(project);
    m_step = new RpmsignExternalStep(steps, RpmsignExternalStep::stepId());
    steps->appendStep(m_step);
}

void SignProgressTest::cleanup()
{
    m_workplace.closeProjects();
    Core::Host::setMainWindow(nullptr);
    m_ide.hide();
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_workplace.sdk().path()), QStringList(), TIMEOUT);
}

/// Runs the step, holds the tool at \a word, and acts then, from the event loop. Returns what the
/// step wrote.
QStringList SignProgressTest::sign(const QByteArray &word, const QString &key, const Action &act)
{
    const QString path = m_workplace.sdk().workspace() + "/keys/" + key;
    m_step->fromMap({{"Sealkit.UseDefaultValues", false},
                     {"Sealkit.Key", path + "_key.pem"},
                     {"Sealkit.Cert", path + "_cert.pem"}});
    HeldProgram tool(m_workplace.sdk().tool("rpmsign-external"), word);
    bool isDone = false;
    QTimer moment;
    connect(&moment, &QTimer::timeout, this, [&] {
        if (tool.isWaiting() && !std::exchange(isDone, true))
            act(tool);
    });
    moment.start(10);
    QTimer::singleShot(TIMEOUT, &moment, [&] { tool.release(); }); // nobody ended the run
    const QStringList output = runStep(m_step);
    [&] { QVERIFY(isDone); }();
    return output;
}

void SignProgressTest::inputIsDeliveredAfterTheRun()
{
    auto *editor = new QLineEdit;
    m_ide.setMenuWidget(editor);
    editor->setFocus();
    auto *button = new QPushButton;
    m_ide.setCentralWidget(button);
    QAction action;
    action.setShortcut(Qt::CTRL | Qt::Key_W);
    m_ide.addAction(&action);
    QStringList received;
    connect(
        editor, &QLineEdit::textEdited, &action, [&](const QString &text) { received << text; });
    connect(button, &QPushButton::clicked, &action, [&] { received << "click"; });
    connect(&action, &QAction::triggered, &action, [&] { received << "shortcut"; });
    const QStringList output = sign("sign", "client", [&](HeldProgram &tool) {
        QWindow *window = m_ide.windowHandle();
        QTest::keyClick(window, 'a');
        QTest::keyClick(window, 'b');
        QTest::mouseClick(window, Qt::LeftButton, {}, button->geometry().center());
        QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
        m_ide.close();
        const std::clock_t before = std::clock();
        QTest::qWait(500);
        QVERIFY(std::clock() - before
                < CLOCKS_PER_SEC / 4); // waiting takes no time of the processor
        QTRY_VERIFY_WITH_TIMEOUT(progressWindow(), TIMEOUT);
        // What the user does under the window is dropped, as under any modal one.
        QTest::keyClick(window, 'c');
        tool.release();
    });
    QVERIFY(output.contains("NormalMessage: Package sign completed successfully."));
    QCOMPARE(received, QStringList()); // the handlers of the task tree may still be on the stack
    QVERIFY(m_ide.isVisible());
    QTRY_VERIFY(!m_ide.isVisible());
    QCOMPARE(received, (QStringList{"a", "ab", "click", "shortcut"}));
    QVERIFY(!progressWindow());
}

void SignProgressTest::windowOffersToCancel()
{
    QSignalSpy issues(m_step, &BuildStep::addTask);
    QStringList output = sign("dump", "client", [](HeldProgram &) {
        QTRY_VERIFY_WITH_TIMEOUT(progressWindow(), TIMEOUT);
        QTest::keyClick(progressWindow()->windowHandle(), Qt::Key_Escape);
    });
    QCOMPARE(output.last(), "ErrorMessage: Package sign stopped by user");
    QVERIFY(!output.contains("Stderr: Failed to verify signature dump"));
    QVERIFY(isSigned(m_package));
    writePackage(m_package);

    // The next run is a new one.
    output = sign("sign", "client", [](HeldProgram &) {
        QTest::qWait(500);
        QVERIFY(!progressWindow()); // short runs don't flicker
        QTRY_VERIFY_WITH_TIMEOUT(progressWindow(), TIMEOUT);
        QVERIFY(progressWindow()->findChild<QLabel *>()->text().contains("hello.rpm"));
        const QPoint button = progressWindow()->findChild<QPushButton *>()->geometry().center();
        QTest::mouseClick(progressWindow()->windowHandle(), Qt::LeftButton, {}, button);
    });
    QCOMPARE(output.join('|'),
             "NormalMessage: Signing RPM package...|ErrorMessage: Package sign stopped by user");
    QVERIFY(!isSigned(m_package));
    QCOMPARE(issues.size(), 0);
}

void SignProgressTest::promptIsNotCovered()
{
    PromptAnswers user({"demo"}, std::chrono::milliseconds(1'500));
    const QStringList output = sign("dump", "encrypted", [&](HeldProgram &tool) {
        QCOMPARE(user.prompts().size(), 1);
        tool.release();
    });
    QVERIFY(output.contains("NormalMessage: Package sign completed successfully."));
}

QTEST_MAIN(SignProgressTest)
#include "tst_signprogress.moc"
