#include "dialogdriver.h"
#include "files.h"
#include "ide/interruptions.h"
#include "messages.h"
#include "ownprogram.h"
#include "passworddialog.h"
#include "processes.h"
#include "promptanswers.h"
#include "rpmpackage.h"
#include "sealkitplugin.h"
#include "signdialog.h"
#include "straywarnings.h"
#include "testrow.h"
#include "workplace.h"
#include "wrappedprogram.h"

#include <brisk/installation.h>
#include <brisk/sdk.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/actionmanager/command.h>
#include <coreplugin/icore.h>
#include <host/application.h>
#include <host/buildmanager.h>
#include <host/generalmessages.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <veyraos/kilnsdkkitaspect.h>

#include <QSignalSpy>
#include <QTest>
#include <QtWidgets>

#include <functional>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;
using Kiln::Internal::KilnSdkKitAspectFactory;

/// What a user, or the world, does while a tool runs or asks. Wherever a run is hit, it ends,
/// leaves no process, tells its outcome once, and calls nothing signed that is not.
class InterruptionsTest : public QObject, private DialogDriver
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void stopADeploy_data();
    void stopADeploy();
    void duringADeploy_data();
    void duringADeploy();
    void duringTheDialog_data();
    void duringTheDialog();

private:
    bool isPrompted() const
    {
        return qobject_cast<PasswordDialogPrivate *>(QApplication::activeModalWidget());
    }
    QString key(const QString &name) const { return m_sdk.workspace() + "/keys/" + name; }
    QAction *menuAction() const
    {
        return Core::ActionManager::command("Sealkit.SignDialog")->action();
    }

    void release();
    void hold(const QString &program, const QString &moment);
    void when(const std::function<bool()> &isTime, const std::function<void()> &act);
    void meanwhile(const QString &action, bool releaseAfterwards);
    void act(const QString &action);

    void stop(QAction *action, const QString &way);
    BuildStepList *prepareDeploy(const QString &target);
    bool isOver() const { return !dialog || m_hasQuit; }
    void signInDialog(const QString &package);

    Workplace m_workplace;
    const TemporarySdk &m_sdk = m_workplace.sdk();
    std::unique_ptr<QMainWindow> m_ide;
    QMenu *m_menu = nullptr;
    std::unique_ptr<SealkitPlugin> m_plugin;
    BuildStepList *m_steps = nullptr;
    QString m_package;
    std::unique_ptr<HeldProgram> m_held;
    std::unique_ptr<QTimer> m_moment;
    std::unique_ptr<PromptAnswers> m_user;
    bool m_acted = false;
    bool m_hasQuit = false;
};

void InterruptionsTest::init()
{
    failOnStrayWarnings();
    QString error;
    QVERIFY(Brisk::openInstallation(Utils::FilePath::fromString(m_sdk.path()), &error));
    m_ide = std::make_unique<QMainWindow>();
    m_menu = m_ide->menuBar()->addMenu("Build");
    m_menu->addAction("cancel", QKeySequence("Alt+Backspace"), [] { BuildManager::cancel(); });
    m_menu->addAction(
        "close the project", QKeySequence("Ctrl+W"), [this] { m_workplace.closeProjects(); });
    m_ide->show();
    QVERIFY(QTest::qWaitForWindowActive(m_ide.get()));
    Core::Host::setMainWindow(m_ide.get());
    m_plugin = std::make_unique<SealkitPlugin>();
    QVERIFY(m_plugin->initialize({}, &error));
    m_plugin->extensionsInitialized();
    m_acted = false;
}

void InterruptionsTest::cleanup()
{
    release();
    m_moment.reset();
    m_workplace.closeProjects();
    m_plugin.reset();
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_sdk.path()), QStringList(), RUN_TIMEOUT);
    m_user.reset();
    m_held.reset();
    Core::Host::setMainWindow(nullptr);
    m_ide.reset();
}

/// Held programs go on, and prompts are answered.
void InterruptionsTest::release()
{
    if (m_held)
        m_held->release();
    m_user = std::make_unique<PromptAnswers>(QStringList{"demo"});
}

void InterruptionsTest::hold(const QString &program, const QString &moment)
{
    if (moment != "asks")
        m_held = std::make_unique<HeldProgram>(program, moment.toUtf8());
}

/// Acts once, from the event loop, as soon as it is time, and fails if the run does not end then.
void InterruptionsTest::when(const std::function<bool()> &isTime, const std::function<void()> &act)
{
    m_moment = std::make_unique<QTimer>();
    QTimer *timer = m_moment.get();
    connect(timer, &QTimer::timeout, this, [this, timer, isTime, act] {
        if (!isTime())
            return;
        disconnect(timer, nullptr, this, nullptr);
        act();
        m_acted = true;
        timer->callOnTimeout([this] {
            release();
            QFAIL("The run does not end");
        });
        timer->start(RUN_TIMEOUT);
    });
    timer->start(10);
}

/// As soon as a program is held or a prompt is up.
void InterruptionsTest::meanwhile(const QString &action, bool releaseAfterwards)
{
    when([this] { return m_held ? m_held->isWaiting() : isPrompted(); },
         [this, action, releaseAfterwards] {
             act(action);
             if (releaseAfterwards)
                 release();
         });
}

void InterruptionsTest::act(const QString &action)
{
    if (action == "cancel") {
        BuildManager::cancel();
    } else if (action == "cancel and deploy again") {
        BuildManager::cancel();
        QVERIFY(BuildManager::buildList(m_steps));
    } else if (action == "deploy again") {
        QVERIFY(!BuildManager::buildList(m_steps));
        QVERIFY(!m_steps->removeStep(1));
    } else if (action == "change the kit") {
        KilnSdkKitAspectFactory::setBuildTarget(
            m_steps->target()->kit(), Brisk::Sdk::buildEngines().first(), BARE_TARGET);
    } else if (action == "close the SDK") {
        Brisk::closeInstallation();
    } else if (action == "unload the plugin") {
        m_plugin.reset();
    } else if (action == "choose the menu entry") {
        menuAction()->trigger();
        QCOMPARE(m_ide->findChildren<SignDialog *>().size(), 1);
    } else if (action == "close the window") {
        dialog->close();
    } else if (action == "deploy") {
        m_user = std::make_unique<PromptAnswers>(QStringList{"demo", "demo"});
        QSignalSpy finished(BuildManager::instance(), &BuildManager::buildQueueFinished);
        QVERIFY(BuildManager::buildList(prepareDeploy(CUSTOMER_TARGET)));
        QVERIFY(finished.wait(RUN_TIMEOUT) && finished.first().first().toBool());
    } else if (action == "quit") {
        // In the order of the IDE.
        m_hasQuit = true;
        BuildManager::cancel();
        emit Core::ICore::instance()->coreAboutToClose();
        m_plugin.reset();
        Core::Host::GeneralMessages::instance()->setOpen(false);
    }
}

/// A row for each action at each moment, which is when a program starts with some words, or asks.
static void addRows(const QString &moments, const QString &actions)
{
    addColumns<QString, QString, QString>("program", "moment", "action");

    for (const QString &moment : moments.split('|')) {
        for (const QString &action : actions.split('|'))
            QTest::addRow("%s, %s", qPrintable(moment), qPrintable(action))
                << moment.section(' ', 0, 0) << moment.section(' ', 1) << action;
    }
}

BuildStepList *InterruptionsTest::prepareDeploy(const QString &target)
{
    const Project *project = m_workplace.openProject(target);
    m_package = m_workplace.makePackages(project, {"a.rpm"}).first();
    m_steps = deploySteps(project);
    m_steps->at(0)->setStepEnabled(false); // the packages are there already
    BuildStep *sign = m_steps->at(1);
    sign->setStepEnabled(true);
    const QString home = m_sdk.workspace() + "/home/.kilnsdk/";
    sign->fromMap({{"Sealkit.UseDefaultValues", false},
                   {"Sealkit.Key", key("encrypted_key.pem")},
                   {"Sealkit.Cert", key("encrypted_cert.pem")},
                   {"Sealkit.BinariesKey", key("encrypted_key.pem")},
                   {"Sealkit.PackagesKey", home + "packages-key.pem"},
                   {"Sealkit.PackagesCert", home + "packages-cert.pem"}});
    return m_steps;
}

void InterruptionsTest::stopADeploy_data()
{
    addInterruptions({"cancel", "close the project"});
}

void InterruptionsTest::stop(QAction *action, const QString &way)
{
    if (way == "by shortcut") {
        QTest::keySequence(m_ide.get(), action->shortcut());
    } else if (way == "from an open menu") {
        m_menu->setActiveAction(action);
        QTest::keyClick(m_menu, Qt::Key_Return);
    } else {
        action->trigger();
    }
}

void InterruptionsTest::stopADeploy()
{
    QFETCH(QString, event);
    QFETCH(QString, moment);
    QFETCH(QString, way);
    prepareDeploy(RPMSIGN_TARGET);
    const bool asks = moment == "at the prompt";
    hold(m_sdk.tool("rpmsign-external"), asks ? "asks" : "sign");
    QString output;
    const auto isTime = [&] {
        return moment == "while the tool starts" ? output.contains("Signing RPM package...")
               : asks                            ? isPrompted()
                                                 : m_held->isWaiting();
    };
    const auto stopNow = [&] { stop(m_menu->actions().at(event == "cancel" ? 0 : 1), way); };
    when(isTime, stopNow);
    connect(BuildManager::instance(),
            &BuildManager::outputAdded,
            m_moment.get(),
            [&output](const QString &text) { output += text; });
    QSignalSpy finished(BuildManager::instance(), &BuildManager::buildQueueFinished);
    if (way == "from an open menu")
        m_menu->popup({});
    QVERIFY(BuildManager::buildList(m_steps));
    if (moment == "at once")
        stopNow();
    QTRY_VERIFY_WITH_TIMEOUT(!BuildManager::isBuilding(), RUN_TIMEOUT);

    QVERIFY(m_acted != (moment == "at once"));
    QCOMPARE(ProjectManager::projects().isEmpty(), event == "close the project");
    // It does not wait until the tool says something.
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_sdk.path()), QStringList(), RUN_TIMEOUT);
    QVERIFY(!isPrompted());
    QVERIFY(!finished.first().first().toBool());
    QCOMPARE(output.count("Package sign stopped by user"), 1);
    QVERIFY(!output.contains("Error: ") && !output.contains("successfully"));
    QVERIFY(!isSigned(m_package));
}

void InterruptionsTest::duringADeploy_data()
{
    addRows("rpmsign-external sign|rpmsign-external asks|rpmsign-external dump|"
            "customer-sign --binaries-key|customer-sign asks",
            "cancel|cancel and deploy again|deploy again|change the kit|close the SDK|quit");
}

void InterruptionsTest::duringADeploy()
{
    QFETCH(QString, program);
    QFETCH(QString, moment);
    QFETCH(QString, action);
    if (action == "quit" && ranInOwnProgram())
        return;

    const QString target = program == "customer-sign" ? CUSTOMER_TARGET : RPMSIGN_TARGET;
    Kit *kit = prepareDeploy(target)->target()->kit();
    hold(m_sdk.tool(program, target), moment);
    if (moment == "dump") // which comes after the prompt
        m_user = std::make_unique<PromptAnswers>(QStringList{"demo"});
    const bool isStopped = action == "cancel" || action == "quit";
    meanwhile(action, !isStopped);

    QString output;
    connect(BuildManager::instance(),
            &BuildManager::outputAdded,
            m_moment.get(),
            [&](const QString &text) { output += text; });
    QSignalSpy finished(BuildManager::instance(), &BuildManager::buildQueueFinished);
    QVERIFY(BuildManager::buildList(m_steps));
    QTRY_VERIFY_WITH_TIMEOUT(!BuildManager::isBuilding(), RUN_TIMEOUT);
    if (action == "change the kit")
        KilnSdkKitAspectFactory::setBuildTarget(kit, Brisk::Sdk::buildEngines().first(), target);

    QVERIFY(m_acted);
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_sdk.path()), QStringList(), RUN_TIMEOUT);
    QVERIFY(!isPrompted());
    const bool isAgain = action == "cancel and deploy again";
    QCOMPARE(finished.size(), isAgain ? 2 : 1);
    QCOMPARE(finished.last().first().toBool(), !isStopped);
    QCOMPARE(isSigned(m_package), !isStopped || moment == "dump");
    const bool isSignedFirst = moment == "dump"; // which comes after the signing
    QCOMPARE(output.count("Package sign completed successfully."),
             int(!isStopped) + int(isSignedFirst && (isStopped || isAgain)));
    QCOMPARE(output.count("Package sign stopped by user"), int(isStopped || isAgain));
    QCOMPARE(output.count("Error: "), 0);
}

void InterruptionsTest::duringTheDialog_data()
{
    addRows("brisk engine start|rpmsign-external --version|rpmsign-external verify|"
            "rpmsign-external sign|rpmsign-external asks",
            "unload the plugin|choose the menu entry|close the window|deploy|quit");
}

/// Signs a package as a user does, as far as the dialog lets it come.
void InterruptionsTest::signInDialog(const QString &package)
{
    menuAction()->trigger();
    open(m_ide->findChild<SignDialog *>());
    if (isOver())
        return;
    enter("developerKeyPathChooser", key("encrypted_key.pem"));
    enter("developerCertificatePathChooser", key("encrypted_cert.pem"));
    enter("rpmPathChooser", package);
    if (!isOver())
        click("addSignaturePushButton");
}

void InterruptionsTest::duringTheDialog()
{
    QFETCH(QString, program);
    QFETCH(QString, moment);
    QFETCH(QString, action);
    if (action == "quit" && ranInOwnProgram())
        return;

    const QString package = m_sdk.workspace() + "/dialog.rpm";
    writePackage(package);
    hold(program == "brisk" ? m_sdk.path() + "/bin/brisk" : m_sdk.tool(program), moment);
    Messages messages;
    meanwhile(action, action != "quit" && action != "unload the plugin");
    signInDialog(package);

    QVERIFY(m_acted);
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_sdk.path()), QStringList(), RUN_TIMEOUT);
    QVERIFY(!isPrompted());
    const bool isSigned = ::isSigned(package);
    QCOMPARE(isSigned, !isOver());
    QVERIFY(messages.take().filter("rpmsign-external sign -k").size() <= 1);
    if (!dialog)
        return;
    QCOMPARE(icon("signStateLabel") == "OK", isSigned);
    QCOMPARE(icon("verifyIconLabel") == "OK", isSigned);
}

QTEST_MAIN(InterruptionsTest)
#include "tst_interruptions.moc"
