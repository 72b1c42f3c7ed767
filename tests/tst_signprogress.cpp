#include "files.h"
#include "processes.h"
#include "promptanswers.h"
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
    void cancelledDumpStopsTheDeploy();
    void promptIsNotCovered();
    void waitingTakesNoTime();
    void nothingIsShownWithoutAWindow();

private:
    void useKey(const QString &name);
    QStringList sign(const std::function<void()> &meanwhile, bool releaseAfterwards = true);
    void holdTool(const QByteArray &words)
    {
        m_tool = std::make_unique<HeldProgram>(m_workplace.sdk().tool("rpmsign-external"), words);
    }
    void useEveryInput();
    static QProgressDialog *progressWindow()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *dialog = qobject_cast<QProgressDialog *>(widget);
                dialog && dialog->isVisible())
                return dialog;
        }
        return nullptr;
    }

    Workplace m_workplace;
    std::unique_ptr<QMainWindow> m_ide;
    QLineEdit *m_editor = nullptr;
    QPushButton *m_button = nullptr;
    QAction *m_action = nullptr;
    RpmsignExternalStep *m_step = nullptr;
    QString m_package;
    std::unique_ptr<HeldProgram> m_tool;
};

void SignProgressTest::init()
{
    failOnStrayWarnings();
    m_ide = std::make_unique<QMainWindow>();
    m_editor = new QLineEdit;
    m_button = new QPushButton("Cancel Build");
    m_action = new QAction("Close Project", m_ide.get());
    m_action->setShortcut(Qt::CTRL | Qt::Key_W);
    m_ide->addAction(m_action);
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->addWidget(m_editor);
    layout->addWidget(m_button);
    m_ide->setCentralWidget(content);
    m_editor->setFocus();
    m_ide->show();
    QVERIFY(QTest::qWaitForWindowActive(m_ide.get()));
    Core::Host::setMainWindow(m_ide.get());

    const Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    m_package = m_workplace.makePackages(project, {"hello.rpm"}).first();
    BuildStepList *steps = deploySteps(project);
    m_step = new RpmsignExternalStep(steps, RpmsignExternalStep::stepId());
    steps->appendStep(m_step);
    useKey("client");
}

void SignProgressTest::cleanup()
{
    m_tool.reset();
    m_workplace.closeProjects();
    Core::Host::setMainWindow(nullptr);
    m_ide.reset();
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_workplace.sdk().path()), QStringList(), TIMEOUT);
}

void SignProgressTest::useKey(const QString &name)
{
    const QString keys = m_workplace.sdk().workspace() + "/keys/";
    m_step->fromMap(
        {{"ProjectExplorer.ProjectConfiguration.Id", RpmsignExternalStep::stepId().toSetting()},
         {"Sealkit.UseDefaultValues", false},
         {"Sealkit.Key", keys + name + "_key.pem"},
         {"Sealkit.Cert", keys + name + "_cert.pem"}});
}

/// Runs the step; \a meanwhile is called from the event loop while the held tool waits, which then
/// may go on. Returns what the step wrote.
QStringList SignProgressTest::sign(const std::function<void()> &meanwhile, bool releaseAfterwards)
{
    bool isDone = false;
    QTimer moment;
    connect(&moment, &QTimer::timeout, this, [&] {
        if (!m_tool->isWaiting() || isDone)
            return;
        isDone = true;
        meanwhile();
        if (releaseAfterwards)
            m_tool->release();
    });
    moment.start(10);
    const QStringList output = runStep(m_step);
    [&] { QVERIFY(isDone); }();
    return output;
}

/// Types, clicks, uses a shortcut and closes the window, as the window system hands it on.
void SignProgressTest::useEveryInput()
{
    QWindow *window = m_ide->windowHandle();
    QTest::keyClick(window, 'a');
    QTest::keyClick(window, 'b');
    QTest::mouseClick(
        window, Qt::LeftButton, {}, m_button->mapTo(m_ide.get(), m_button->rect().center()));
    QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
    m_ide->close();
}

void SignProgressTest::inputIsDeliveredAfterTheRun()
{
    QSignalSpy clicked(m_button, &QPushButton::clicked);
    QSignalSpy triggered(m_action, &QAction::triggered);
    const auto received = [&] {
        return QStringList{m_editor->text(),
                           QString::number(clicked.size()),
                           QString::number(triggered.size()),
                           m_ide->isVisible() ? "open" : "closed"};
    };
    const QStringList nothing{"", "0", "0", "open"};

    holdTool("sign");
    const QStringList output = sign([&] {
        useEveryInput();
        // What the user does under the window is dropped, as under any modal one.
        QTRY_VERIFY_WITH_TIMEOUT(progressWindow(), TIMEOUT);
        QTest::keyClick(m_ide->windowHandle(), 'c');
        QCOMPARE(received(), nothing);
    });
    QVERIFY(output.contains("NormalMessage: Package sign completed successfully."));
    QCOMPARE(received(), nothing); // the handlers of the task tree may still be on the stack

    const QStringList everything{"ab", "1", "1", "closed"};
    QTRY_COMPARE_WITH_TIMEOUT(received(), everything, TIMEOUT);
    QVERIFY(!progressWindow());
}

void SignProgressTest::windowOffersToCancel()
{
    int issues = 0;
    connect(m_step, &BuildStep::addTask, this, [&issues] { ++issues; });
    QElapsedTimer elapsed;
    elapsed.start();
    holdTool("sign");
    const auto cancel = [&] {
        QTRY_VERIFY_WITH_TIMEOUT(progressWindow(), TIMEOUT);
        QVERIFY(elapsed.elapsed() > 900); // short runs don't flicker
        QVERIFY(progressWindow()->findChild<QLabel *>()->text().contains("hello.rpm"));
        auto *button = progressWindow()->findChild<QPushButton *>();
        QTest::mouseClick(progressWindow()->windowHandle(),
                          Qt::LeftButton,
                          {},
                          button->mapTo(progressWindow(), button->rect().center()));
    };
    const QStringList output = sign(cancel, false);
    const QStringList expected{"NormalMessage: Signing RPM package...",
                               "ErrorMessage: Package sign stopped by user"};
    QCOMPARE(output, expected);
    QVERIFY(!QFile::exists(m_package + ".1.p7s"));
    QCOMPARE(issues, 0);

    // The next run is a new one.
    m_tool.reset();
    QVERIFY(runStep(m_step).contains("NormalMessage: Package sign completed successfully."));
}

void SignProgressTest::cancelledDumpStopsTheDeploy()
{
    holdTool("dump");
    const auto cancel = [] {
        QTRY_VERIFY_WITH_TIMEOUT(progressWindow(), TIMEOUT);
        QTest::keyClick(progressWindow()->windowHandle(), Qt::Key_Escape);
    };
    const QStringList output = sign(cancel, false);
    QCOMPARE(output.last(), "ErrorMessage: Package sign stopped by user");
    QVERIFY(!output.contains("Stderr: Failed to verify signature dump"));
    QVERIFY(QFile::exists(m_package + ".1.p7s"));
}

void SignProgressTest::promptIsNotCovered()
{
    useKey("encrypted");
    PromptAnswers user({"demo"}, std::chrono::milliseconds(1'500));
    holdTool("dump");
    const QStringList output = sign([&] { QCOMPARE(user.prompts().size(), 1); });
    QVERIFY(output.contains("NormalMessage: Package sign completed successfully."));
}

void SignProgressTest::waitingTakesNoTime()
{
    holdTool("sign");
    sign([&] {
        useEveryInput();
        const std::clock_t before = std::clock();
        QTest::qWait(900);
        QVERIFY(std::clock() - before < CLOCKS_PER_SEC / 4);
    });
}

void SignProgressTest::nothingIsShownWithoutAWindow()
{
    Core::Host::setMainWindow(nullptr);
    holdTool("sign");
    sign([&] {
        QTest::qWait(1'500);
        QVERIFY(!progressWindow());
    });
}

QTEST_MAIN(SignProgressTest)
#include "tst_signprogress.moc"
