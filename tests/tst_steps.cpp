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
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectexplorerconstants.h>
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
const QString NO_PACKAGE = "ErrorMessage: Error: no package for sign found";
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

    void rpmsignSignsAndTellsTheWorth_data();
    void rpmsignSignsAndTellsTheWorth();
    void rpmsignIsContentWithAClientSignature();
    void rpmsignReportsOnlyInTheLastEnabledStep();
    void rpmsignTellsThatItsDumpFailed();
    void rpmsignUsesTheGlobalKeys_data();
    void rpmsignUsesTheGlobalKeys();
    void customerSigns_data();
    void customerSigns();
    void customerLooksForTheBuildStepOnce();
    void saysWhyNothingIsSigned_data();
    void saysWhyNothingIsSigned();
    void tellsThatItWasCancelled_data() { bothTargets(); }
    void tellsThatItWasCancelled();

    void survivesItsRemoval_data() { bothTargets(); }
    void survivesItsRemoval();

    void keepsItsMap_data();
    void keepsItsMap();
    void widgetConfiguresRpmsign();
    void widgetConfiguresCustomerSign();
    void widgetJudgesPaths_data();
    void widgetJudgesPaths();

private:
    static void bothTargets()
    {
        QTest::addColumn<QString>("targetName");
        addRow("rpmsign-external", RPMSIGN_TARGET);
        addRow("customer-sign", CUSTOMER_TARGET);
    }
    QString key(const QString &name) const
    {
        return m_workplace.sdk().workspace() + "/keys/" + name;
    }
    int engineRun(const QStringList &words) const;
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

void StepsTest::rpmsignSignsAndTellsTheWorth_data()
{
    QTest::addColumn<QStringList>("packages");

    addRow("one package", QStringList{"a.rpm"});
    addRow("rpm in a name", QStringList{"b.rpm", "my-rpm-a.rpm"});
    addRow("packages not to be deployed, too", QStringList{"a-debuginfo-1.rpm", "a.src.rpm"});
}

void StepsTest::rpmsignSignsAndTellsTheWorth()
{
    QFETCH(const QStringList, packages);
    BuildStep *step = addStep(RPMSIGN_TARGET);
    const QStringList paths = m_workplace.makePackages(step->project(), packages);
    QCOMPARE(ownMessages(runStep(step)),
             QStringList({START, COMPLETED}) + developerNotes(packages));
    QCOMPARE(engineRun(QStringList{RPMSIGN_TARGET, "rpmsign-external", "verify"} + paths), 0);
}

void StepsTest::rpmsignIsContentWithAClientSignature()
{
    BuildStep *step = addStep(RPMSIGN_TARGET);
    const QStringList paths = m_workplace.makePackages(step->project(), {"a.rpm", "b.rpm"});
    QStringList sign{RPMSIGN_TARGET, "rpmsign-external", "sign", "-k", key("client_key.pem"), "-c"};
    QCOMPARE(engineRun(sign << key("client_cert.pem") << paths.first()), 0);
    QCOMPARE(ownMessages(runStep(step)),
             QStringList({START, COMPLETED}) + developerNotes({"b.rpm"}));
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
}

void StepsTest::rpmsignTellsThatItsDumpFailed()
{
    BuildStep *step = addStep(RPMSIGN_TARGET);
    m_workplace.makePackages(step->project(), {"a.rpm"});
    const WrappedProgram tool(m_workplace.sdk().tool("rpmsign-external"), "dump", "exit 1");
    Tasking::DoneWith result = Tasking::DoneWith::Error;
    QCOMPARE(ownMessages(runStep(step, &result)), (QStringList{START, COMPLETED, FAILED_DUMP}));
    QCOMPARE(result, Tasking::DoneWith::Success);
}

void StepsTest::rpmsignUsesTheGlobalKeys_data()
{
    addColumns<QVariant, QString>("storedKey", "lastMessage");

    const QString error = "ErrorMessage: Error: key and certificate ";
    addRow("nothing stored", QVariant(), developerNotes({"a.rpm"}).first());
    addRow("an empty path", QVariant(""), error + "can't be empty");
    addRow("outside the workspace",
           QVariant("/elsewhere.pem"),
           error + "must be inside workspace folder: " + m_workplace.workspace().shortNativePath());
}

void StepsTest::rpmsignUsesTheGlobalKeys()
{
    QFETCH(const QVariant, storedKey);
    if (storedKey.isValid())
        QSettings().setValue("Sealkit.GlobalSignKey", storedKey);
    BuildStep *step = addStep(RPMSIGN_TARGET);
    m_workplace.makePackages(step->project(), {"a.rpm"});
    QTEST(ownMessages(runStep(step)).last(), "lastMessage");
}

void StepsTest::customerSigns_data()
{
    addColumns<bool, QStringList, QStringList, QString>(
        "signDebugPackages", "packages", "signedPackages", "lastMessage");

    const QStringList all{"a-1.rpm", "a-debuginfo-1.rpm", "a-debugsource-1.rpm"};
    addRow("what is to be deployed", true, all + QStringList("a.src.rpm"), all, COMPLETED);
    addRow("no debug packages", false, all, QStringList{"a-1.rpm"}, COMPLETED);
    const QStringList inDebugFolder{"debuginfo-tools/a.rpm"};
    addRow("a debug folder", false, inDebugFolder, QStringList{"a.rpm"}, COMPLETED);
    addRow("only debug packages", false, all.mid(1), QStringList(), NO_PACKAGE);
}

void StepsTest::customerSigns()
{
    QFETCH(const bool, signDebugPackages);
    QFETCH(const QStringList, packages);
    BuildStep *step = addStep(CUSTOMER_TARGET);
    const QStringList paths = m_workplace.makePackages(step->project(), packages);
    step->fromMap({{"KilnRpmSign.SignDebugPackage", signDebugPackages}});

    const QStringList output = ownMessages(runStep(step));
    QCOMPARE(output.first(), START);
    QTEST(output.last(), "lastMessage");
    QStringList signedPackages;
    for (const QString &path : paths) {
        const QStringList words{"nxvcert-cli", "verify", "--root-cert-file-path", "", path};
        if (engineRun(QStringList(CUSTOMER_TARGET) + words) == 0)
            signedPackages << QFileInfo(path).fileName();
    }
    QTEST(signedPackages, "signedPackages");
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
    // script: of the tool; without one there is none to run
    addColumns<QString, QString, QByteArray, QString>("targetName", "message", "script", "why");

    for (const QString &target : {RPMSIGN_TARGET, CUSTOMER_TARGET}) {
        const auto row = [&target](const char *name,
                                   const QString &message,
                                   const QByteArray &script = {},
                                   const QString &why = {}) {
            QTest::addRow("%s, %s", name, qPrintable(target)) << target << message << script << why;
        };
        row("no RPM build step", NO_BUILD_STEP);
        row("no packages", NO_PACKAGE);
        const bool isCustomers = target == CUSTOMER_TARGET;
        row("no key, no RPM build step",
            isCustomers ? "ErrorMessage: Error: keys and certificate can't be empty"
                        : "ErrorMessage: Error: key and certificate can't be empty");
        row("failing tool",
            "ErrorMessage: Error: package sign failed",
            "exit 3",
            "The tool gave no reason; its exit code was 3");
        row("declined prompt",
            "ErrorMessage: Error: package sign cancelled",
            "printf 'Enter pass phrase: '; read -r line",
            "Cancelled: no pass phrase was given");
    }
}

void StepsTest::saysWhyNothingIsSigned()
{
    QFETCH(const QString, targetName);
    QFETCH(const QString, message);
    QFETCH(const QByteArray, script);
    QFETCH(const QString, why);

    BuildStep *step = addStep(targetName);
    if (message != NO_PACKAGE && script.isEmpty())
        QVERIFY(step->stepList()->removeStep(0));
    if (message.endsWith("be empty"))
        step->fromMap({{"Sealkit.BinariesKey", ""}, {"Sealkit.UseDefaultValues", false}});
    std::unique_ptr<WrappedProgram> tool;
    if (!script.isEmpty()) {
        m_workplace.makePackages(step->project(), {"a.rpm"});
        const QString name = targetName == RPMSIGN_TARGET ? "rpmsign-external" : "customer-sign";
        tool =
            std::make_unique<WrappedProgram>(m_workplace.sdk().tool(name, targetName), "", script);
    }
    const PromptAnswers user({});
    Messages messages;
    QStringList issues;
    connect(step, &BuildStep::addTask, this, [&](const Task &task) {
        QCOMPARE(task.type, Task::Error);
        QCOMPARE(task.category, Utils::Id(ProjectExplorer::Constants::TASK_CATEGORY_DEPLOYMENT));
        QCOMPARE(task.details.join('\n'), why);
        issues << "ErrorMessage: " + task.summary;
    });
    Tasking::DoneWith result = Tasking::DoneWith::Error;
    QCOMPARE(ownMessages(runStep(step, &result)), (QStringList{START, message}));
    QCOMPARE(issues, QStringList{message});
    QCOMPARE(result, Tasking::DoneWith::Success); // the deploy goes on
    QCOMPARE(messages.take().contains("[W]\t" + why), why.startsWith("Cancelled"));
}

void StepsTest::tellsThatItWasCancelled()
{
    QFETCH(QString, targetName);
    BuildStep *step = addStep(targetName);
    QStringList output;
    connect(step, &BuildStep::addOutput, this, [&output](const QString &text) { output << text; });
    Tasking::TaskTree tree({BuildManager::recipeOf(step)});
    QSignalSpy done(&tree, &Tasking::TaskTree::done);
    // The run cannot be interrupted, so the cancel request is from within it.
    connect(step, &BuildStep::addOutput, &tree, &Tasking::TaskTree::cancel);
    tree.start();
    QCOMPARE(done.count(), 1);
    QCOMPARE(done.first().first().value<Tasking::DoneWith>(), Tasking::DoneWith::Cancel);
    QCOMPARE("ErrorMessage: " + output.last(), STOPPED);
    QCOMPARE(output.count(output.last()), 1);
}

void StepsTest::survivesItsRemoval()
{
    QFETCH(QString, targetName);
    QPointer<BuildStep> step = addStep(targetName);
    m_workplace.makePackages(step->project(), {"a.rpm"});
    const QString name = targetName == RPMSIGN_TARGET ? "rpmsign-external" : "customer-sign";
    const HeldProgram tool(m_workplace.sdk().tool(name, targetName), "");
    QTimer moment;
    moment.callOnTimeout([&] {
        if (!step || !tool.isWaiting())
            return;
        m_workplace.closeProjects();
        tool.release();
    });
    moment.start(10);
    Tasking::TaskTree tree({BuildManager::recipeOf(step)});
    QSignalSpy done(&tree, &Tasking::TaskTree::done);
    tree.start();
    QCOMPARE(done.count(), 1);
    QVERIFY(!step);
}

void StepsTest::keepsItsMap_data()
{
    addColumns<QString, Store, Store>("targetName", "map", "expected");

    const Store custom{{"Sealkit.UseDefaultValues", false},
                       {"Sealkit.Key", "/w/k.pem"},
                       {"Sealkit.Cert", "/w/c.pem"}};
    const Store global{{"Sealkit.UseDefaultValues", true}};
    addRow("custom keys", RPMSIGN_TARGET, custom, custom);
    addRow("global keys", RPMSIGN_TARGET, global, global);
    addRow("nothing stored", RPMSIGN_TARGET, Store(), global);
    addRow("custom keys left behind",
           RPMSIGN_TARGET,
           Store{{"Sealkit.UseDefaultValues", true}, {"Sealkit.Key", "/w/k.pem"}},
           global);

    const Store customers{{"Sealkit.BinariesKey", "/b"},
                          {"Sealkit.PackagesKey", "/k"},
                          {"Sealkit.PackagesCert", "/c"},
                          {"Sealkit.PackagesClientCert", "/cc"},
                          {"KilnRpmSign.SignDebugPackage", false}};
    addRow("customer's keys", CUSTOMER_TARGET, customers, customers);
    // A default file that is not there is no default.
    const QString home = m_workplace.sdk().workspace() + "/home/.kilnsdk/";
    addRow("customer's default keys",
           CUSTOMER_TARGET,
           Store(),
           Store{{"Sealkit.BinariesKey", home + "binaries-key.pem"},
                 {"Sealkit.PackagesKey", home + "packages-key.pem"},
                 {"Sealkit.PackagesCert", ""},
                 {"Sealkit.PackagesClientCert", home + "packages-client-cert.pem"},
                 {"KilnRpmSign.SignDebugPackage", true}});
}

void StepsTest::keepsItsMap()
{
    QFETCH(const QString, targetName);
    QFETCH(const Store, map);
    const QString file = m_workplace.sdk().workspace() + "/home/.kilnsdk/packages-cert.pem";
    QVERIFY(QFile::rename(file, file + ".away"));
    BuildStep *step = addStep(targetName);
    QVERIFY(QFile::rename(file + ".away", file));
    step->fromMap(map);
    QTEST(signEntries(step), "expected");
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
}

void StepsTest::widgetConfiguresCustomerSign()
{
    BuildStep *step = addStep(CUSTOMER_TARGET);
    const Store before{{"Sealkit.BinariesKey", "/b"},
                       {"Sealkit.PackagesKey", "/k"},
                       {"Sealkit.PackagesCert", key("client_cert.pem")},
                       {"Sealkit.PackagesClientCert", "/cc"},
                       {"KilnRpmSign.SignDebugPackage", false}};
    step->fromMap(before);
    const std::unique_ptr<QWidget> widget(step->doCreateConfigWidget());
    widget->show();
    QCOMPARE(signEntries(step), before);
    QCOMPARE(widget->findChild<QLabel *>("commandLabelEdit")->text(), "customer-sign");
    QVERIFY(widget->findChild<QLabel *>("packagesCertNoteLabel")->text().contains("Demo Client"));
    QVERIFY(step->summaryText().isEmpty());

    for (const char *name : {"binariesKey", "packagesKey", "packagesCert", "packagesClientCert"}) {
        auto *chooser = widget->findChild<PathChooser *>(QLatin1String(name) + "PathChooser");
        QTest::keyClicks(chooser->lineEdit(), "x");
    }
    auto *checkBox = widget->findChild<QCheckBox *>("signDebugPackageCheckBox");
    QTest::mouseClick(checkBox, Qt::LeftButton, {}, QPoint(5, checkBox->height() / 2));
    QCOMPARE(signEntries(step),
             (Store{{"Sealkit.BinariesKey", "/bx"},
                    {"Sealkit.PackagesKey", "/kx"},
                    {"Sealkit.PackagesCert", key("client_cert.pemx")},
                    {"Sealkit.PackagesClientCert", "/ccx"},
                    {"KilnRpmSign.SignDebugPackage", true}}));
}

void StepsTest::widgetJudgesPaths_data()
{
    addColumns<QString, QString, QString>("targetName", "field", "title");

    const QString title = "User private key for signing the package";
    addRow("key", RPMSIGN_TARGET, "key", title);
    addRow("certificate", RPMSIGN_TARGET, "certificate", "Certificate to be used in signature");
    addRow("binaries key", CUSTOMER_TARGET, "binariesKey", "Select binaries key");
    addRow("packages key", CUSTOMER_TARGET, "packagesKey", "Select packages key");
    addRow("packages certificate", CUSTOMER_TARGET, "packagesCert", "Select packages certificate");
    addRow("client certificate",
           CUSTOMER_TARGET,
           "packagesClientCert",
           "Select packages client certificate");
}

void StepsTest::widgetJudgesPaths()
{
    QFETCH(QString, targetName);
    QFETCH(QString, field);
    Brisk::BuildEngine *engine = Brisk::Sdk::buildEngines().first();
    const auto restore = qScopeGuard([&] { engine->setSharedSrcPath(m_workplace.workspace()); });
    engine->setSharedSrcPath("/w"); // the shared home lies elsewhere
    BuildStep *step = addStep(targetName);
    const bool isCustomers = targetName == CUSTOMER_TARGET;
    if (!isCustomers)
        step->fromMap({{"Sealkit.UseDefaultValues", false},
                       {"Sealkit.Key", "/w/k.pem"},
                       {"Sealkit.Cert", "/w/c.pem"}});
    const std::unique_ptr<QWidget> widget(step->doCreateConfigWidget());
    auto *chooser = widget->findChild<PathChooser *>(field + "PathChooser");
    QTEST(chooser->promptDialogTitle(), "title");
    QCoreApplication::processEvents(); // what the chooser first made of no text comes in
    QVERIFY(chooser->isValid());

    const QString home = engine->sharedHomePath().toUserOutput();
    const QString problem = isCustomers
                                ? "The path must be inside shared folders:\n" + home + "\n/w"
                                : "The path must be inside workspace folder:\n/w";
    const auto problemOf = [&](const QString &path) {
        chooser->lineEdit()->setText(path);
        return chooser->isValid() ? QString() : chooser->errorMessage();
    };
    QCOMPARE(problemOf("/elsewhere/k.pem"), problem);
    QCOMPARE(problemOf(home + "/k.pem"), isCustomers ? "" : problem);
    QCOMPARE(problemOf("/w/k.pem"), "");
    QCOMPARE(problemOf(""), field == "packagesClientCert" ? "" : problem);
}

QTEST_MAIN(StepsTest)
#include "tst_steps.moc"
