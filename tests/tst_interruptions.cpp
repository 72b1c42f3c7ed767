#include "dialogdriver.h"
#include "files.h"
#include "messages.h"
#include "ownprogram.h"
#include "passworddialog.h"
#include "processes.h"
#include "promptanswers.h"
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
#include <projectexplorer/deployconfiguration.h>
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
using Utils::FilePath;

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
    QString inSdk(const QString &name) const { return m_workplace.sdk().path() + '/' + name; }
    QString key(const QString &name) const
    {
        return m_workplace.sdk().workspace() + "/keys/" + name;
    }
    QAction *menuAction() const
    {
        return Core::ActionManager::command("Sealkit.SignDialog")->action();
    }

    void release();
    void quit();
    void meanwhile(const std::function<void()> &action, bool releaseAfterwards);

    BuildStepList *prepareDeploy(const QString &target);
    void clickInIde(const std::function<void()> &action);
    void actOnDeploy(const QString &action, BuildStepList *steps);
    bool isOver() const { return !dialog || m_hasQuit; }
    void signInDialog(const QString &package);
    void actOnDialog(const QString &action);

    Workplace m_workplace;
    std::unique_ptr<QMainWindow> m_ide;
    QPushButton *m_button = nullptr;
    std::unique_ptr<SealkitPlugin> m_plugin;
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
    QVERIFY(Brisk::openInstallation(FilePath::fromString(m_workplace.sdk().path()), &error));
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
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_workplace.sdk().path()), QStringList(), RUN_TIMEOUT);
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

void InterruptionsTest::quit()
{
    m_hasQuit = true;
    emit Core::ICore::instance()->coreAboutToClose();
}

/// Calls \a action once, from the event loop, as soon as a program is held or a prompt is up.
void InterruptionsTest::meanwhile(const std::function<void()> &action, bool releaseAfterwards)
{
    m_moment = std::make_unique<QTimer>();
    QTimer *timer = m_moment.get();
    connect(timer, &QTimer::timeout, this, [this, timer, action, releaseAfterwards] {
        if (m_held ? !m_held->isWaiting() : !isPrompted())
            return;
        disconnect(timer, nullptr, this, nullptr);
        action();
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

void InterruptionsTest::duringADeploy_data()
{
    addColumns<QString, QByteArray, QString, bool, bool>(
        "target", "heldWord", "action", "goesOn", "success");

    const struct
    {
        const char *name;
        QString target;
        QByteArray heldWord; // none: up to the prompt
    } places[] = {{"rpmsign-external signs", RPMSIGN_TARGET, "sign"},
                  {"rpmsign-external asks", RPMSIGN_TARGET, {}},
                  {"rpmsign-external dumps", RPMSIGN_TARGET, "dump"},
                  {"customer-sign signs", CUSTOMER_TARGET, "--binaries-key"},
                  {"customer-sign asks", CUSTOMER_TARGET, {}}};
    for (const auto &place : places) {
        const auto row = [&place](const char *action, bool goesOn, bool success) {
            QTest::addRow("%s, %s", place.name, action)
                << place.target << place.heldWord << action << goesOn << success;
        };
        row("close the project", true, true);
        row("remove what runs", true, true);
        row("deploy again", true, true);
        row("change the kit", true, true);
        row("close the SDK", true, true);
        row("cancel", true, true);
        row("quit", false, place.heldWord == "dump"); // it is signed already
    }
}

BuildStepList *InterruptionsTest::prepareDeploy(const QString &target)
{
    const Project *project = m_workplace.openProject(target);
    m_package = m_workplace.makePackages(project, {"a.rpm"}).first();
    BuildStepList *steps = deploySteps(project);
    steps->at(0)->setStepEnabled(false); // the packages are there already
    BuildStep *sign = steps->at(1);
    sign->setStepEnabled(true);
    const QString home = m_workplace.sdk().workspace() + "/home/.kilnsdk/";
    sign->fromMap({{"Sealkit.UseDefaultValues", false},
                   {"Sealkit.Key", key("encrypted_key.pem")},
                   {"Sealkit.Cert", key("encrypted_cert.pem")},
                   {"Sealkit.BinariesKey", key("encrypted_key.pem")},
                   {"Sealkit.PackagesKey", home + "packages-key.pem"},
                   {"Sealkit.PackagesCert", home + "packages-cert.pem"}});
    return steps;
}

/// Clicks into the IDE's window, where the click leads to \a action.
void InterruptionsTest::clickInIde(const std::function<void()> &action)
{
    connect(m_button, &QPushButton::clicked, m_moment.get(), action);
    QTest::mouseClick(m_ide->windowHandle(), Qt::LeftButton, {}, m_button->geometry().center());
}

void InterruptionsTest::actOnDeploy(const QString &action, BuildStepList *steps)
{
    Target *target = steps->target();
    if (action == "close the project") {
        clickInIde([this] { m_workplace.closeProjects(); });
    } else if (action == "remove what runs") {
        QVERIFY(!steps->removeStep(1));
        QVERIFY(!target->removeDeployConfiguration(target->activeDeployConfiguration()));
    } else if (action == "deploy again") {
        QVERIFY(!BuildManager::buildList(steps));
    } else if (action == "change the kit") {
        KilnSdkKitAspectFactory::setBuildTarget(
            target->kit(), Brisk::Sdk::buildEngines().first(), BARE_TARGET);
    } else if (action == "close the SDK") {
        Brisk::closeInstallation();
    } else if (action == "cancel") {
        clickInIde([] { BuildManager::cancel(); });
    } else if (action == "quit") {
        quit();
    }
}

void InterruptionsTest::duringADeploy()
{
    QFETCH(QString, target);
    QFETCH(QByteArray, heldWord);
    QFETCH(QString, action);
    QFETCH(bool, goesOn);
    QFETCH(bool, success);
    if (action == "quit" && ranInOwnProgram())
        return;

    BuildStepList *steps = prepareDeploy(target);
    Kit *kit = steps->target()->kit();
    const QString tool = target == RPMSIGN_TARGET ? "rpmsign-external" : "customer-sign";
    if (heldWord == "dump") // which comes after the prompt
        m_user = std::make_unique<PromptAnswers>(QStringList{"demo"});
    if (!heldWord.isEmpty())
        m_held = std::make_unique<HeldProgram>(m_workplace.sdk().tool(tool, target), heldWord);
    meanwhile([&] { actOnDeploy(action, steps); }, goesOn);

    QString output;
    bool hasErrors = false;
    connect(BuildManager::instance(),
            &BuildManager::outputAdded,
            m_moment.get(),
            [&](const QString &text, BuildStep::OutputFormat format) {
                output += text;
                hasErrors |= format == BuildStep::OutputFormat::ErrorMessage;
            });
    QSignalSpy finished(BuildManager::instance(), &BuildManager::buildQueueFinished);
    QVERIFY(BuildManager::buildList(steps));
    QTRY_VERIFY_WITH_TIMEOUT(!BuildManager::isBuilding(), RUN_TIMEOUT);
    if (action == "change the kit")
        KilnSdkKitAspectFactory::setBuildTarget(kit, Brisk::Sdk::buildEngines().first(), target);

    QVERIFY(m_acted);
    // Held back while a tool runs, a click acts afterwards; below a prompt nobody can click.
    if (action == "close the project")
        QTRY_COMPARE_WITH_TIMEOUT(
            ProjectManager::projects().isEmpty(), !heldWord.isEmpty(), RUN_TIMEOUT);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.first().first().toBool() && !hasErrors, success);
    QVERIFY(!isPrompted());
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_workplace.sdk().path()), QStringList(), RUN_TIMEOUT);
    const bool isSigned = QFile::exists(m_package + ".1.p7s");
    QCOMPARE(output.count("Package sign completed successfully."), int(isSigned));
    QVERIFY(isSigned || !success);
}

void InterruptionsTest::duringTheDialog_data()
{
    addColumns<QString, QByteArray, QString, bool>("program", "heldWords", "action", "goesOn");

    const QString tool = "engine/targets/" + RPMSIGN_TARGET + "/bin/rpmsign-external";
    const struct
    {
        const char *name;
        QString program;
        QByteArray heldWords; // none: up to the prompt
        bool endsWithDialog;
    } places[] = {{"the engine starts", "bin/brisk", "engine start", false},
                  {"a target is looked at", tool, "--version", false},
                  {"a package is verified", tool, "verify", true},
                  {"a package is signed", tool, "sign", true},
                  {"the tool asks", "", "", false}};
    for (const auto &place : places) {
        const auto row = [&place](const char *action, bool goesOn) {
            QTest::addRow("%s, %s", place.name, action)
                << place.program << place.heldWords << action << goesOn;
        };
        row("unload the plugin", !place.endsWithDialog);
        row("choose the menu entry", true);
        row("close the window", true);
        row("deploy", true);
        row("quit", false);
    }
}

static QList<QDialog *> openDialogs()
{
    QList<QDialog *> dialogs;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        if (auto *signDialog = qobject_cast<SignDialog *>(widget))
            dialogs << signDialog;
    }
    return dialogs;
}

/// Signs a package as a user does, as far as the dialog lets it come.
void InterruptionsTest::signInDialog(const QString &package)
{
    menuAction()->trigger();
    open(openDialogs().constFirst());
    if (isOver())
        return;
    enter("developerKeyPathChooser", key("encrypted_key.pem"));
    enter("developerCertificatePathChooser", key("encrypted_cert.pem"));
    enter("rpmPathChooser", package);
    if (!isOver())
        click("addSignaturePushButton");
}

void InterruptionsTest::actOnDialog(const QString &action)
{
    if (action == "unload the plugin") {
        m_plugin.reset();
    } else if (action == "choose the menu entry") {
        menuAction()->trigger();
        QCOMPARE(openDialogs(), QList<QDialog *>{dialog});
    } else if (action == "close the window") {
        dialog->close();
    } else if (action == "deploy") {
        m_user = std::make_unique<PromptAnswers>(QStringList{"demo", "demo"});
        QSignalSpy finished(BuildManager::instance(), &BuildManager::buildQueueFinished);
        QVERIFY(BuildManager::buildList(prepareDeploy(CUSTOMER_TARGET)));
        QVERIFY(finished.size() == 1 && finished.first().first().toBool());
    } else if (action == "quit") {
        quit();
    }
}

void InterruptionsTest::duringTheDialog()
{
    QFETCH(QString, program);
    QFETCH(QByteArray, heldWords);
    QFETCH(QString, action);
    QFETCH(bool, goesOn);
    if (action == "quit" && ranInOwnProgram())
        return;

    const QString package = m_workplace.sdk().workspace() + "/dialog.rpm";
    writeFile(package, "\xed\xab\xee\xdb");
    QFile::remove(package + ".1.p7s");
    if (!heldWords.isEmpty())
        m_held = std::make_unique<HeldProgram>(inSdk(program), heldWords);
    Messages messages;
    meanwhile([&] { actOnDialog(action); }, goesOn);
    signInDialog(package);

    QVERIFY(m_acted);
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_workplace.sdk().path()), QStringList(), RUN_TIMEOUT);
    QVERIFY(!isPrompted());
    const bool isSigned = QFile::exists(package + ".1.p7s");
    QCOMPARE(isSigned, !isOver());
    QVERIFY(messages.take().filter("rpmsign-external sign -k").size() <= 1);
    if (!dialog)
        return;
    QCOMPARE(icon("signStateLabel") == "OK", isSigned);
    QCOMPARE(icon("verifyIconLabel") == "OK", isSigned);
}

QTEST_MAIN(InterruptionsTest)
#include "tst_interruptions.moc"
