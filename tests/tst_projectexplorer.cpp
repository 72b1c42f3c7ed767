#include "files.h"
#include "processes.h"
#include "straywarnings.h"
#include "testrow.h"

#include <host/buildmanager.h>
#include <host/issues.h>
#include <host/userproject.h>
#include <projectexplorer/abstractprocessstep.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/devicesupport/devicekitaspects.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectexplorerconstants.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <projectexplorer/task.h>

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>

using namespace ProjectExplorer;
using namespace Tasking;

using OutputFormat = BuildStep::OutputFormat;

namespace {

constexpr char DEVICE_TYPE[] = "Test.Device";
constexpr char STEP_ID[] = "Test.Step";

/// Does what the test tells it, and keeps any values in its map.
class TestStep : public AbstractProcessStep
{
public:
    TestStep(BuildStepList *list, Utils::Id id)
        : AbstractProcessStep(list, id)
    {
    }

    bool init() override { return onInit(); }
    void fromMap(const Utils::Store &map) override
    {
        AbstractProcessStep::fromMap(map);
        values = map.value("Values", Utils::mapFromStore({})).value<Utils::Store>();
    }
    void toMap(Utils::Store &map) const override
    {
        AbstractProcessStep::toMap(map);
        map.insert("Values", QVariant::fromValue(values));
    }
    /// Runs this text in a shell.
    void setScript(const QString &script)
    {
        setCommandLineProvider([=] { return Utils::CommandLine{"/bin/sh", {"-c", script}}; });
        makeRecipe = [this] { return GroupItems{defaultProcessTask()}; };
    }
    void setHandler(const std::function<SetupResult()> &handler)
    {
        makeRecipe = [handler] { return GroupItems{onGroupSetup(handler)}; };
    }

    std::function<bool()> onInit = [] { return true; };
    std::function<GroupItems()> makeRecipe = [] { return GroupItems{}; };
    Utils::Store values;

private:
    GroupItem runRecipe() override { return Group(makeRecipe()); }
};

class TestStepFactory : public BuildStepFactory
{
public:
    explicit TestStepFactory(Utils::Id id = STEP_ID)
    {
        registerStep<TestStep>(id);
        setDisplayName("Test Step");
        setSupportedStepList(Constants::BUILDSTEPS_DEPLOY);
        setSupportedDeviceType(DEVICE_TYPE);
    }
};

class TestDeployConfigurationFactory : public DeployConfigurationFactory
{
public:
    explicit TestDeployConfigurationFactory(Utils::Id id = "Test.Deploy")
    {
        setConfigBaseId(id);
        setDefaultDisplayName("Test Deploy");
        addSupportedTargetDeviceType(DEVICE_TYPE);
        addInitialStep(STEP_ID);
    }
};

void registerKit(Utils::Id id)
{
    const auto init = [](Kit *kit) { RunDeviceTypeKitAspect::setDeviceTypeId(kit, DEVICE_TYPE); };
    KitManager::registerKit(init, id);
}

BuildStepList *stepListOf(const Target *target)
{
    return target->activeDeployConfiguration()->stepList();
}

TestStep *stepOf(const Target *target, int position = 0)
{
    return static_cast<TestStep *>(stepListOf(target)->at(position));
}

QByteArray asText(const Target *target)
{
    return QJsonDocument(QJsonObject::fromVariantMap(Utils::mapFromStore(target->toMap())))
        .toJson();
}

/// Turns the event loop while \a action is waited for, as a step does that waits for a tool.
void spinAndDo(const std::function<void()> &action)
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        action();
        // What the action has deleted only for later is gone when the loop ends.
        QTimer::singleShot(10, &loop, &QEventLoop::quit);
    });
    loop.exec();
}

} // namespace

class ProjectExplorerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void whatTheUserConfiguredComesBack();
    void whatIsUnknownStays();
    void unreadableSettingsAreKeptAside_data();
    void unreadableSettingsAreKeptAside();
    void stepsRunInOrder_data();
    void stepsRunInOrder();
    void nothingIsRemovedWhileItRuns();
    void projectIsClosedWhileItRuns_data();
    void projectIsClosedWhileItRuns();
    void programsAreShownLineByLine_data();
    void programsAreShownLineByLine();
    void nothingIsLeftOfAProgram_data();
    void nothingIsLeftOfAProgram();

private:
    Target *openProject();
    void run(const Target *target, bool expectedSuccess);
    Utils::FilePath specPath() const
    {
        return Utils::FilePath::fromString(m_directory->filePath("rpm/app.spec"));
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    const TestStepFactory m_stepFactory;
    TestDeployConfigurationFactory m_deployFactory;
    QStringList m_output;
    QList<bool> m_results;
};

void ProjectExplorerTest::init()
{
    failOnStrayWarnings();
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_directory->path()).mkdir("rpm"));
    registerKit("kit.a");
    registerKit("kit.b");
    m_output.clear();
    m_results.clear();
    const auto *manager = BuildManager::instance();
    connect(manager,
            &BuildManager::outputAdded,
            this,
            [this](const QString &text, OutputFormat format) {
                static const QStringList prefixes{"out: ", "err: ", "", "! "};
                m_output.append(prefixes.at(int(format)) + text);
            });
    const auto *issues = Host::Issues::instance();
    connect(issues, &Host::Issues::added, this, [this](const Task &issue) {
        m_output.append("issue: " + issue.summary + " (" + issue.details.join(", ") + ")\n");
    });
    connect(manager, &BuildManager::buildQueueFinished, this, [this](bool success) {
        m_results.append(success);
    });
}

void ProjectExplorerTest::cleanup()
{
    BuildManager::instance()->disconnect(this);
    Host::Issues::instance()->disconnect(this);
    while (!ProjectManager::projects().isEmpty())
        ProjectManager::removeProject(ProjectManager::projects().constFirst());
    KitManager::deregisterKits(KitManager::kits());
}

Target *ProjectExplorerTest::openProject()
{
    auto *project = new Host::UserProject(specPath());
    project->addTargetForKit(KitManager::kits().constFirst());
    ProjectManager::addProject(project);
    return project->activeTarget();
}

void ProjectExplorerTest::run(const Target *target, bool expectedSuccess)
{
    QVERIFY(BuildManager::buildList(stepListOf(target)));
    QTRY_VERIFY(!BuildManager::isBuilding());
    QCOMPARE(m_results, QList<bool>{expectedSuccess});
}

void ProjectExplorerTest::whatTheUserConfiguredComesBack()
{
    QString error;
    Host::UserProject project(specPath());
    project.addTargetForKit(KitManager::kit("kit.a"));
    Target *target = project.addTargetForKit(KitManager::kit("kit.b"));
    project.setActiveTarget(target, SetActive::Cascade);
    target->addDeployConfiguration(m_deployFactory.create(target));
    target->setActiveDeployConfiguration(target->deployConfigurations().constLast(),
                                         SetActive::Cascade);
    QCOMPARE(target->activeDeployConfiguration()->displayName(), QString("Test Deploy 2"));

    stepListOf(target)->appendStep(STEP_ID);
    stepOf(target)->setStepEnabled(false);
    stepOf(target)->setDisplayName("Mine");
    const Utils::Store values{{"Bool", true},
                              {"Text", "ä \"quoted\"\n"},
                              {"Number", 7},
                              {"List", QVariantList{"a", "b"}},
                              {"Map", QVariant::fromValue(Utils::Store{{"inner", false}})}};
    stepOf(target, 1)->values = values;
    QVERIFY2(project.saveSettings(&error), qPrintable(error));

    Host::UserProject restored(specPath());
    QVERIFY2(restored.restoreSettings(&error), qPrintable(error));
    QCOMPARE(restored.targets().size(), 2);
    QCOMPARE(restored.activeTarget()->id(), target->id());
    QCOMPARE(asText(restored.activeTarget()), asText(target));
    QCOMPARE(asText(restored.targets().constFirst()), asText(project.targets().constFirst()));
    QCOMPARE(stepOf(restored.activeTarget(), 1)->values, values);
    QVERIFY(!stepOf(restored.activeTarget())->stepEnabled());
    QCOMPARE(stepOf(restored.activeTarget())->displayName(), QString("Mine"));
}

void ProjectExplorerTest::whatIsUnknownStays()
{
    QString error;
    const Utils::Store kept{{"Key", "kept"}};
    Utils::FilePath settingsPath;
    {
        // These plugins are missing in the next session, and so is one of the kits.
        const TestStepFactory stepFactory("Other.Step");
        const TestDeployConfigurationFactory deployFactory("Other.Deploy");
        Host::UserProject before(specPath());
        Target *target = before.addTargetForKit(KitManager::kit("kit.a"));
        stepListOf(target)->appendStep("Other.Step");
        stepOf(target, 1)->values = kept;
        QCOMPARE(target->deployConfigurations().size(), 2);
        Target *active = before.addTargetForKit(KitManager::kit("kit.b"));
        stepOf(active)->values = kept;
        before.setActiveTarget(active, SetActive::Cascade);
        QVERIFY(before.saveSettings(&error));
        settingsPath = before.settingsFilePath();
    }
    const QByteArray settings = readFile(settingsPath.toFSPathString());
    KitManager::deregisterKits(KitManager::kits());
    registerKit("kit.a");

    Host::UserProject project(specPath());
    QVERIFY(project.restoreSettings(&error));
    QCOMPARE(project.targets().size(), 1);
    QCOMPARE(project.activeTarget()->deployConfigurations().size(), 1);
    QCOMPARE(stepListOf(project.activeTarget())->count(), 1);
    QVERIFY(project.saveSettings(&error));
    QCOMPARE(readFile(settingsPath.toFSPathString()), settings);

    registerKit("kit.b");
    Host::UserProject restored(specPath());
    QVERIFY(restored.restoreSettings(&error));
    QCOMPARE(stepOf(restored.target(KitManager::kit("kit.b")))->values, kept);
    QCOMPARE(stepOf(project.addTargetForKit(KitManager::kit("kit.b")))->values, kept);
}

void ProjectExplorerTest::unreadableSettingsAreKeptAside_data()
{
    QTest::addColumn<QByteArray>("contents");
    addRow("empty", QByteArray());
    addRow("cut off", QByteArray("{\"FormatVersion\": 1, "));
    addRow("of another kind", QByteArray("[]"));
    addRow("from a later version", QByteArray("{\"FormatVersion\": 2}"));
}

void ProjectExplorerTest::unreadableSettingsAreKeptAside()
{
    QFETCH(QByteArray, contents);

    Host::UserProject project(specPath());
    const QString path = project.settingsFilePath().toFSPathString();
    for (const QString &backup : {path + ".bak", path + ".bak2"}) {
        writeFile(path, contents);
        QString error;
        QVERIFY(!project.restoreSettings(&error));
        QVERIFY2(error.contains(backup), qPrintable(error));
        QVERIFY(QFile::exists(backup));
        QCOMPARE(readFile(backup), contents);
        QVERIFY(project.saveSettings(&error));
        QVERIFY(Host::UserProject(specPath()).restoreSettings(&error));
    }
}

using Prepare = std::function<void(TestStep *)>;

void ProjectExplorerTest::stepsRunInOrder_data()
{
    QTest::addColumn<Prepare>("prepareFirst");
    QTest::addColumn<bool>("success");
    QTest::addColumn<QStringList>("expected"); // between the headline and the last line

    const auto withHandler = [](OutputFormat format, SetupResult result) -> Prepare {
        return [format, result](TestStep *step) {
            step->setHandler([step, format, result] {
                emit step->addOutput("text", format);
                return result;
            });
        };
    };
    const Prepare disabled = [](TestStep *step) { step->setStepEnabled(false); };
    const Prepare greyedOut = [](TestStep *step) { step->setEnabled(false); };
    const Prepare reporting = [](TestStep *step) {
        step->setHandler([step] {
            emit step->addTask(DeploymentTask(Task::Error, "text\nmore"));
            return SetupResult::Continue;
        });
    };
    const Prepare refusing = [](TestStep *step) { step->onInit = [] { return false; }; };
    const Prepare hiding = [](TestStep *step) {
        step->makeRecipe = [] {
            return GroupItems{onGroupSetup([] { return SetupResult::StopWithError; }),
                              onGroupDone([] { return DoneResult::Success; })};
        };
    };
    const Prepare succeeding = withHandler(OutputFormat::Stdout, SetupResult::Continue);
    const Prepare failing = withHandler(OutputFormat::Stderr, SetupResult::StopWithError);
    const Prepare complaining = withHandler(OutputFormat::ErrorMessage, SetupResult::Continue);
    const QString first = "Running step \"First\"...\n";
    const QString second = "Running step \"Test Step\"...\n";
    const QStringList failure{"! Error while building/deploying project app (kit: kit.a)\n",
                              "! When executing step \"First\"\n"};

    addRow("success", succeeding, true, QStringList{first, "out: text\n", second});
    addRow("a disabled step is left out", disabled, true, QStringList{second});
    addRow("a disabled aspect is not", greyedOut, true, QStringList{first, second});
    addRow("an issue", reporting, true, QStringList{first, "issue: text (more)\n", second});
    addRow("init refuses", refusing, false, failure);
    addRow(
        "a failing step ends the run", failing, false, QStringList{first, "err: text\n"} + failure);
    addRow("an error message", complaining, true, QStringList{first, "! text\n", second});
    addRow("a done handler hides the error", hiding, true, QStringList{first, second});
}

void ProjectExplorerTest::stepsRunInOrder()
{
    QFETCH(Prepare, prepareFirst);
    QFETCH(bool, success);

    const Target *target = openProject();
    stepListOf(target)->appendStep(STEP_ID);
    stepOf(target)->setDisplayName("First");
    prepareFirst(stepOf(target));
    Host::Issues::instance()->add(DeploymentTask(Task::Warning, "of the run before"));
    m_output.clear();
    run(target, success);
    QCOMPARE(Host::Issues::instance()->tasks().size(), m_output.filter("issue: ").size());

    QCOMPARE(m_output.takeFirst(), QString("Running steps for project app...\n"));
    QCOMPARE(m_output.takeLast(),
             success ? QString("The steps for project app finished successfully.\n")
                     : QString("! The steps for project app failed.\n"));
    QTEST(m_output, "expected");
}

void ProjectExplorerTest::nothingIsRemovedWhileItRuns()
{
    Target *target = openProject();
    stepOf(target)->setHandler([&] {
        DeployConfiguration *configuration = target->activeDeployConfiguration();
        [&] {
            QVERIFY(!configuration->stepList()->removeStep(0));
            configuration->stepList()->clear();
            QVERIFY(!configuration->stepList()->fromMap({}));
            QVERIFY(!target->removeDeployConfiguration(configuration));
            QVERIFY(!target->project()->removeTarget(target));
        }();
        return SetupResult::Continue;
    });
    run(target, true);
    QVERIFY(target->project()->removeTarget(target));
}

void ProjectExplorerTest::projectIsClosedWhileItRuns_data()
{
    QTest::addColumn<QString>("where");
    for (const char *where : {"start", "init", "output", "program"})
        addRow(where, where);
}

void ProjectExplorerTest::projectIsClosedWhileItRuns()
{
    QFETCH(QString, where);

    const Target *target = openProject();
    const QPointer<Project> project(target->project());
    const QPointer<TestStep> step(stepOf(target));
    const auto close = [&] { ProjectManager::removeProject(project); };
    step->onInit = [&] {
        if (where == "init")
            spinAndDo(close);
        return true;
    };
    step->setScript("echo closing; sleep 60");
    QObject context;
    const auto *manager = BuildManager::instance();
    if (where == "start")
        connect(manager, &BuildManager::buildQueueStarted, &context, close);
    connect(manager, &BuildManager::outputAdded, &context, [&](const QString &text) {
        if (text == "closing\n" && where == "output")
            close();
        else if (text == "closing\n" && where == "program")
            QTimer::singleShot(0, &context, close);
    });

    stepListOf(target)->appendStep(STEP_ID);
    run(target, false);
    QVERIFY(project.isNull() && step.isNull());
    QCOMPARE(m_output.constLast(), QString("! Canceled build/deployment.\n"));
}

void ProjectExplorerTest::programsAreShownLineByLine_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("expected");

    const QString normal = "The process \"/bin/sh\" exited normally.\n";
    const QString failed = "! The process \"/bin/sh\" exited with code 3.\n";
    const QString crashed = "! The process \"/bin/sh\" crashed.\n";
    const QStringList channels{"out: a\n", "err: b\n", normal};
    const QStringList lines{"out: a\n", "out: \n", "out: b\n", normal};
    addRow("both channels", "echo a; sleep 0.2; echo b >&2", channels);
    addRow("carriage returns and empty lines", "printf 'a\\r\\n\\r\\nb\\r\\n'", lines);
    addRow("a line and a character in two chunks",
           "printf 'x\\303'; sleep 0.2; printf '\\244y'",
           QStringList{"out: xäy\n", normal});
    addRow("fails", "echo a; exit 3", QStringList{"out: a\n", failed});
    addRow("crashes", "kill -KILL $$", QStringList{crashed});
    addRow("reads its input", "cat", QStringList{normal});
}

void ProjectExplorerTest::programsAreShownLineByLine()
{
    QFETCH(QString, script);
    QFETCH(QStringList, expected);

    const Target *target = openProject();
    stepOf(target)->setScript(script);
    run(target, !expected.last().startsWith("!"));
    QCOMPARE(m_output.mid(2, expected.size() + 1),
             QStringList("Starting: /bin/sh -c " + script + "\n") + expected);
}

void ProjectExplorerTest::nothingIsLeftOfAProgram_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("closesProject");

    const QString untilChild = " & while [ ! -s child ]; do sleep 0.05; done; echo $$ > own; wait";
    const QString withChild = "sh -c 'echo $$ > child; exec sleep 60'" + untilChild;
    const QString deaf = "trap '' TERM; ";
    const QString deafChild =
        "sh -c \"trap '' TERM; echo \\$\\$ > child; while :; do sleep 1; done\"" + untilChild;
    addRow("canceled", withChild, false);
    addRow("canceled and deaf", deaf + withChild, false);
    addRow("canceled, and its child is deaf", deafChild, false);
    addRow("project closed", deaf + withChild, true);
}

void ProjectExplorerTest::nothingIsLeftOfAProgram()
{
    QFETCH(QString, script);
    QFETCH(bool, closesProject);

    const Target *target = openProject();
    stepOf(target)->setScript("cd " + m_directory->path() + "; " + script);
    QVERIFY(BuildManager::buildList(stepListOf(target)));
    QTRY_VERIFY(!readFile(m_directory->filePath("own")).isEmpty());
    const qint64 own = readFile(m_directory->filePath("own")).trimmed().toLongLong();
    const qint64 child = readFile(m_directory->filePath("child")).trimmed().toLongLong();
    QVERIFY(isAlive(own) && isAlive(child));

    if (closesProject)
        ProjectManager::removeProject(target->project());
    else
        BuildManager::cancel();
    QTRY_VERIFY(!BuildManager::isBuilding());
    QCOMPARE(m_results, QList<bool>{false});
    QVERIFY(!m_output.contains("! The process \"/bin/sh\" crashed.\n"));
    QTRY_VERIFY(!isAlive(own) && !isAlive(child));
}

QTEST_GUILESS_MAIN(ProjectExplorerTest)
#include "tst_projectexplorer.moc"
