#include "dialogdriver.h"
#include "files.h"
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
    void meanwhile(const QString &action, bool releaseAfterwards);
    void act(const QString &action);

    void clickInIde(const std::function<void()> &action);
    BuildStepList *prepareDeploy(const QString &target);
    bool isOver() const { return !dialog || m_hasQuit; }
    void signInDialog(const QString &package);

    Workplace m_workplace;
    const TemporarySdk &m_sdk = m_workplace.sdk();
    std::unique_ptr<QMainWindow> m_ide;
    QPushButton *m_button = nullptr;
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
    m_button = new QPushButton;
    m_ide->setCentralWidget(m_button);
    m_ide->show();
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

/// Acts once, from the event loop, as soon as a program is held or a prompt is up.
void InterruptionsTest::meanwhile(const QString &action, bool releaseAfterwards)
{
    m_moment = std::make_unique<QTimer>();
    QTimer *timer = m_moment.get();
    connect(timer, &QTimer::timeout, this, [this, timer, action, releaseAfterwards] {
        if (m_held ? !m_held->isWaiting() : !isPrompted())
            return;
        disconnect(timer, nullptr, this, nullptr);
        act(action);
        m_acted = true;
        if (releaseAfterwards)
            release();
        timer->callOnTimeout([this] {
            release();
            QFAIL("The run does not end");
        });
        timer->start(RUN_TIMEOUT);
    });
    timer->start(10);
}

/// Clicks into the IDE's window, where the click leads to \a action.
void InterruptionsTest::clickInIde(const std::function<void()> &action)
{
    connect(m_button, &QPushButton::clicked, m_moment.get(), action);
    QTest::mouseClick(m_ide->windowHandle(), Qt::LeftButton, {}, m_button->geometry().center());
}

void InterruptionsTest::act(const QString &action)
{
    if (action == "close the project") {
        clickInIde([this] { m_workplace.closeProjects(); });
    } else if (action == "cancel") {
        clickInIde([] { BuildManager::cancel(); });
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
        QVERIFY(finished.size() == 1 && finished.first().first().toBool());
    } else if (action == "quit") {
        m_hasQuit = true;
        emit Core::ICore::instance()->coreAboutToClose();
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

void InterruptionsTest::duringADeploy_data()
{
    addRows("rpmsign-external sign|rpmsign-external asks|rpmsign-external dump|"
            "customer-sign --binaries-key|customer-sign asks",
            "close the project|cancel|deploy again|change the kit|close the SDK|quit");
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
    meanwhile(action, action != "quit");

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
    // Held back while a tool runs, a click acts afterwards; below a prompt nobody can click.
    if (action == "close the project")
        QTRY_COMPARE_WITH_TIMEOUT(
            ProjectManager::projects().isEmpty(), moment != "asks", RUN_TIMEOUT);
    QVERIFY(!isPrompted());
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_sdk.path()), QStringList(), RUN_TIMEOUT);
    const bool isSigned = action != "quit" || moment == "dump"; // which comes after the signing
    QCOMPARE(finished.size(), 1);
    QVERIFY(finished.first().first().toBool() || !isSigned);
    QCOMPARE(::isSigned(m_package), isSigned);
    QCOMPARE(output.count("Package sign completed successfully."), int(isSigned));
    QCOMPARE(output.count("Error: "), int(!isSigned));
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
    const bool endsWithDialog = moment == "verify" || moment == "sign";
    meanwhile(action, action != "quit" && !(action == "unload the plugin" && endsWithDialog));
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
