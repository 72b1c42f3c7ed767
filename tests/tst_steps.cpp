#include "customersignstep.h"
#include "files.h"
#include "messages.h"
#include "promptanswers.h"
#include "rpmsignexternalstep.h"
#include "stepfactory.h"
#include "straywarnings.h"
#include "workplace.h"

#include <brisk/buildengine.h>
#include <brisk/installation.h>
#include <brisk/sdk.h>
#include <host/buildmanager.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectexplorerconstants.h>
#include <projectexplorer/target.h>
#include <projectexplorer/task.h>
#include <utils/fancylineedit.h>
#include <utils/pathchooser.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;
using Utils::PathChooser;

const QString START = QStringLiteral("NormalMessage: Signing RPM package...");
const QString COMPLETED = QStringLiteral("NormalMessage: Package sign completed successfully.");
const QString STOPPED = QStringLiteral("ErrorMessage: Package sign stopped by user");
const QString NO_BUILD_STEP =
    QStringLiteral("ErrorMessage: Error: No previous \"Build RPM Packages\" step found");
const QString NO_PACKAGE = QStringLiteral("ErrorMessage: Error: no package for sign found");

/// What a step itself says, without the lines of its tools.
static QStringList ownMessages(QStringList output)
{
    output.removeIf([](const QString &line) {
        return line.startsWith("Stdout: ")
               || (line.startsWith("Stderr: ") && !line.startsWith("Stderr: Note: ")
                   && !line.startsWith("Stderr: Failed"));
    });
    return output;
}

static QString developerNote(const QString &package)
{
    return QStringLiteral("Stderr: Note: Packages %1 signed with developer key, use is possible "
                          "only for development purposes. Read more: "
                          "https://developer.veyraos.example/doc/sdk/app_development/packaging/"
                          "package_signing")
        .arg(package);
}

static Utils::FilePath sharedHome()
{
    return Brisk::Sdk::buildEngines().first()->sharedHomePath();
}

class StepsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void rpmsignSignsAndTellsTheWorth_data();
    void rpmsignSignsAndTellsTheWorth();
    void rpmsignNotesWhatIsNotSigned();
    void rpmsignIsContentWithAClientSignature();
    void rpmsignReportsOnlyInTheLastEnabledStep();
    void rpmsignUsesTheGlobalKeys_data();
    void rpmsignUsesTheGlobalKeys();
    void rpmsignKeepsItsMap_data();
    void rpmsignKeepsItsMap();
    void rpmsignWidgetConfiguresTheStep();
    void rpmsignWidgetMarksPathsOutside();

    void customerSigns_data();
    void customerSigns();
    void customerLooksForTheBuildStepOnce();
    void customerKeepsItsMap();
    void customerWidgetConfiguresTheStep();
    void customerWidgetJudgesPaths();

    void refusesWhatCannotBeSigned_data();
    void refusesWhatCannotBeSigned();
    void tellsThatItWasCancelled_data();
    void tellsThatItWasCancelled();

private:
    QString key(const char *name) const
    {
        return m_workplace.sdk().workspace() + "/keys/" + QLatin1String(name);
    }
    int engineRun(const QStringList &words) const;

    /// A step of the kind that fits the target, alone behind an RPM build step.
    template<class Step>
    Step *addStep(const QString &targetName)
    {
        BuildStepList *steps = deploySteps(m_workplace.openProject(targetName));
        steps->appendStep(Step::stepId());
        return qobject_cast<Step *>(steps->steps().last());
    }

    Workplace m_workplace;
    DeployStepFactory<CustomerSignStep> m_customerFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignFactory;
};

void StepsTest::init()
{
    failOnStrayWarnings();
}

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

void StepsTest::rpmsignSignsAndTellsTheWorth_data()
{
    QTest::addColumn<QStringList>("packages");

    QTest::newRow("one package") << QStringList{"a.rpm"};
    QTest::newRow("rpm in a name") << QStringList{"b.rpm", "my-rpm-a.rpm"};
    QTest::newRow("several packages") << QStringList{"a-1.0.rpm", "a-debuginfo-1.0.rpm", "b c.rpm"};
}

void StepsTest::rpmsignSignsAndTellsTheWorth()
{
    QFETCH(const QStringList, packages);
    auto *step = addStep<RpmsignExternalStep>(RPMSIGN_TARGET);
    const QStringList paths = m_workplace.makePackages(step->project(), packages);

    QStringList expected{START, COMPLETED};
    for (const QString &package : packages)
        expected << developerNote(package);
    QCOMPARE(ownMessages(runStep(step)), expected);
    QCOMPARE(engineRun(QStringList{RPMSIGN_TARGET, "rpmsign-external", "verify"} + paths), 0);
}

void StepsTest::rpmsignNotesWhatIsNotSigned()
{
    // Signed, but by somebody of neither group.
    const QString ownKey = m_workplace.sdk().workspace() + "/own_key.pem";
    const QString ownCertificate = m_workplace.sdk().workspace() + "/own_cert.pem";
    QProcess openssl;
    openssl.start("openssl",
                  {"req",
                   "-x509",
                   "-newkey",
                   "rsa:2048",
                   "-nodes",
                   "-subj",
                   "/CN=x/OU=tester",
                   "-keyout",
                   ownKey,
                   "-out",
                   ownCertificate});
    QVERIFY(openssl.waitForFinished() && openssl.exitCode() == 0);
    QSettings().setValue("Sealkit.GlobalSignKey", ownKey);
    QSettings().setValue("Sealkit.GlobalSignCert", ownCertificate);

    auto *step = addStep<RpmsignExternalStep>(RPMSIGN_TARGET);
    m_workplace.makePackages(step->project(), {"a.rpm"});
    QCOMPARE(ownMessages(runStep(step)),
             (QStringList{START,
                          COMPLETED,
                          "Stderr: Note: Packages a.rpm is not signed. Deployment to the device is "
                          "not possible. Read more: https://developer.veyraos.example/doc/sdk/"
                          "app_development/packaging/package_signing"}));
}

void StepsTest::rpmsignIsContentWithAClientSignature()
{
    auto *step = addStep<RpmsignExternalStep>(RPMSIGN_TARGET);
    const QStringList paths = m_workplace.makePackages(step->project(), {"a.rpm", "b.rpm"});
    QCOMPARE(engineRun({RPMSIGN_TARGET,
                        "rpmsign-external",
                        "sign",
                        "-k",
                        key("client_key.pem"),
                        "-c",
                        key("client_cert.pem"),
                        paths.first()}),
             0);
    QCOMPARE(ownMessages(runStep(step)), (QStringList{START, COMPLETED, developerNote("b.rpm")}));
}

void StepsTest::rpmsignReportsOnlyInTheLastEnabledStep()
{
    auto *first = addStep<RpmsignExternalStep>(RPMSIGN_TARGET);
    m_workplace.makePackages(first->project(), {"a.rpm"});
    first->stepList()->appendStep(RpmsignExternalStep::stepId());
    BuildStep *second = first->stepList()->steps().last();

    QCOMPARE(ownMessages(runStep(first)), (QStringList{START, COMPLETED}));
    QCOMPARE(ownMessages(runStep(second)), (QStringList{START, COMPLETED, developerNote("a.rpm")}));
    second->setStepEnabled(false);
    QCOMPARE(ownMessages(runStep(first)), (QStringList{START, COMPLETED, developerNote("a.rpm")}));
}

void StepsTest::rpmsignUsesTheGlobalKeys_data()
{
    QTest::addColumn<QVariant>("storedKey");
    QTest::addColumn<QString>("lastMessage");

    QTest::newRow("nothing stored") << QVariant() << developerNote("a.rpm");
    QTest::newRow("an empty path")
        << QVariant("") << "ErrorMessage: Error: key and certificate can't be empty";
    QTest::newRow("outside the workspace")
        << QVariant("/elsewhere.pem")
        << "ErrorMessage: Error: key and certificate must be inside workspace folder: "
               + m_workplace.workspace().shortNativePath();
}

void StepsTest::rpmsignUsesTheGlobalKeys()
{
    QFETCH(const QVariant, storedKey);
    if (storedKey.isValid())
        QSettings().setValue("Sealkit.GlobalSignKey", storedKey);
    auto *step = addStep<RpmsignExternalStep>(RPMSIGN_TARGET);
    m_workplace.makePackages(step->project(), {"a.rpm"});
    QTEST(ownMessages(runStep(step)).last(), "lastMessage");
}

using Utils::Store;

void StepsTest::rpmsignKeepsItsMap_data()
{
    QTest::addColumn<Store>("map");
    QTest::addColumn<Store>("expected");

    const Store custom{{"Sealkit.UseDefaultValues", false},
                       {"Sealkit.Key", "/w/k.pem"},
                       {"Sealkit.Cert", "/w/c.pem"}};
    QTest::newRow("custom keys") << custom << custom;
    const Store global{{"Sealkit.UseDefaultValues", true}};
    QTest::newRow("global keys") << global << global;
    QTest::newRow("nothing stored") << Store() << global;
    QTest::newRow("custom keys left behind")
        << Store{{"Sealkit.UseDefaultValues", true}, {"Sealkit.Key", "/w/k.pem"}} << global;
}

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

void StepsTest::rpmsignKeepsItsMap()
{
    QFETCH(const Store, map);
    auto *step = addStep<RpmsignExternalStep>(RPMSIGN_TARGET);
    step->fromMap(map);
    QTEST(signEntries(step), "expected");
}

void StepsTest::rpmsignWidgetConfiguresTheStep()
{
    auto *step = addStep<RpmsignExternalStep>(RPMSIGN_TARGET);
    step->fromMap({{"Sealkit.UseDefaultValues", false},
                   {"Sealkit.Key", "/w/k.pem"},
                   {"Sealkit.Cert", "/w/c.pem"}});
    const std::unique_ptr<QWidget> widget(step->doCreateConfigWidget());
    widget->show();
    auto *combo = widget->findChild<QComboBox *>("keysTypeComboBox");
    auto *label = widget->findChild<QLabel *>("keysTypeLabel");
    auto *keyChooser = widget->findChild<PathChooser *>("keyPathChooser");
    auto *certificateChooser = widget->findChild<PathChooser *>("certificatePathChooser");

    // Showing the widget changes nothing.
    QCOMPARE(signEntries(step).value("Sealkit.Key"), "/w/k.pem");
    QCOMPARE(combo->currentIndex(), 1);
    QCOMPARE(label->text(), "Custom keys are used");
    QCOMPARE(keyChooser->lineEdit()->text(), "/w/k.pem");
    QCOMPARE(certificateChooser->lineEdit()->text(), "/w/c.pem");

    QTest::keyClick(combo, Qt::Key_Up);
    QCOMPARE(label->text(), "Global keys are used");
    QVERIFY(!keyChooser->isVisible() && !certificateChooser->isVisible());
    QCOMPARE(signEntries(step), (Store{{"Sealkit.UseDefaultValues", true}}));

    QTest::keyClick(combo, Qt::Key_Down);
    QVERIFY(keyChooser->isVisible() && certificateChooser->isVisible());
    QCOMPARE(signEntries(step).value("Sealkit.Key"), "");

    QTest::keyClicks(keyChooser->lineEdit(), "/w/x");
    QTest::keyClicks(certificateChooser->lineEdit(), "/w/y");
    QCOMPARE(signEntries(step),
             (Store{{"Sealkit.UseDefaultValues", false},
                    {"Sealkit.Key", "/w/x"},
                    {"Sealkit.Cert", "/w/y"}}));
}

void StepsTest::rpmsignWidgetMarksPathsOutside()
{
    auto *step = addStep<RpmsignExternalStep>(RPMSIGN_TARGET);
    step->fromMap({{"Sealkit.UseDefaultValues", false},
                   {"Sealkit.Key", m_workplace.sdk().workspace() + "/k.pem"}});
    const std::unique_ptr<QWidget> widget(step->doCreateConfigWidget());
    auto *chooser = widget->findChild<PathChooser *>("keyPathChooser");
    QCoreApplication::processEvents(); // what the chooser first made of no text comes in
    QVERIFY(chooser->isValid());

    for (const char *path : {"", "/elsewhere/k.pem"}) {
        chooser->lineEdit()->setText(path);
        QVERIFY(!chooser->isValid());
        QCOMPARE(chooser->errorMessage(),
                 "The path must be inside workspace folder:\n"
                     + m_workplace.workspace().toUserOutput());
    }
    chooser->lineEdit()->setText(m_workplace.sdk().workspace() + "/k.pem");
    QVERIFY(chooser->isValid());
}

void StepsTest::customerSigns_data()
{
    QTest::addColumn<bool>("signDebugPackages");
    QTest::addColumn<QStringList>("packages");
    QTest::addColumn<QStringList>("signedPackages");
    QTest::addColumn<QString>("lastMessage");

    const QStringList all{"a-1.rpm", "a-debuginfo-1.rpm", "a-debugsource-1.rpm"};
    QTest::newRow("all") << true << all << all << COMPLETED;
    QTest::newRow("no debug packages") << false << all << QStringList{"a-1.rpm"} << COMPLETED;
    const QStringList inDebugFolder{"debuginfo-tools/a.rpm"};
    QTest::newRow("a debug folder") << false << inDebugFolder << QStringList{"a.rpm"} << COMPLETED;
    QTest::newRow("only debug packages") << false << all.mid(1) << QStringList() << NO_PACKAGE;
}

void StepsTest::customerSigns()
{
    QFETCH(const bool, signDebugPackages);
    QFETCH(const QStringList, packages);
    auto *step = addStep<CustomerSignStep>(CUSTOMER_TARGET);
    const QStringList paths = m_workplace.makePackages(step->project(), packages);
    step->setSignDebugPackages(signDebugPackages);

    const QStringList output = ownMessages(runStep(step));
    QCOMPARE(output.first(), START);
    QTEST(output.last(), "lastMessage");

    QStringList signedPackages;
    for (const QString &path : paths) {
        const QStringList words{
            CUSTOMER_TARGET, "nxvcert-cli", "verify", "--root-cert-file-path", "", path};
        if (engineRun(words) == 0)
            signedPackages << QFileInfo(path).fileName();
    }
    QTEST(signedPackages, "signedPackages");
}

void StepsTest::customerLooksForTheBuildStepOnce()
{
    BuildStepList *steps = deploySteps(m_workplace.openProject(CUSTOMER_TARGET));
    steps->clear();
    steps->appendStep(CustomerSignStep::stepId());
    auto *step = qobject_cast<CustomerSignStep *>(steps->at(0));
    step->setBinariesKey(key("client_key.pem"));
    step->setPackagesKey(key("client_key.pem"));
    step->setPackagesCert(key("client_cert.pem"));
    steps->insertStep(0, Utils::Id("Kiln.Kb2RpmBuildStep"));
    m_workplace.makePackages(step->project(), {"a.rpm"});
    QCOMPARE(ownMessages(runStep(step)), (QStringList{START, NO_BUILD_STEP}));

    // One that is made while the list has an RPM build step anywhere finds it.
    CustomerSignStep late(steps, CustomerSignStep::stepId());
    QCOMPARE(ownMessages(runStep(&late)), (QStringList{START, COMPLETED}));
    steps->removeStep(0);
    QCOMPARE(ownMessages(runStep(&late)), (QStringList{START, NO_BUILD_STEP}));
}

void StepsTest::customerKeepsItsMap()
{
    auto *step = addStep<CustomerSignStep>(CUSTOMER_TARGET);
    const QString defaults = sharedHome().toFSPathString() + "/.kilnsdk/";
    Store expected{{"Sealkit.BinariesKey", defaults + "binaries-key.pem"},
                   {"Sealkit.PackagesKey", defaults + "packages-key.pem"},
                   {"Sealkit.PackagesCert", defaults + "packages-cert.pem"},
                   {"Sealkit.PackagesClientCert", defaults + "packages-client-cert.pem"},
                   {"KilnRpmSign.SignDebugPackage", true}};
    step->fromMap({});
    QCOMPARE(signEntries(step), expected);

    expected = {{"Sealkit.BinariesKey", "/b"},
                {"Sealkit.PackagesKey", "/k"},
                {"Sealkit.PackagesCert", "/c"},
                {"Sealkit.PackagesClientCert", "/cc"},
                {"KilnRpmSign.SignDebugPackage", false}};
    step->fromMap(expected);
    QCOMPARE(signEntries(step), expected);

    // A default file that is not there is no default.
    QVERIFY(QFile::rename(defaults + "packages-cert.pem", defaults + "gone"));
    auto *bare = addStep<CustomerSignStep>(CUSTOMER_TARGET);
    QCOMPARE(signEntries(bare).value("Sealkit.PackagesCert"), "");
    QVERIFY(QFile::rename(defaults + "gone", defaults + "packages-cert.pem"));
}

void StepsTest::customerWidgetConfiguresTheStep()
{
    auto *step = addStep<CustomerSignStep>(CUSTOMER_TARGET);
    step->setBinariesKey("/b");
    step->setPackagesKey("/k");
    step->setPackagesCert("/c");
    step->setPackagesClientCert("/cc");
    step->setSignDebugPackages(false);
    const Store before = signEntries(step);
    const std::unique_ptr<QWidget> widget(step->doCreateConfigWidget());
    widget->show();
    QCOMPARE(signEntries(step), before);
    QCOMPARE(widget->findChild<QLabel *>("commandLabelEdit")->text(), "customer-sign");
    QVERIFY(step->summaryText().isEmpty());

    for (const char *name : {"binariesKey", "packagesKey", "packagesCert", "packagesClientCert"}) {
        auto *chooser = widget->findChild<PathChooser *>(QLatin1String(name) + "PathChooser");
        QTest::keyClicks(chooser->lineEdit(), "x");
    }
    auto *checkBox = widget->findChild<QCheckBox *>("signDebugPackageCheckBox");
    QVERIFY(!checkBox->isChecked());
    QTest::mouseClick(checkBox, Qt::LeftButton, {}, QPoint(5, checkBox->height() / 2));
    QCOMPARE(signEntries(step),
             (Store{{"Sealkit.BinariesKey", "/bx"},
                    {"Sealkit.PackagesKey", "/kx"},
                    {"Sealkit.PackagesCert", "/cx"},
                    {"Sealkit.PackagesClientCert", "/ccx"},
                    {"KilnRpmSign.SignDebugPackage", true}}));
}

void StepsTest::customerWidgetJudgesPaths()
{
    auto *step = addStep<CustomerSignStep>(CUSTOMER_TARGET);
    const std::unique_ptr<QWidget> widget(step->doCreateConfigWidget());
    QCoreApplication::processEvents(); // what the choosers first made of no text comes in
    for (const char *name : {"binariesKey", "packagesKey", "packagesCert", "packagesClientCert"}) {
        auto *chooser = widget->findChild<PathChooser *>(QLatin1String(name) + "PathChooser");
        QVERIFY(chooser->isValid());
        chooser->lineEdit()->setText("/elsewhere/k.pem");
        QVERIFY(!chooser->isValid());
        QCOMPARE(chooser->errorMessage(),
                 QStringLiteral("The path must be inside shared folders:\n%1\n%2")
                     .arg(sharedHome().toUserOutput(), m_workplace.workspace().toUserOutput()));
        chooser->lineEdit()->setText(m_workplace.sdk().workspace() + "/k.pem");
        QVERIFY(chooser->isValid());
        chooser->lineEdit()->clear();
        QCOMPARE(chooser->isValid(), QLatin1String(name) == QLatin1String("packagesClientCert"));
    }
}

void StepsTest::refusesWhatCannotBeSigned_data()
{
    QTest::addColumn<bool>("forCustomerSign");
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("message");

    QTest::addColumn<QString>("why");

    for (const bool customer : {false, true}) {
        const auto row =
            [customer](const char *obstacle, const QString &message, const QString &why = {}) {
                QTest::addRow("%s, %s", customer ? "customer-sign" : "rpmsign-external", obstacle)
                    << customer << obstacle << message << why;
            };
        const QString error = "ErrorMessage: Error: ";
        row("no step", NO_BUILD_STEP);
        row("no packages", NO_PACKAGE);
        row("no engine", error + "the kit has no build engine");
        row("no target", error + "the kit has no build target");
        row("failing tool",
            error + "package sign failed",
            "The tool gave no reason; its exit code was 3");
        row("declined prompt",
            error + "package sign cancelled",
            "Cancelled: no pass phrase was given");
    }
}

void StepsTest::refusesWhatCannotBeSigned()
{
    QFETCH(const bool, forCustomerSign);
    QFETCH(const QString, obstacle);
    QFETCH(const QString, message);
    QFETCH(const QString, why);

    const QString targetName = forCustomerSign ? CUSTOMER_TARGET : RPMSIGN_TARGET;
    Project *project = m_workplace.openProject(targetName);
    BuildStepList *steps = deploySteps(project);
    if (obstacle == "no step")
        steps->clear();
    const QString targetFolder = m_workplace.sdk().path() + "/engine/targets/" + targetName;
    if (obstacle == "no target")
        QVERIFY(QFile::rename(targetFolder, targetFolder + ".gone"));
    const QString tool =
        m_workplace.sdk().tool(forCustomerSign ? "customer-sign" : "rpmsign-external", targetName);
    const bool hasTool = obstacle != "failing tool" && obstacle != "declined prompt";
    if (!hasTool) {
        QVERIFY(QFile::rename(tool, tool + ".real"));
        const bool asks = obstacle == "declined prompt";
        writeScript(tool, asks ? "printf 'Enter pass phrase: '\nread -r line\n" : "exit 3\n");
        m_workplace.makePackages(project, {"a.rpm"});
    }

    steps->appendStep(forCustomerSign ? CustomerSignStep::stepId() : RpmsignExternalStep::stepId());
    BuildStep *step = steps->steps().last();
    if (forCustomerSign) {
        auto *customerStep = qobject_cast<CustomerSignStep *>(step);
        customerStep->setBinariesKey(key("client_key.pem"));
        customerStep->setPackagesKey(key("client_key.pem"));
        customerStep->setPackagesCert(key("client_cert.pem"));
    }
    if (obstacle == "no engine")
        Brisk::closeInstallation();
    const PromptAnswers user({});
    Messages messages;
    QStringList issues;
    connect(step, &BuildStep::addTask, this, [&](const Task &task) {
        QCOMPARE(task.type, Task::Error);
        QCOMPARE(task.category, Utils::Id(ProjectExplorer::Constants::TASK_CATEGORY_DEPLOYMENT));
        issues << "ErrorMessage: " + task.summary;
        QCOMPARE(task.details.join('\n'), why);
    });
    QCOMPARE(ownMessages(runStep(step)), (QStringList{START, message}));
    QCOMPARE(issues, QStringList{message}); // the run counts as a success
    QCOMPARE(messages.take().contains("[W]\t" + why), obstacle == "declined prompt");

    if (!hasTool) {
        QFile::remove(tool);
        QVERIFY(QFile::rename(tool + ".real", tool));
    }
    if (obstacle == "no target")
        QVERIFY(QFile::rename(targetFolder + ".gone", targetFolder));
    QString error;
    if (obstacle == "no engine") {
        QVERIFY(
            Brisk::openInstallation(Utils::FilePath::fromString(m_workplace.sdk().path()), &error));
    }
}

void StepsTest::tellsThatItWasCancelled_data()
{
    QTest::addColumn<QString>("targetName");

    QTest::newRow("rpmsign-external") << RPMSIGN_TARGET;
    QTest::newRow("customer-sign") << CUSTOMER_TARGET;
}

void StepsTest::tellsThatItWasCancelled()
{
    QFETCH(const QString, targetName);
    BuildStep *step = targetName == RPMSIGN_TARGET
                          ? static_cast<BuildStep *>(addStep<RpmsignExternalStep>(targetName))
                          : addStep<CustomerSignStep>(targetName);
    QStringList errors;
    connect(step,
            &BuildStep::addOutput,
            this,
            [&errors](const QString &text, BuildStep::OutputFormat format) {
                if (format == BuildStep::OutputFormat::ErrorMessage)
                    errors << "ErrorMessage: " + text;
            });

    Tasking::TaskTree tree({BuildManager::recipeOf(step)});
    QSignalSpy done(&tree, &Tasking::TaskTree::done);
    // The run cannot be interrupted, so the cancel request is from within it.
    const auto cancel = connect(step, &BuildStep::addOutput, &tree, &Tasking::TaskTree::cancel);
    tree.start();
    QCOMPARE(done.count(), 1);
    QCOMPARE(done.first().first().value<Tasking::DoneWith>(), Tasking::DoneWith::Cancel);
    QCOMPARE(errors.last(), STOPPED);
    QCOMPARE(errors.count(STOPPED), 1);
}

QTEST_MAIN(StepsTest)
#include "tst_steps.moc"
