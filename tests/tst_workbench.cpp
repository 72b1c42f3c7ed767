#include "files.h"
#include "processes.h"
#include "settingsscope.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <commandline.h>
#include <generalpage.h>
#include <mainwindow.h>
#include <optionsdialog.h>
#include <outputpane.h>
#include <promptanswerer.h>
#include <session.h>

#include <coreplugin/dialogs/ioptionspage.h>
#include <host/buildmanager.h>
#include <host/issues.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <utils/pathchooser.h>
#include <utils/utilsicons.h>
#include <veyraos/kilnconstants.h>
#include <veyraos/kilnkb2rpmbuildstep.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProcess>
#include <QProgressDialog>
#include <QScrollBar>
#include <QSettings>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTextBlock>
#include <QTimer>
#include <QToolButton>

#include <csignal>

using namespace Workbench;
using ProjectExplorer::BuildManager;
using ProjectExplorer::BuildStep;
using ProjectExplorer::BuildStepList;
using ProjectExplorer::DeploymentTask;
using ProjectExplorer::ProjectManager;
using ProjectExplorer::Task;

namespace {

constexpr int RUN_TIMEOUT = 60'000;

// A package that builds in no time: what is told here is about signing.
constexpr char QUICK_SPEC[] = "Name: quick\nVersion: 1\nRelease: 1\nSummary: Nothing\n"
                              "License: BSD\nBuildArch: noarch\n"
                              "%description\nNothing.\n%files\n";

struct Transcript
{
    int exitCode = -1;
    QString output;
    QString errors;
};

// One SDK and one project in its workspace, both new.
class Ground
{
public:
    Ground() { writeFile(project() + "/rpm/quick.spec", QUICK_SPEC); }

    QString path() const { return m_sdk.path(); }
    QString project() const { return path() + "/workspace/quick"; }
    QString package() const { return project() + "/RPMS/noarch/quick-1-1.noarch.rpm"; }
    QStringList signatures() const
    {
        return QDir(project() + "/RPMS/noarch").entryList({"*.p7s"}, QDir::Files);
    }
    QString key(const QString &name) const { return path() + "/workspace/keys/" + name; }

    QString settingsPath() const { return path() + "/settings/Sealkit/Workbench.conf"; }
    // Into the program's settings file, as the program will read it.
    void set(const QString &settingsKey, const QVariant &value) const
    {
        QSettings(settingsPath(), QSettings::IniFormat).setValue(settingsKey, value);
    }
    void useKey(const QString &name) const
    {
        set("Sealkit.GlobalSignKey", key(name + "_key.pem"));
        set("Sealkit.GlobalSignCert", key(name + "_cert.pem"));
    }
    // Replaces the signing tool of the usual target by a shell script.
    void replaceTool(const QByteArray &script) const
    {
        QFile::remove(m_sdk.tool("rpmsign-external"));
        writeScript(m_sdk.tool("rpmsign-external"), script);
    }

    CommandLine commandLine() const
    {
        CommandLine line;
        line.sdk = path();
        line.projects = {project()};
        return line;
    }
    QStringList deployArguments() const
    {
        return {"--settings", path() + "/settings", "--sdk", path(), "--deploy", project()};
    }
    Transcript deploy(const QStringList &furtherArguments = {}) const
    {
        QProcess workbench;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("XDG_RUNTIME_DIR"); // as in a container
        environment.insert("QT_MESSAGE_PATTERN", "%{if-warning}STRAY %{endif}%{message}");
        workbench.setProcessEnvironment(environment);
        workbench.start(WORKBENCH_EXECUTABLE, deployArguments() + furtherArguments);
        if (!workbench.waitForFinished(RUN_TIMEOUT))
            workbench.kill();
        return {workbench.exitStatus() == QProcess::NormalExit ? workbench.exitCode() : -1,
                QString::fromUtf8(workbench.readAllStandardOutput()),
                QString::fromUtf8(workbench.readAllStandardError())};
    }

    // Of living processes that have to do with this SDK.
    QStringList processes() const { return processesOf(path()); }

private:
    TemporarySdk m_sdk;
};

} // namespace

class WorkbenchTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void readsCommandLine_data();
    void readsCommandLine();
    void readsPassphraseFile_data();
    void readsPassphraseFile();
    void declinesWhatItCannotAnswer();

    void outputFollowsItsEnd();
    void outputForgetsItsOldestLines();
    void deploys_data();
    void deploys();
    void interruptLeavesNothingBehind();
    void deployLeavesTheMemoryAlone();

    void windowSaysWhatWasSigned_data();
    void windowSaysWhatWasSigned();
    void firstErrorBringsIssuesForward();
    void iconsAreDrawnByMasks();
    void optionsAreAppliedOnlyWhereTheyWereShown();
    void optionsHoldLanguageAndSdk();
    void windowConfiguresSteps();
    void closingWhileItOpensForgetsNothing();
    void quitEndsTheRun();

private:
    SettingsScope m_settings;
};

void WorkbenchTest::init()
{
    failOnStrayWarnings();
    // After the last window has quit, no dialog waits any more until the program runs anew.
    QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(); });
    QCoreApplication::exec();
}

void WorkbenchTest::readsCommandLine_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("exitCode"); // -1: goes on
    QTest::addColumn<QString>("message");

    addRow("two projects", "a b", -1, "");
    addRow("deploy", "--deploy a", -1, "");
    addRow("deploy and a project", "--deploy a b", 2, "exactly one");
    addRow("deploy nothing", "--deploy", 2, "deploy");
    addRow("unknown option", "--nonsense", 2, "nonsense");
    addRow("help", "--help", 0, "Usage: ");
    addRow("pass phrase for a window", "--passphrase-file x", 2, "needs --deploy");
}

void WorkbenchTest::readsCommandLine()
{
    QFETCH(QString, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    const auto parsed = parseCommandLine(("workbench " + arguments).split(' '));
    const auto *exit = std::get_if<EarlyExit>(&parsed);
    QCOMPARE(exit ? exit->exitCode : -1, exitCode);
    if (exit)
        QVERIFY2(exit->message.contains(message), qPrintable(exit->message));
}

void WorkbenchTest::readsPassphraseFile_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QString>("passphrase"); // null: refused

    addRow("no line end", QByteArray("demo"), "demo");
    addRow("more lines", QByteArray("demo\r\nother\n"), "demo");
    addRow("blanks stay", QByteArray(" de mo \n"), " de mo ");
    addRow("other scripts", QByteArray("пароль\n"), "пароль");
    addRow("empty file", QByteArray(), QString());
    addRow("empty line", QByteArray("\ndemo\n"), QString());
}

void WorkbenchTest::readsPassphraseFile()
{
    QFETCH(QByteArray, contents);
    QFETCH(QString, passphrase);
    QTemporaryDir folder;
    writeFile(folder.filePath("phrase"), contents);
    const auto parsed = parseCommandLine(
        {"workbench", "--deploy", "p", "--passphrase-file", folder.filePath("phrase")});
    const auto *line = std::get_if<CommandLine>(&parsed);
    QCOMPARE(line ? line->passphrase.value_or(QString()) : QString(), passphrase);
    if (!line)
        QCOMPARE(std::get<EarlyExit>(parsed).exitCode, 2);
}

void WorkbenchTest::declinesWhatItCannotAnswer()
{
    PromptAnswerer answerer("s3cret");
    QStringList explanations;
    connect(&answerer, &PromptAnswerer::declined, this, [&](const QString &text) {
        explanations << text;
    });

    QDialog dialog; // takes no answer
    auto *edit = new QLineEdit;
    edit->setEchoMode(QLineEdit::Password);
    auto *layout = new QFormLayout(&dialog);
    layout->addRow("Password:", edit);
    layout->addRow(new QLabel("Enter pass phrase for k:"));
    layout->addRow(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));

    QMessageBox question(
        QMessageBox::Question, "t", "Overwrite?", QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(question.exec(), int(QMessageBox::No));
    QCOMPARE(explanations,
             (QStringList{"A tool asked: \"Enter pass phrase for k:\". Declined: the pass phrase "
                          "from the file cannot be used.",
                          "A dialog asked: \"Overwrite?\". Declined: no display to ask on."}));
}

using Change = std::function<void(BuildStepList *)>;
using Prepare = std::function<void(const Ground &)>;
Q_DECLARE_METATYPE(Prepare)

// Opens the project as the window would, changes its steps and saves it.
static void configure(const Ground &ground, const QString &target, const Change &change)
{
    Session session;
    QString error;
    QVERIFY2(session.openSdk(ground.path(), &error), qPrintable(error));
    session.loadPlugins();
    QCOMPARE(Session::pluginErrors(), QStringList());
    const auto *project = session.openProject(ground.project(), target, &error);
    QVERIFY2(project, qPrintable(error));
    change(project->activeTarget()->activeDeployConfiguration()->stepList());
    session.save();
    session.shutdown();
}

void WorkbenchTest::outputFollowsItsEnd()
{
    OutputPane pane;
    pane.resize(300, 100);
    pane.show();
    QScrollBar *bar = pane.verticalScrollBar();
    for (int words = 0; words < 60; ++words) {
        // Whether and where a line wraps makes a difference, also to the lines after it.
        pane.clear();
        for (int i = 0; i < 20; ++i) {
            pane.appendMessage(QString("wrapped ").repeated(words + i % 3));
            QCoreApplication::processEvents();
        }
        QTRY_VERIFY(pane.showsAll());
        QCoreApplication::processEvents();
        QCOMPARE(bar->value(), bar->maximum());
    }

    // The reader has gone back to the start, and is left there.
    bar->setValue(0);
    pane.appendMessage("more");
    QTRY_VERIFY(pane.showsAll());
    QCoreApplication::processEvents();
    QCOMPARE(bar->value(), 0);
}

void WorkbenchTest::outputForgetsItsOldestLines()
{
    OutputPane pane;
    pane.append("gone before it shows\n", BuildStep::OutputFormat::Stdout);
    pane.clear();
    const auto write = [&pane](int first, int last) {
        for (int i = first; i <= last; ++i) {
            pane.append(QString::number(i) + (i < last ? "\r\n" : "\n"),
                        i % 1000 == 0 ? BuildStep::OutputFormat::Stderr
                                      : BuildStep::OutputFormat::Stdout);
        }
        QTRY_VERIFY_WITH_TIMEOUT(pane.showsAll(), 60'000);
    };
    write(1, 500);
    write(501, 100'500);

    // The last line is the empty one that waits for more.
    QCOMPARE(pane.blockCount(), 50'000);
    QCOMPARE(pane.document()->firstBlock().text(), "50502");
    for (QTextBlock block = pane.document()->firstBlock(); block.next().next().isValid();
         block = block.next())
        QCOMPARE(block.next().text().toInt(), block.text().toInt() + 1);
    QCOMPARE(pane.document()->lastBlock().previous().text(), "100500");
}

void WorkbenchTest::deploys_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("inOutput");
    QTest::addColumn<QString>("inErrors");
    QTest::addColumn<int>("signatureCount");

    const QString failed = "The deploy failed.";
    const QString completed = "Package sign completed successfully.";
    const Prepare nothing = [](const Ground &) {};
    const Prepare encrypted = [](const Ground &ground) {
        ground.useKey("encrypted");
        writeFile(ground.path() + "/right", "demo\n");
        writeFile(ground.path() + "/wrong", "nonsense-phrase\n");
    };
    const Prepare outside = [](const Ground &ground) {
        ground.set("Sealkit.GlobalSignKey", ground.path() + "/ca/elsewhere.pem");
    };
    const auto configured = [](const QString &target, const Change &change) -> Prepare {
        return [=](const Ground &ground) { configure(ground, target, change); };
    };
    const Prepare unbuilt =
        configured(RPMSIGN_TARGET, [](BuildStepList *list) { list->removeStep(0); });
    const Prepare off =
        configured(RPMSIGN_TARGET, [](BuildStepList *list) { list->at(1)->setStepEnabled(false); });
    const Prepare customer =
        configured(CUSTOMER_TARGET, [](BuildStepList *list) { list->at(1)->setStepEnabled(true); });
    const Prepare rebuilt = configured(RPMSIGN_TARGET, [](BuildStepList *list) {
        list->appendStep(Kiln::Internal::KilnKb2RpmBuildStep::stepId());
    });
    const Prepare lying = [](const Ground &ground) {
        ground.replaceTool("echo Signed: " + ground.package().toUtf8() + "\n");
    };
    const Prepare broken = [](const Ground &ground) {
        writeFile(ground.project() + "/rpm/quick.spec", "Name: quick\n");
    };
    const Prepare refusing = [](const Ground &ground) {
        ground.replaceTool("echo refused; exit 3\n");
    };
    const Prepare noBrisk = [](const Ground &ground) {
        QFile::remove(ground.path() + "/bin/brisk");
    };
    const Prepare noSpec = [](const Ground &ground) {
        QFile::remove(ground.project() + "/rpm/quick.spec");
    };
    const QString keyOutside = "Error: key and certificate must be inside workspace folder";
    const QString noSignStep = "no enabled sign step";
    const QString right = "--passphrase-file right";
    const QString wrong = "--passphrase-file wrong";
    const QString bare = "--target " + BARE_TARGET;

    addRow("regular key", "", nothing, 0, completed, "", 1);
    addRow("right pass phrase", right, encrypted, 0, completed, "", 1);
    addRow("wrong pass phrase", wrong, encrypted, 1, "wrong pass phrase", failed, 0);
    addRow("nobody to ask", "", encrypted, 1, "Declined: no display to ask on", failed, 0);
    addRow("key outside the workspace", "", outside, 1, keyOutside, failed, 0);
    addRow("no RPM build step", "", unbuilt, 1, "Error: No previous \"", failed, 0);
    addRow("sign step switched off", "", off, 1, "finished successfully", noSignStep, 0);
    addRow("package that does not build", "", broken, 1, "Error while building", failed, 0);
    addRow("tool that fails", "", refusing, 1, "refused", failed, 0);
    addRow("tool that signs nothing", "", lying, 1, completed, "Nothing was signed.", 0);
    addRow("built anew behind the sign step", "", rebuilt, 1, completed, "Nothing was signed.", 0);
    addRow("no brisk", "", noBrisk, 1, "[E]", failed, 0);
    addRow("target without tools", bare, nothing, 1, "", noSignStep, 0);
    addRow("customer-sign", "--target " + CUSTOMER_TARGET, customer, 0, completed, "", 2);
    addRow("unknown target", "--target Moon", nothing, 1, "", RPMSIGN_TARGET, 0);
    addRow("no SDK", "--sdk /nonexistent", nothing, 1, "", "/nonexistent", 0);
    addRow("no project", "", noSpec, 1, "", "no package description", 0);
}

void WorkbenchTest::deploys()
{
    QFETCH(QString, arguments);
    QFETCH(Prepare, prepare);
    QFETCH(int, exitCode);
    QFETCH(QString, inOutput);
    QFETCH(QString, inErrors);
    QFETCH(int, signatureCount);

    const Ground ground;
    prepare(ground);
    arguments.replace("-file ", "-file " + ground.path() + '/');
    Transcript transcript = ground.deploy(arguments.split(' ', Qt::SkipEmptyParts));

    const QString all = transcript.output + transcript.errors;
    const QString end = all.right(900); // what fits into a failure message
    QVERIFY2(transcript.exitCode == exitCode, qPrintable(end));
    QVERIFY2(transcript.output.contains(inOutput), qPrintable(end));
    QVERIFY2(transcript.errors.contains(inErrors), qPrintable(end));
    QCOMPARE(transcript.errors.contains("workbench: "), exitCode != 0);
    QVERIFY2(!all.contains("nonsense-phrase"), "the pass phrase leaks");
    transcript.errors.remove("STRAY This plugin does not support ");
    QVERIFY2(!transcript.errors.contains("STRAY "), qPrintable(end));
    QCOMPARE(ground.signatures().size(), signatureCount);
    QTRY_COMPARE(ground.processes(), QStringList());
}

void WorkbenchTest::interruptLeavesNothingBehind()
{
    const Ground ground;
    ground.replaceTool(
        "trap '' TERM HUP INT; echo hanging; while :; do PATH=/bin:/usr/bin sleep 1; done\n");
    QProcess workbench;
    workbench.start(WORKBENCH_EXECUTABLE, ground.deployArguments());
    QByteArray output;
    QTRY_VERIFY_WITH_TIMEOUT((output += workbench.readAllStandardOutput()).contains("[I]\thanging"),
                             RUN_TIMEOUT);
    workbench.terminate();
    QVERIFY(workbench.waitForFinished(RUN_TIMEOUT));
    QCOMPARE(workbench.exitStatus(), QProcess::NormalExit);
    QCOMPARE(workbench.exitCode(), 128 + SIGTERM);
    QTRY_COMPARE(ground.processes(), QStringList());
    QCOMPARE(ground.signatures(), QStringList());
}

void WorkbenchTest::deployLeavesTheMemoryAlone()
{
    const Ground ground;
    ground.set("Workbench/Projects", QStringList{"/one", "/two"});
    ground.set("Workbench/Sdk", "/other");
    QCOMPARE(ground.deploy().exitCode, 0);
    QCOMPARE(ground.deploy({"--target", BARE_TARGET}).exitCode, 1);
    const QSettings settings(ground.settingsPath(), QSettings::IniFormat);
    QCOMPARE(settings.value("Workbench/Projects").toStringList(), (QStringList{"/one", "/two"}));
    QCOMPARE(settings.value("Workbench/Sdk").toString(), "/other");
    QVERIFY(!QFile::exists(ground.project() + "/rpm/quick.spec.user"));
}

void WorkbenchTest::windowSaysWhatWasSigned_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("verdict");

    const QString nothing = "Nothing was signed: ";
    const QString failed = "The deploy failed. " + nothing;
    addRow("signed", "", "Signed by Regular Developer: quick-1-1.noarch.rpm.");
    addRow("no sign step", "off", nothing + "the deploy configuration has no enabled sign step.");
    addRow("failing tool", "refusing", failed + "Error: package sign failed: refused");
    addRow("declined prompt",
           "asking",
           failed + "Error: package sign cancelled: Cancelled: no pass phrase was given");
    addRow("silent tool", "silent", "Nothing was signed.");
}

void WorkbenchTest::windowSaysWhatWasSigned()
{
    QFETCH(QString, obstacle);
    QFETCH(QString, verdict);
    const Ground ground;
    if (obstacle == "refusing")
        ground.replaceTool("echo refused; exit 3\n");
    if (obstacle == "asking")
        ground.replaceTool("printf 'Enter pass phrase: '; read -r line\n");
    if (obstacle == "silent")
        ground.replaceTool("exit 0\n");
    Session session;
    MainWindow window(&session);
    window.show();
    window.open(ground.commandLine());
    if (obstacle == "off")
        window.findChildren<QCheckBox *>("enabled").at(1)->setChecked(false);
    PromptAnswerer user({});
    QSignalSpy finished(BuildManager::instance(), &BuildManager::buildQueueFinished);
    for (QAction *action : window.findChildren<QAction *>()) {
        if (action->text() == "&Deploy")
            action->trigger();
    }
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, RUN_TIMEOUT);

    const auto *label = window.findChild<QLabel *>("verdict");
    QCOMPARE(label->text(), verdict);
    const bool isWarning = label->palette().windowText() != window.palette().windowText();
    QCOMPARE(isWarning, !obstacle.isEmpty());
    auto *output = window.findChild<OutputPane *>("compileOutput");
    QTRY_VERIFY(output->showsAll());
    QVERIFY(output->toPlainText().endsWith(verdict + '\n'));
    session.shutdown();

    // The terminal says the same.
    if (obstacle == "off")
        return; // which the window has not kept
    const Transcript transcript = ground.deploy();
    QCOMPARE(transcript.exitCode, obstacle.isEmpty() ? 0 : 1);
    const QString &channel = obstacle.isEmpty() ? transcript.output : transcript.errors;
    QVERIFY2(channel.contains(verdict + '\n'), qPrintable(channel.right(900)));
}

void WorkbenchTest::firstErrorBringsIssuesForward()
{
    Session session;
    const MainWindow window(&session);
    auto *tabs = window.findChild<QTabWidget *>();
    const auto *pane = window.findChild<QListWidget *>("issues");
    const QWidget *output = tabs->currentWidget();
    auto *issues = ProjectExplorer::Host::Issues::instance();
    issues->add(DeploymentTask(Task::Warning, "w"));
    QCOMPARE(tabs->currentWidget(), output);
    issues->add(DeploymentTask(Task::Error, "e\nmore"));
    QCOMPARE(tabs->currentWidget(), pane);
    QCOMPARE(pane->item(1)->text(), "e\nmore");
    QCOMPARE(tabs->tabText(tabs->indexOf(pane)), "&Issues (2)");

    tabs->setCurrentIndex(0);
    issues->add(DeploymentTask(Task::Error, "e"));
    QCOMPARE(tabs->currentWidget(), output); // where the user has gone
    issues->clear();
    QCOMPARE(pane->count(), 0);
    QCOMPARE(tabs->tabText(tabs->indexOf(pane)), "&Issues");
}

void WorkbenchTest::iconsAreDrawnByMasks()
{
    Session session;
    session.loadPlugins(); // one of them brings the icon of the options' category
    const Utils::FilePath category(Kiln::Constants::KILN_OPTIONS_CATEGORY_ICON);
    for (const Utils::Icon &icon : {Utils::Icons::OK,
                                    Utils::Icons::BROKEN,
                                    Utils::Icons::NEWFILE,
                                    Utils::Icon({{category, Utils::Theme::IconsErrorColor}})}) {
        const QImage image = icon.pixmap().toImage();
        QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
        int painted = 0;
        for (int i = 0; i < image.width() * image.height(); ++i)
            painted += image.pixelColor(i % image.width(), i / image.width()).alpha() > 200;
        QVERIFY2(painted > 10, qPrintable(icon.imageFilePath().toUserOutput()));
    }
    session.shutdown();
}

namespace {

class RecordingPage : public Core::IOptionsPage
{
public:
    RecordingPage(Utils::Id id, QStringList *trace)
        : m_trace(trace)
    {
        setId(id);
        setCategory(id);
        registerCategory(id, id.toString(), ":/utils/images/ok.svg");
    }
    QWidget *widget() override { return new QWidget; }
    void apply() override { record("applied"); }
    void cancel() override { record("canceled"); }
    void finish() override { record("finished"); }
    bool matches(const QRegularExpression &) const override { return false; }

private:
    void record(const QString &what) { m_trace->append(id().toString() + ' ' + what); }

    QStringList *m_trace;
};

} // namespace

void WorkbenchTest::optionsAreAppliedOnlyWhereTheyWereShown()
{
    QStringList trace;
    const RecordingPage shown("shown", &trace);
    const RecordingPage other("other", &trace);
    OptionsDialog().accept();
    QCOMPARE(trace, (QStringList{"shown applied", "shown finished", "other finished"}));
    trace.clear();
    OptionsDialog().reject();
    QCOMPARE(trace,
             (QStringList{"shown canceled", "shown finished", "other canceled", "other finished"}));
}

void WorkbenchTest::optionsHoldLanguageAndSdk()
{
    const Ground ground;
    Session session;
    QString error;
    QVERIFY2(session.openSdk(ground.path(), &error), qPrintable(error));
    const GeneralPage page(&session);
    OptionsDialog dialog;
    auto *languages = dialog.findChild<QComboBox *>("languages");
    auto *sdk = dialog.findChild<Utils::PathChooser *>("sdk");
    QCOMPARE(languages->currentText(), "System language");
    QCOMPARE(sdk->filePath().toFSPathString(), ground.path());
    QTest::keyClicks(languages, "Deu");
    sdk->lineEdit()->setText("/other");
    connect(&dialog, &OptionsDialog::applied, &session, &Session::save);
    dialog.accept();
    QCOMPARE(QSettings().value("General/OverrideLanguage").toString(), "de");
    QCOMPARE(QSettings().value("Workbench/Sdk").toString(), "/other");
    session.shutdown();
}

static QStringList stepNames(const QWidget &window)
{
    QStringList names;
    for (const QCheckBox *box : window.findChildren<QCheckBox *>("enabled"))
        names << box->text();
    return names;
}

void WorkbenchTest::windowConfiguresSteps()
{
    const Ground ground;
    CommandLine line = ground.commandLine();
    {
        Session session;
        MainWindow window(&session);
        window.show();
        window.open(line);
        QCOMPARE(stepNames(window).size(), 2);
        const auto boxes = window.findChildren<QCheckBox *>("enabled");
        QVERIFY(boxes.at(1)->isChecked());
        QTest::mouseClick(boxes.at(1), Qt::LeftButton, {}, {8, boxes.at(1)->height() / 2});
        QVERIFY(!boxes.at(1)->isChecked());

        // Another kit has other steps; going back shows the first again.
        auto *kits = window.findChild<QComboBox *>("kits");
        QTest::keyClick(kits, Qt::Key_Down);
        QTRY_VERIFY(stepNames(window).contains("RPM Sign (customer-sign)"));
        QTest::keyClick(kits, Qt::Key_Up);
        QTRY_VERIFY(stepNames(window).contains("RPM Sign (rpmsign-external)"));

        // The sign step above the build step, and the build step away.
        QTest::mouseClick(window.findChildren<QToolButton *>("up").at(1), Qt::LeftButton);
        QCoreApplication::processEvents();
        const auto *project = session.openProject(ground.project(), {}, &line.target);
        const BuildStepList *list =
            project->activeTarget()->activeDeployConfiguration()->stepList();
        QCOMPARE(list->at(0)->displayName(), "RPM Sign (rpmsign-external)");
        QTest::mouseClick(window.findChildren<QToolButton *>("remove").at(0), Qt::LeftButton);
        QTRY_COMPARE(list->count(), 1);
        window.closeAtOnce();
        session.shutdown();
    }
    Session session;
    MainWindow window(&session);
    line.projects.clear(); // the list of open projects is remembered
    window.open(line);
    QCOMPARE(stepNames(window), QStringList{"RPM Sign (rpmsign-external)"});
    QVERIFY(!window.findChild<QCheckBox *>("enabled")->isChecked());
    session.shutdown();
}

void WorkbenchTest::closingWhileItOpensForgetsNothing()
{
    const Ground ground;
    CommandLine line = ground.commandLine();
    const QStringList remembered{"/nonexistent", line.projects.first()};
    QSettings().setValue("Workbench/Projects", remembered);
    line.projects.clear();
    Session session;
    MainWindow window(&session);
    window.show();
    // The first project is missing, and its message box is open then.
    QTimer::singleShot(0, &window, &MainWindow::closeAtOnce);
    window.open(line);
    QVERIFY(!window.isVisible());
    QCOMPARE(Session::rememberedProjects(), remembered);
    QCOMPARE(ProjectManager::projects().size(), 0);
    session.shutdown();
}

void WorkbenchTest::quitEndsTheRun()
{
    const Ground ground;
    ground.replaceTool("echo hanging; while :; do PATH=/bin:/usr/bin sleep 1; done\n");
    CommandLine line = ground.commandLine();
    Session session;
    MainWindow window(&session);
    window.show();
    window.open(line);

    const auto *manager = BuildManager::instance();
    QSignalSpy finished(manager, &BuildManager::buildQueueFinished);
    connect(manager, &BuildManager::outputAdded, &window, [&window](const QString &text) {
        if (text.contains("hanging"))
            window.close(); // which has to wait for the step
    });
    QTimer user;
    connect(&user, &QTimer::timeout, &window, [&window, &user] {
        const auto *progress = window.findChild<QProgressDialog *>();
        if (!progress || !progress->isActiveWindow())
            return;
        user.stop(); // the key is pressed from an event loop of its own
        QTest::keyClick(progress->windowHandle(), Qt::Key_Escape);
    });
    user.start(100);
    QTimer::singleShot(0, &window, [&window] {
        for (QAction *action : window.findChildren<QAction *>()) {
            if (action->text() == "&Deploy")
                action->trigger();
        }
    });
    QTimer::singleShot(RUN_TIMEOUT, &window, [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
    QCOMPARE(finished.size(), 1);
    QVERIFY(!window.isVisible());
    session.shutdown();
    QTRY_COMPARE(ground.processes(), QStringList());
}

QTEST_MAIN(WorkbenchTest)
#include "tst_workbench.moc"
