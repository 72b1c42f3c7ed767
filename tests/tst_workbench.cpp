#include "files.h"
#include "processes.h"
#include "rpmpackage.h"
#include "settingsscope.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <commandline.h>
#include <generalpage.h>
#include <mainwindow.h>
#include <optionsdialog.h>
#include <session.h>

#include <projectexplorer/buildstep.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <utils/pathchooser.h>

#include <QtWidgets>

#include <csignal>

using namespace Workbench;

constexpr int RUN_TIMEOUT = 60'000;

// A package that builds in no time: what is told here is about signing.
constexpr char QUICK_SPEC[] = "Name: quick\nVersion: 1\nRelease: 1\nSummary: Nothing\n"
                              "License: BSD\nBuildArch: noarch\n"
                              "%description\nNothing.\n%files\n";

using Prepare = std::function<void()>;
Q_DECLARE_METATYPE(Prepare)

class WorkbenchTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void deploys_data();
    void deploys();
    void interruptLeavesNothingBehind();
    void checksTheDisplay();

    void windowStopsADeploy_data();
    void windowStopsADeploy();
    void windowSaysWhatFailedAndRemembersSteps();
    void windowGoesOnWhileItLooksAtPackages();
    void optionsHoldLanguageAndSdk();

private:
    QString project() const { return m_sdk.workspace() + "/quick"; }
    QStringList signedPackages() const
    {
        QStringList packages;
        for (const QFileInfo &package : QDir(project() + "/RPMS/noarch").entryInfoList(QDir::Files))
            if (isSigned(package.filePath()))
                packages << package.fileName();
        return packages;
    }
    // Into the program's settings file, as the program will read it.
    void set(const QString &settingsKey, const QVariant &value) const
    {
        const QString file = m_sdk.path() + "/settings/Sealkit/Workbench.conf";
        QSettings(file, QSettings::IniFormat).setValue(settingsKey, value);
    }
    void useKey(const QString &key, const QString &certificate = {}) const
    {
        set("Sealkit.GlobalSignKey", m_sdk.path() + '/' + key);
        set("Sealkit.GlobalSignCert", m_sdk.path() + '/' + certificate);
    }
    // Replaces the signing tool of the usual target.
    void replaceTool(const QByteArray &contents) const
    {
        QFile::remove(m_sdk.tool("rpmsign-external"));
        writeScript(m_sdk.tool("rpmsign-external"), {});
        writeFile(m_sdk.tool("rpmsign-external"), contents);
    }
    void open(MainWindow *window, const QString &project) const
    {
        CommandLine line;
        line.sdk = m_sdk.path();
        line.project = project;
        window->open(line);
    }
    void start(QProcess &workbench, const QStringList &arguments) const
    {
        const QStringList always{
            "--settings", m_sdk.path() + "/settings", "--sdk", m_sdk.path(), "--deploy", project()};
        workbench.setProcessChannelMode(QProcess::MergedChannels);
        workbench.start(WORKBENCH_EXECUTABLE, always + arguments);
    }

    SettingsScope m_settings;
    const TemporarySdk m_sdk;
    const QByteArray m_tool = readFile(m_sdk.tool("rpmsign-external"));
};

void WorkbenchTest::init()
{
    failOnStrayWarnings();
    // After the last window has quit, no dialog waits any more until the program runs anew.
    QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(); });
    QCoreApplication::exec();

    qputenv("QT_MESSAGE_PATTERN", "%{if-warning}STRAY %{endif}%{message}"); // of programs
    m_settings.clear();
    for (const QString &folder : {project(), m_sdk.path() + "/settings"})
        QDir(folder).removeRecursively();
    writeFile(project() + "/rpm/quick.spec", QUICK_SPEC);
    replaceTool(m_tool);
}

void WorkbenchTest::deploys_data()
{
    addColumns<QString, Prepare, int, QString, int>(
        "arguments", "prepare", "exitCode", "message", "signatureCount");

    const QString failed = "The deploy failed. Nothing was signed: ";
    const QString noSignStep = "the deploy configuration has no enabled sign step";
    const QString typed = "--passphrase-file " + m_sdk.path() + "/phrase";
    const Prepare nothing = [] {};
    const auto phrase = [this](const QByteArray &text) -> Prepare {
        return [this, text] {
            useKey("workspace/keys/encrypted_key.pem", "workspace/keys/encrypted_cert.pem");
            writeFile(m_sdk.path() + "/phrase", text);
        };
    };
    const auto tool = [this](const QByteArray &script) -> Prepare {
        return [this, script] { replaceTool("#!/bin/sh\n" + script); };
    };
    const Prepare outside = [this] { useKey("ca/elsewhere.pem"); };
    const Prepare broken = [this] { writeFile(project() + "/rpm/quick.spec", "Name: quick\n"); };
    const Prepare noSpec = [this] { QFile::remove(project() + "/rpm/quick.spec"); };

    addRow(
        "regular key", "", nothing, 0, "Signed by Regular Developer: quick-1-1.noarch.rpm.\n", 1);
    addRow("right pass phrase", typed, phrase("demo\r\nmore\n"), 0, "completed successfully", 1);
    addRow("wrong pass phrase", typed, phrase("nonsense\n"), 1, "wrong pass phrase for the key", 0);
    addRow("nobody to ask", "", phrase({}), 1, "Declined: no display to ask on", 0);
    addRow("key outside the workspace", "", outside, 1, failed + "Error: key and certificate", 0);
    addRow("package that does not build", "", broken, 1, "Error while building", 0);
    addRow("tool that fails", "", tool("echo refused; exit 3\n"), 1, "sign failed: refused\n", 0);
    addRow("tool that signs nothing", "", tool("exit 0\n"), 1, "Nothing was signed.\n", 0);
    addRow("target without tools", "--target " + BARE_TARGET, nothing, 1, noSignStep, 0);
    addRow("customer-sign is off", "--target " + CUSTOMER_TARGET, nothing, 1, noSignStep, 0);
    addRow("help", "--help", nothing, 0, "Usage: ", 0);
    addRow("another project, too", "other", nothing, 2, "only one project", 0);
    addRow("empty pass phrase", typed, phrase({}), 2, m_sdk.path() + "/phrase", 0);
    addRow("unknown target", "--target Moon", nothing, 1, RPMSIGN_TARGET, 0);
    addRow("no SDK", "--sdk /nonexistent", nothing, 1, "/nonexistent", 0);
    addRow("no project", "", noSpec, 1, "no package description", 0);
}

void WorkbenchTest::deploys()
{
    QFETCH(QString, arguments);
    QFETCH(Prepare, prepare);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    QFETCH(int, signatureCount);

    set("Workbench/Project", "/one");
    prepare();
    QProcess workbench;
    start(workbench, arguments.split(' ', Qt::SkipEmptyParts));
    QVERIFY(workbench.waitForFinished(RUN_TIMEOUT));
    QString output = QString::fromUtf8(workbench.readAll());
    QVERIFY(!output.remove("STRAY This plugin does not support ").contains("STRAY "));
    const QString end = output.right(900); // what fits into a failure message
    QVERIFY2(workbench.exitCode() == exitCode, qPrintable(end));
    QVERIFY2(output.contains(message), qPrintable(end));
    QCOMPARE(output.contains("workbench: "), exitCode != 0);
    QVERIFY2(!output.contains("nonsense"), "the pass phrase leaks");
    QCOMPARE(signedPackages().size(), signatureCount);
    QTRY_COMPARE(processesOf(m_sdk.path()), QStringList());
    // A deploy is no reason to remember another project.
    QVERIFY(readFile(m_sdk.path() + "/settings/Sealkit/Workbench.conf").contains("Project=/one\n"));
}

void WorkbenchTest::interruptLeavesNothingBehind()
{
    replaceTool(
        "#!/bin/sh\ntrap '' TERM HUP INT; echo hanging; while :; do PATH=/bin sleep 1; done\n");
    QProcess workbench;
    start(workbench, {});
    QByteArray output;
    QTRY_VERIFY_WITH_TIMEOUT((output += workbench.readAll()).contains("[I]\thanging"), RUN_TIMEOUT);
    workbench.terminate();
    QVERIFY(workbench.waitForFinished(RUN_TIMEOUT));
    QCOMPARE(workbench.exitStatus(), QProcess::NormalExit);
    QCOMPARE(workbench.exitCode(), 128 + SIGTERM);
    QTRY_COMPARE(processesOf(m_sdk.path()), QStringList());
    QCOMPARE(signedPackages(), QStringList());
}

void WorkbenchTest::checksTheDisplay()
{
    QCOMPARE(QProcess::execute(WORKBENCH_EXECUTABLE, {"--check-display"}), 0);
    QProcess workbench;
    workbench.setProcessEnvironment({});
    workbench.start(WORKBENCH_EXECUTABLE, {"--check-display"});
    QVERIFY(workbench.waitForFinished());
    QVERIFY(workbench.exitStatus() == QProcess::CrashExit || workbench.exitCode() != 0);
}

static void trigger(const MainWindow &window, const QString &text)
{
    for (QAction *action : window.findChildren<QAction *>()) {
        if (action->text() == text)
            action->trigger();
    }
}

void WorkbenchTest::windowStopsADeploy_data()
{
    addColumns<QString>("action");
    addRow("cancel", "&Cancel");
    addRow("close the project", "&Close Project");
}

void WorkbenchTest::windowStopsADeploy()
{
    QFETCH(QString, action);
    replaceTool("#!/bin/sh\necho hanging; while :; do PATH=/bin sleep 1; done\n");
    Session session;
    MainWindow window(&session);
    open(&window, project());
    const auto *messages = window.findChild<QPlainTextEdit *>("generalMessages");
    QTimer stops;
    stops.callOnTimeout([&] {
        if (!messages->toPlainText().contains("hanging"))
            return;
        stops.stop();
        trigger(window, action);
    });
    stops.start(10);
    QTimer confirms;
    confirms.callOnTimeout([] {
        if (auto *question = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            question->button(QMessageBox::Yes)->click();
    });
    confirms.start(10);
    trigger(window, "&Deploy");
    const auto *verdict = window.findChild<QLabel *>("verdict");
    QTRY_COMPARE_WITH_TIMEOUT(verdict->text(),
                              "The deploy failed. Nothing was signed: Package sign stopped by user",
                              RUN_TIMEOUT);
    QTRY_COMPARE(processesOf(m_sdk.path()), QStringList());
    const bool closes = action == "&Close Project";
    QTRY_COMPARE(ProjectExplorer::ProjectManager::projects().isEmpty(), closes);
    session.shutdown();
}

void WorkbenchTest::windowGoesOnWhileItLooksAtPackages()
{
    replaceTool("#!/bin/sh\n[ $1 = dump ] && /bin/sleep 2\nexit 0\n");
    Session session;
    MainWindow window(&session);
    open(&window, project());
    trigger(window, "&Deploy");
    qint64 longestWait = 0;
    QElapsedTimer lastTurn;
    lastTurn.start();
    QTimer turns;
    turns.callOnTimeout([&] { longestWait = qMax(longestWait, lastTurn.restart()); });
    turns.start(10);
    const auto *verdict = window.findChild<QLabel *>("verdict");
    QTRY_COMPARE_WITH_TIMEOUT(verdict->text(), "Nothing was signed.", RUN_TIMEOUT);
    longestWait = qMax(longestWait, lastTurn.elapsed());
    QVERIFY2(longestWait < 1500, qPrintable(QString::number(longestWait)));
}

void WorkbenchTest::windowSaysWhatFailedAndRemembersSteps()
{
    replaceTool("#!/bin/sh\necho refused; exit 3\n");
    const QString signStep = "RPM Sign (rpmsign-external)";
    {
        Session session;
        MainWindow window(&session);
        open(&window, project());
        trigger(window, "&Deploy");
        const auto *verdict = window.findChild<QLabel *>("verdict");
        QTRY_COMPARE(verdict->text(),
                     "The deploy failed. Nothing was signed: Error: package sign failed: refused");
        QVERIFY(verdict->palette().windowText() != window.palette().windowText());

        // The sign step off and above the build step, and the build step away.
        window.findChildren<QCheckBox *>("enabled").at(1)->click();
        window.findChildren<QToolButton *>("up").at(1)->click();
        const auto *target = ProjectExplorer::ProjectManager::projects().first()->activeTarget();
        const auto *steps = target->activeDeployConfiguration()->stepList();
        QTRY_COMPARE(steps->at(0)->displayName(), signStep);
        window.findChildren<QToolButton *>("remove").at(0)->click();
        QTRY_COMPARE(steps->count(), 1);
        window.closeAtOnce();
        session.shutdown();
    }
    Session session;
    MainWindow window(&session);
    open(&window, {}); // the project is remembered
    const auto boxes = window.findChildren<QCheckBox *>("enabled");
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.first()->text(), signStep);
    QVERIFY(!boxes.first()->isChecked());
    session.shutdown();
}

void WorkbenchTest::optionsHoldLanguageAndSdk()
{
    Session session;
    QString error;
    QVERIFY2(session.openSdk(m_sdk.path(), &error), qPrintable(error));
    const GeneralPage page(&session);
    OptionsDialog dialog;
    auto *sdk = dialog.findChild<Utils::PathChooser *>("sdk");
    QCOMPARE(sdk->filePath().toFSPathString(), m_sdk.path());
    QTest::keyClicks(dialog.findChild<QComboBox *>("languages"), "Deu");
    sdk->lineEdit()->setText("/other");
    connect(&dialog, &OptionsDialog::applied, &session, &Session::save);
    dialog.accept();
    QCOMPARE(QSettings().value("General/OverrideLanguage").toString(), "de");
    QCOMPARE(QSettings().value("Workbench/Sdk").toString(), "/other");
    session.shutdown();
}

QTEST_MAIN(WorkbenchTest)
#include "tst_workbench.moc"
