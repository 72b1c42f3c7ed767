#include "customersignstep.h"
#include "files.h"
#include "messages.h"
#include "promptanswers.h"
#include "rpmsignexternalstep.h"
#include "stepfactory.h"
#include "straywarnings.h"
#include "testrow.h"
#include "workplace.h"
#include "wrappedprogram.h"

#include <brisk/buildengine.h>
#include <brisk/sdk.h>
#include <host/buildmanager.h>
#include <host/generalmessages.h>
#include <host/userproject.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectexplorerconstants.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <projectexplorer/task.h>
#include <utils/pathchooser.h>

#include <QSignalSpy>
#include <QtWidgets>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;
using Utils::PathChooser;
using Utils::Store;

const QString START = "NormalMessage: Signing RPM package...";
const QString COMPLETED = "NormalMessage: Package sign completed successfully.";
const QString STOPPED = "ErrorMessage: Package sign stopped by user";
const QString NO_BUILD_STEP = "ErrorMessage: Error: No previous \"Build RPM Packages\" step found";
const QString FAILED_DUMP = "Stderr: Failed to verify signature dump";

/// What a step itself says, without the lines of its tools.
static QStringList ownMessages(QStringList output)
{
    output.removeIf([](const QString &line) {
        return line.startsWith("Stdout: ")
               || (line.startsWith("Stderr: ") && !line.startsWith("Stderr: Note: ")
                   && line != FAILED_DUMP);
    });
    return output;
}

static QStringList developerNotes(const QStringList &packages)
{
    QStringList notes;
    for (const QString &package : packages)
        notes << "Stderr: Note: Packages " + package
                     + " signed with developer key, use is possible only for development purposes. "
                       "Read more: https://developer.veyraos.example/doc/sdk/app_development/"
                       "packaging/package_signing";
    return notes;
}

/// The entries of the sign steps in the step's map.
static Store signEntries(const BuildStep *step)
{
    Store map;
    step->toMap(map);
    for (const Utils::Key &key : map.keys()) {
        const QByteArray name = key.toByteArray();
        if (!name.startsWith("Sealkit.") && !name.startsWith("KilnRpmSign."))
            map.remove(key);
    }
    return map;
}

class StepsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void cleanup();

    void rpmsignSignsAndTellsTheWorth();
    void rpmsignReportsOnlyInTheLastEnabledStep();
    void customerSigns_data();
    void customerSigns();
    void customerLooksForTheBuildStepOnce();
    void saysWhyNothingIsSigned_data();
    void saysWhyNothingIsSigned();
    void tellsThatItWasStopped_data();
    void tellsThatItWasStopped();
    void survivesItsRemoval();
    void signsWhatLiesBehindALink();

    void startsWithDefaultKeys();
    void widgetConfiguresRpmsign();
    void widgetConfiguresCustomerSign();
    void widgetJudgesPaths_data();
    void widgetJudgesPaths();

private:
    QString key(const QString &name) const
    {
        return m_workplace.sdk().workspace() + "/keys/" + name;
    }
    int engineRun(const QStringList &words) const;
    QString toolOf(const QString &targetName) const
    {
        const QString name = targetName == RPMSIGN_TARGET ? "rpmsign-external" : "customer-sign";
        return m_workplace.sdk().tool(name, targetName);
    }
    /// A step of the kind that fits the target, alone behind an RPM build step.
    BuildStep *addStep(const QString &targetName);

    Workplace m_workplace;
    DeployStepFactory<CustomerSignStep> m_customerFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignFactory;
};

void StepsTest::cleanup()
{
    m_workplace.closeProjects();
    QSettings().clear();
}

int StepsTest::engineRun(const QStringList &words) const
{
    return QProcess::execute(m_workplace.sdk().path() + "/bin/brisk",
                             QStringList{"engine", "exec", "-tt", "sb2", "-t"} + words);
}

BuildStep *StepsTest::addStep(const QString &targetName)
{
    BuildStepList *steps = deploySteps(m_workplace.openProject(targetName));
    steps->appendStep(targetName == CUSTOMER_TARGET ? CustomerSignStep::stepId()
                                                    : RpmsignExternalStep::stepId());
    return steps->steps().last();
}

void StepsTest::rpmsignSignsAndTellsTheWorth()
{
    BuildStep *step = addStep(RPMSIGN_TARGET);
    const QStringList packages{"a-debuginfo-1.rpm", "a.rpm", "a.src.rpm", "my-rpm-a.rpm"};
    const QStringList paths = m_workplace.makePackages(step->project(), packages);
    QStringList sign{RPMSIGN_TARGET, "rpmsign-external", "sign", "-k", key("client_key.pem"), "-c"};
    QCOMPARE(engineRun(sign << key("client_cert.pem") << paths.first()), 0);
    QCOMPARE(ownMessages(runStep(step)),
             QStringList({START, COMPLETED}) + developerNotes(packages.mid(1)));
    QCOMPARE(engineRun(QStringList{RPMSIGN_TARGET, "rpmsign-external", "verify"} + paths), 0);
}

void StepsTest::rpmsignReportsOnlyInTheLastEnabledStep()
{
    BuildStep *first = addStep(RPMSIGN_TARGET);
    m_workplace.makePackages(first->project(), {"a.rpm"});
    first->stepList()->appendStep(RpmsignExternalStep::stepId());
    BuildStep *second = first->stepList()->steps().last();
    first->stepList()->appendStep(CustomerSignStep::stepId()); // which reports nothing

    const QStringList silent{START, COMPLETED};
    const QStringList report = silent + developerNotes({"a.rpm"});
    QCOMPARE(ownMessages(runStep(first)), silent);
    QCOMPARE(ownMessages(runStep(second)), report);
    second->setStepEnabled(false);
    QCOMPARE(ownMessages(runStep(first)), report);

    // Without a dump there is nothing to report, but the packages are signed.
    const WrappedProgram tool(toolOf(RPMSIGN_TARGET), "dump", "exit 1");
    Tasking::DoneWith result = Tasking::DoneWith::Error;
    QCOMPARE(ownMessages(runStep(first, &result)), silent + QStringList(FAILED_DUMP));
    QCOMPARE(result, Tasking::DoneWith::Success);
}

void StepsTest::customerSigns_data()
{
    addColumns<bool, QString>("signDebugPackages", "signedPackages");

    addRow("what is to be deployed", true, "a-1.rpm a-debuginfo-1.rpm a-debugsource-1.rpm b.rpm");
    addRow("no debug packages", false, "a-1.rpm b.rpm");
}

void StepsTest::customerSigns()
{
    QFETCH(const bool, signDebugPackages);
    BuildStep *step = addStep(CUSTOMER_TARGET);
    const QString packages =
        "a-1.rpm a-debuginfo-1.rpm a-debugsource-1.rpm debuginfo-tools/b.rpm a.src.rpm";
    const QStringList paths = m_workplace.makePackages(step->project(), packages.split(' '));
    step->fromMap({{"KilnRpmSign.SignDebugPackage", signDebugPackages}});
    QCOMPARE(ownMessages(runStep(step)), (QStringList{START, COMPLETED}));

    const QStringList verify{CUSTOMER_TARGET, "nxvcert-cli", "verify", "--root-cert-file-path", ""};
    QStringList signedPackages;
    for (const QString &path : paths) {
        if (engineRun(verify + QStringList(path)) == 0)
            signedPackages << QFileInfo(path).fileName();
    }
    QTEST(signedPackages.join(' '), "signedPackages");
}

void StepsTest::customerLooksForTheBuildStepOnce()
{
    BuildStepList *steps = deploySteps(m_workplace.openProject(CUSTOMER_TARGET));
    steps->clear();
    steps->appendStep(CustomerSignStep::stepId());
    BuildStep *early = steps->at(0);
    steps->insertStep(0, Utils::Id("Kiln.Kb2RpmBuildStep"));
    m_workplace.makePackages(early->project(), {"a.rpm"});
    QCOMPARE(ownMessages(runStep(early)), (QStringList{START, NO_BUILD_STEP}));

    // One that is made while the list has an RPM build step anywhere finds it.
    CustomerSignStep late(steps, CustomerSignStep::stepId());
    QCOMPARE(ownMessages(runStep(&late)), (QStringList{START, COMPLETED}));
    steps->removeStep(0);
    QCOMPARE(ownMessages(runStep(&late)), (QStringList{START, NO_BUILD_STEP}));
}

void StepsTest::saysWhyNothingIsSigned_data()
{
    // issue: its summary and the details below
    // script: of the tool; without one, there is no package
    addColumns<QString, QString, QString>("targetName", "issue", "script");

    for (const QString &target : {RPMSIGN_TARGET, CUSTOMER_TARGET}) {
        const auto row = [&](const char *name, const QString &issue, const char *script = "") {
            addRow(qPrintable(name + (", " + target)), target, "Error: " + issue, script);
        };
        row("no RPM build step", "No previous \"Build RPM Packages\" step found");
        row("no packages", "no package for sign found");
        const QString keys = target == RPMSIGN_TARGET ? "key" : "keys";
        row("no key, no RPM build step", keys + " and certificate can't be empty");
        row("failing tool",
            "package sign failed\nThe tool gave no reason; its exit code was 3",
            "exit 3");
        row("declined prompt",
            "package sign cancelled\nCancelled: no pass phrase was given",
            "printf 'Enter pass phrase: '; read -r line");
    }
}

void StepsTest::saysWhyNothingIsSigned()
{
    QFETCH(const QString, targetName);
    QFETCH(const QString, issue);
    QFETCH(const QString, script);

    BuildStep *step = addStep(targetName);
    if (QByteArray(QTest::currentDataTag()).contains("no RPM build step"))
        QVERIFY(step->stepList()->removeStep(0));
    if (issue.endsWith("be empty")) {
        QSettings().setValue("Sealkit.GlobalSignKey", "");
        step->fromMap({{"Sealkit.BinariesKey", ""}});
    }
    if (!script.isEmpty())
        m_workplace.makePackages(step->project(), {"a.rpm"});
    const WrappedProgram tool(toolOf(targetName), "", script.toUtf8());
    const PromptAnswers user({});
    Messages messages;
    QStringList issues;
    connect(step, &BuildStep::addTask, this, [&issues](const Task &task) {
        QCOMPARE(task.type, Task::Error);
        issues << (QStringList(task.summary) + task.details).join('\n');
    });
    Tasking::DoneWith result = Tasking::DoneWith::Error;
    const QString summary = issue.section('\n', 0, 0);
    QCOMPARE(ownMessages(runStep(step, &result)), (QStringList{START, "ErrorMessage: " + summary}));
    QCOMPARE(issues, QStringList{issue});
    QCOMPARE(result, Tasking::DoneWith::Success); // the deploy goes on
    QCOMPARE(messages.take().contains("[W]\tCancelled: no pass phrase was given"),
             summary.endsWith("cancelled"));
}

void StepsTest::tellsThatItWasStopped_data()
{
    addColumns<QString, bool>("targetName", "hasBegun");

    for (const QString &target : {RPMSIGN_TARGET, CUSTOMER_TARGET}) {
        addRow(qPrintable("before it begins, " + target), target, false);
        addRow(qPrintable("at its first word, " + target), target, true);
    }
}

void StepsTest::tellsThatItWasStopped()
{
    QFETCH(QString, targetName);
    QFETCH(bool, hasBegun);
    BuildStep *step = addStep(targetName);
    m_workplace.makePackages(step->project(), {"a.rpm"});
    auto tree = std::make_unique<Tasking::TaskTree>(Tasking::Group{BuildManager::recipeOf(step)});
    QStringList output;
    connect(step, &BuildStep::addOutput, this, [&](const QString &text) {
        output << text;
        tree.reset();
    });
    Messages messages;
    tree->start();
    if (!hasBegun)
        tree.reset();
    QTRY_COMPARE(output.value(int(hasBegun)), "Package sign stopped by user");
    QCoreApplication::processEvents();
    QCOMPARE(output.size(), 1 + int(hasBegun));
    QCOMPARE(messages.take(), QStringList()); // no tool has run
}

void StepsTest::survivesItsRemoval()
{
    QPointer<BuildStep> step = addStep(RPMSIGN_TARGET);
    m_workplace.makePackages(step->project(), {"a.rpm"});
    // Told when the tool has ended, and before its run returns.
    QObject context;
    connect(Core::Host::GeneralMessages::instance(),
            &Core::Host::GeneralMessages::messageWritten,
            &context,
            [this](const QString &message) {
                if (message.startsWith("[$] 0"))
                    m_workplace.closeProjects();
            });
    Tasking::DoneWith result = Tasking::DoneWith::Success;
    QCOMPARE(ownMessages(runStep(step, &result)), QStringList(START));
    QCOMPARE(result, Tasking::DoneWith::Error);
    QVERIFY(!step);
}

/// The project was opened through a link outside of the workspace, where no tool sees its packages.
void StepsTest::signsWhatLiesBehindALink()
{
    for (const QString &target : {RPMSIGN_TARGET, CUSTOMER_TARGET}) {
        const Project *original = m_workplace.openProject(target);
        const QString package = m_workplace.makePackages(original, {"a.rpm"}).first();
        const QString link = m_workplace.sdk().path() + "/link to " + target;
        QVERIFY(QFile::link(original->projectDirectory().toFSPathString(), link));
        auto *project =
            new Host::UserProject(Utils::FilePath::fromString(link + "/rpm/project.spec"));
        project->addTargetForKit(m_workplace.kit(target));
        ProjectManager::addProject(project);
        deploySteps(project)->appendStep(target == CUSTOMER_TARGET ? CustomerSignStep::stepId()
                                                                   : RpmsignExternalStep::stepId());
        Messages messages;
        const QStringList output = runStep(deploySteps(project)->steps().last());
        QVERIFY2(output.contains(COMPLETED), qPrintable(output.join('\n')));
        const QString runs = messages.take().filter("[$] ").join('\n');
        QVERIFY2(runs.contains(package) && !runs.contains(link), qPrintable(runs));
    }
}

void StepsTest::startsWithDefaultKeys()
{
    QCOMPARE(signEntries(addStep(RPMSIGN_TARGET)), (Store{{"Sealkit.UseDefaultValues", true}}));

    const QString home = m_workplace.sdk().workspace() + "/home/.kilnsdk/";
    const QString missing = home + "packages-cert.pem"; // so it is no default
    QVERIFY(QFile::rename(missing, missing + ".away"));
    const BuildStep *step = addStep(CUSTOMER_TARGET);
    QVERIFY(QFile::rename(missing + ".away", missing));
    QCOMPARE(signEntries(step),
             (Store{{"Sealkit.BinariesKey", home + "binaries-key.pem"},
                    {"Sealkit.PackagesKey", home + "packages-key.pem"},
                    {"Sealkit.PackagesCert", ""},
                    {"Sealkit.PackagesClientCert", home + "packages-client-cert.pem"},
                    {"KilnRpmSign.SignDebugPackage", true}}));
}

void StepsTest::widgetConfiguresRpmsign()
{
    BuildStep *step = addStep(RPMSIGN_TARGET);
    const Store before{{"Sealkit.UseDefaultValues", false},
                       {"Sealkit.Key", "/w/k.pem"},
                       {"Sealkit.Cert", "/w/c.pem"}};
    step->fromMap(before);
    const std::unique_ptr<QWidget> widget(step->doCreateConfigWidget());
    widget->show();
    auto *combo = widget->findChild<QComboBox *>("keysTypeComboBox");
    const auto *label = widget->findChild<QLabel *>("keysTypeLabel");
    auto *keyChooser = widget->findChild<PathChooser *>("keyPathChooser");
    const auto *keyNote = widget->findChild<QLabel *>("keyNoteLabel");
    const auto *certificateNote = widget->findChild<QLabel *>("certificateNoteLabel");
    auto *certificateChooser = widget->findChild<PathChooser *>("certificatePathChooser");
    QCOMPARE(signEntries(step), before); // showing the widget changes nothing
    QCOMPARE(label->text(), "Custom keys are used");
    QCOMPARE(keyChooser->lineEdit()->text(), "/w/k.pem");
    QCOMPARE(certificateChooser->lineEdit()->text(), "/w/c.pem");
    QCOMPARE(step->summaryText(), "<b>RPM Sign (rpmsign-external):</b> Sign RPM package");

    QTest::keyClick(combo, Qt::Key_Up);
    QCOMPARE(label->text(), "Global keys are used");
    QVERIFY(!keyChooser->isVisible() && !certificateChooser->isVisible());
    QCOMPARE(signEntries(step), (Store{{"Sealkit.UseDefaultValues", true}}));

    QTest::keyClick(combo, Qt::Key_Down);
    QVERIFY(keyChooser->isVisible() && certificateChooser->isVisible());
    QTest::keyClicks(keyChooser->lineEdit(), "/w/x");
    QTest::keyClicks(certificateChooser->lineEdit(), "/w/y");
    QCOMPARE(signEntries(step),
             (Store{{"Sealkit.UseDefaultValues", false},
                    {"Sealkit.Key", "/w/x"},
                    {"Sealkit.Cert", "/w/y"}}));

    keyChooser->lineEdit()->setText(key("client_cert.pem"));
    QCOMPARE(keyNote->text(), "There is no private key in this file");
    certificateChooser->lineEdit()->setText(key("client_cert.pem"));
    keyChooser->lineEdit()->setText(key("foreign_key.pem"));
    QCOMPARE(keyNote->text(), "");
    QVERIFY(certificateNote->text().startsWith("It belongs to another key. "));
}

void StepsTest::widgetConfiguresCustomerSign()
{
    BuildStep *step = addStep(CUSTOMER_TARGET);
    const Store before{{"Sealkit.BinariesKey", "/b"},
                       {"Sealkit.PackagesKey", key("foreign_key.pem")},
                       {"Sealkit.PackagesCert", key("client_cert.pem")},
                       {"Sealkit.PackagesClientCert", key("client_cert.pem")},
                       {"KilnRpmSign.SignDebugPackage", false}};
    step->fromMap(before);
    const std::unique_ptr<QWidget> widget(step->doCreateConfigWidget());
    widget->show();
    QCOMPARE(signEntries(step), before);
    QCOMPARE(widget->findChild<QLabel *>("commandLabelEdit")->text(), "customer-sign");
    for (const QString name : {"packagesCertNoteLabel", "packagesClientCertNoteLabel"}) {
        const QString note = widget->findChild<QLabel *>(name)->text();
        QVERIFY(note.startsWith("It belongs to another key. ") && note.contains("Demo Client"));
    }
    QVERIFY(step->summaryText().isEmpty());

    for (const char *name : {"binariesKey", "packagesKey", "packagesCert", "packagesClientCert"}) {
        auto *chooser = widget->findChild<PathChooser *>(QLatin1String(name) + "PathChooser");
        QTest::keyClicks(chooser->lineEdit(), "x");
    }
    auto *checkBox = widget->findChild<QCheckBox *>("signDebugPackageCheckBox");
    QTest::mouseClick(checkBox, Qt::LeftButton, {}, QPoint(5, checkBox->height() / 2));
    QCOMPARE(signEntries(step),
             (Store{{"Sealkit.BinariesKey", "/bx"},
                    {"Sealkit.PackagesKey", key("foreign_key.pemx")},
                    {"Sealkit.PackagesCert", key("client_cert.pemx")},
                    {"Sealkit.PackagesClientCert", key("client_cert.pemx")},
                    {"KilnRpmSign.SignDebugPackage", true}}));
}

void StepsTest::widgetJudgesPaths_data()
{
    addColumns<QString, QString>("targetName", "title");

    addRow("key", RPMSIGN_TARGET, "User private key for signing the package");
    addRow("certificate", RPMSIGN_TARGET, "Certificate to be used in signature");
    addRow("binariesKey", CUSTOMER_TARGET, "Select binaries key");
    addRow("packagesKey", CUSTOMER_TARGET, "Select packages key");
    addRow("packagesCert", CUSTOMER_TARGET, "Select packages certificate");
    addRow("packagesClientCert", CUSTOMER_TARGET, "Select packages client certificate");
}

void StepsTest::widgetJudgesPaths()
{
    QFETCH(QString, targetName);
    const QString field = QTest::currentDataTag();
    Brisk::BuildEngine *engine = Brisk::Sdk::buildEngines().first();
    const auto restore = qScopeGuard([&] { engine->setSharedSrcPath(m_workplace.workspace()); });
    engine->setSharedSrcPath("/elsewhere/ws"); // the shared home lies elsewhere
    BuildStep *step = addStep(targetName);
    const bool isCustomers = targetName == CUSTOMER_TARGET;
    if (!isCustomers)
        step->fromMap({{"Sealkit.UseDefaultValues", false},
                       {"Sealkit.Key", "/elsewhere/ws/k.pem"},
                       {"Sealkit.Cert", "/elsewhere/ws/c.pem"}});
    const std::unique_ptr<QWidget> widget(step->doCreateConfigWidget());
    auto *chooser = widget->findChild<PathChooser *>(field + "PathChooser");
    QTEST(chooser->promptDialogTitle(), "title");
    QCoreApplication::processEvents(); // what the chooser first made of no text comes in
    QVERIFY(chooser->isValid());

    const QString home = engine->sharedHomePath().toUserOutput();
    const QString problem =
        isCustomers ? "The path must be inside shared folders:\n" + home + "\n/elsewhere/ws"
                    : "The path must be inside workspace folder:\n/elsewhere/ws";
    const auto problemOf = [&](const QString &path) {
        chooser->lineEdit()->setText(path);
        return chooser->isValid() ? QString() : chooser->errorMessage();
    };
    QCOMPARE(problemOf("/k.pem"), problem);
    QCOMPARE(problemOf(home + "/k.pem"), isCustomers ? "" : problem);
    QCOMPARE(problemOf("/elsewhere/ws/k.pem"), "");
    QCOMPARE(problemOf(""), field == "packagesClientCert" ? "" : problem);
}

QTEST_MAIN(StepsTest)
#include "tst_steps.moc"
