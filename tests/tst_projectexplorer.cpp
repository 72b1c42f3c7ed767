#include <projectexplorer/abstractprocessstep.h>
#include <projectexplorer/buildmanager.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitaspects.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectexplorerconstants.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
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
    explicit TestStep(BuildStepList *list, Utils::Id id)
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
    void setScript(const QString &script) { setProgram("/bin/sh", {"-c", script}); }
    void setProgram(const QString &program, const QStringList &arguments)
    {
        setCommandLineProvider([=] { return CommandLine{program, arguments}; });
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
    TestStepFactory()
    {
        registerStep<TestStep>(STEP_ID);
        setDisplayName("Test Step");
        setSupportedStepList(Constants::BUILDSTEPS_DEPLOY);
        setSupportedDeviceType(DEVICE_TYPE);
    }
};

class TestDeployConfigurationFactory : public DeployConfigurationFactory
{
public:
    TestDeployConfigurationFactory()
    {
        setConfigBaseId("Test.Deploy");
        setDefaultDisplayName("Test Deploy");
        addSupportedTargetDeviceType(DEVICE_TYPE);
        addInitialStep(STEP_ID);
    }
};

Kit *registerKit(const char *id)
{
    auto kit = std::make_unique<Kit>(id);
    RunDeviceTypeKitAspect::setDeviceTypeId(kit.get(), DEVICE_TYPE);
    return KitManager::registerKit(std::move(kit));
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
        loop.quit();
    });
    loop.exec();
}

bool isProcessAlive(const QString &pid)
{
    QFile stat("/proc/" + pid + "/stat");
    if (!stat.open(QIODevice::ReadOnly))
        return false;
    return !stat.readAll().contains(") Z ");
}

QString read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

class ProjectExplorerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void whatTheUserConfiguredComesBack();
    void targetsOfUnknownKitsStay();
    void unreadableSettingsAreKeptAside_data();
    void unreadableSettingsAreKeptAside();
    void unknownStepsAreLeftOut();
    void stepsRunInOrder_data();
    void stepsRunInOrder();
    void cancelInAHandler();
    void nothingIsRemovedWhileItRuns();
    void projectIsClosedWhileItRuns_data();
    void projectIsClosedWhileItRuns();
    void programsAreShownLineByLine_data();
    void programsAreShownLineByLine();
    void nothingIsLeftOfAProgram_data();
    void nothingIsLeftOfAProgram();

private:
    Target *openProject();
    void run(BuildStepList *list);
    Utils::FilePath specPath() const
    {
        return Utils::FilePath::fromString(m_directory->filePath("rpm/app.spec"));
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<TestStepFactory> m_stepFactory;
    std::unique_ptr<TestDeployConfigurationFactory> m_deployFactory;
    QStringList m_output;
    QList<bool> m_results;
};

void ProjectExplorerTest::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_directory->path()).mkdir("rpm"));
    m_stepFactory = std::make_unique<TestStepFactory>();
    m_deployFactory = std::make_unique<TestDeployConfigurationFactory>();
    registerKit("kit.a");
    registerKit("kit.b");
    m_output.clear();
    m_results.clear();
    connect(BuildManager::instance(),
            &BuildManager::outputAdded,
            this,
            [this](const QString &text, OutputFormat format) {
                static const QStringList prefixes{"out: ", "err: ", "", "! "};
                m_output.append(prefixes.at(int(format)) + text);
            });
    connect(BuildManager::instance(),
            &BuildManager::buildQueueFinished,
            this,
            [this](bool success) { m_results.append(success); });
}

void ProjectExplorerTest::cleanup()
{
    BuildManager::instance()->disconnect(this);
    while (!ProjectManager::projects().isEmpty())
        ProjectManager::removeProject(ProjectManager::projects().constFirst());
    KitManager::deregisterAllKits();
}

Target *ProjectExplorerTest::openProject()
{
    auto *project = new Project(specPath());
    project->addTargetForKit(KitManager::kits().constFirst());
    ProjectManager::addProject(project);
    return project->activeTarget();
}

void ProjectExplorerTest::run(BuildStepList *list)
{
    QVERIFY(BuildManager::buildList(list));
    QTRY_VERIFY(!BuildManager::isBuilding());
    QCOMPARE(m_results.size(), 1);
}

void ProjectExplorerTest::whatTheUserConfiguredComesBack()
{
    QString error;
    Project project(specPath());
    project.addTargetForKit(KitManager::kit("kit.a"));
    Target *target = project.addTargetForKit(KitManager::kit("kit.b"));
    project.setActiveTarget(target);
    target->addDeployConfiguration(m_deployFactory->create(target));
    target->setActiveDeployConfiguration(target->deployConfigurations().constLast());
    QCOMPARE(target->activeDeployConfiguration()->displayName(), QString("Test Deploy 2"));

    stepListOf(target)->appendStep(STEP_ID);
    stepOf(target)->setEnabled(false);
    stepOf(target)->setDisplayName("Mine");
    const Utils::Store values{{"Bool", true},
                              {"Text", "ä \"quoted\"\n"},
                              {"Number", 7},
                              {"List", QVariantList{"a", "b"}},
                              {"Map", QVariant::fromValue(Utils::Store{{"inner", false}})}};
    stepOf(target, 1)->values = values;
    QVERIFY2(project.saveSettings(&error), qPrintable(error));

    Project restored(specPath());
    QVERIFY2(restored.restoreSettings(&error), qPrintable(error));
    QCOMPARE(restored.targets().size(), 2);
    QCOMPARE(restored.activeTarget()->id(), target->id());
    QCOMPARE(asText(restored.activeTarget()), asText(target));
    QCOMPARE(asText(restored.targets().constFirst()), asText(project.targets().constFirst()));
    QCOMPARE(stepOf(restored.activeTarget(), 1)->values, values);
    QVERIFY(!stepOf(restored.activeTarget())->isEnabled());
    QCOMPARE(stepOf(restored.activeTarget())->displayName(), QString("Mine"));
}

void ProjectExplorerTest::targetsOfUnknownKitsStay()
{
    QString error;
    {
        Project project(specPath());
        project.addTargetForKit(KitManager::kit("kit.a"));
        stepOf(project.addTargetForKit(KitManager::kit("kit.b")))->values = {{"Key", "kept"}};
        QVERIFY(project.saveSettings(&error));
    }
    KitManager::deregisterAllKits();
    registerKit("kit.a");

    Project project(specPath());
    QVERIFY(project.restoreSettings(&error));
    QCOMPARE(project.targets().size(), 1);
    QVERIFY(project.saveSettings(&error));

    registerKit("kit.b");
    Project restored(specPath());
    QVERIFY(restored.restoreSettings(&error));
    const Utils::Store kept{{"Key", "kept"}};
    QCOMPARE(stepOf(restored.target(KitManager::kit("kit.b")))->values, kept);
    QCOMPARE(stepOf(project.addTargetForKit(KitManager::kit("kit.b")))->values, kept);
}

void ProjectExplorerTest::unreadableSettingsAreKeptAside_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut off") << QByteArray("{\"FormatVersion\": 1, ");
    QTest::newRow("of another kind") << QByteArray("[]");
    QTest::newRow("from a later version") << QByteArray("{\"FormatVersion\": 2}");
}

void ProjectExplorerTest::unreadableSettingsAreKeptAside()
{
    QFETCH(QByteArray, contents);

    Project project(specPath());
    const QString path = project.settingsFilePath().toFSPathString();
    for (const QString &backup : {path + ".bak", path + ".bak2"}) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(contents);
        file.close();

        QString error;
        QVERIFY(!project.restoreSettings(&error));
        QVERIFY2(error.contains(backup), qPrintable(error));
        QCOMPARE(read(backup), QString(contents));
        QVERIFY(project.saveSettings(&error));
        QVERIFY(Project(specPath()).restoreSettings(&error));
    }
}

void ProjectExplorerTest::unknownStepsAreLeftOut()
{
    const Target *target = openProject();
    stepListOf(target)->appendStep(STEP_ID);
    const Utils::Store map = stepListOf(target)->toMap();
    QVERIFY(stepListOf(target)->fromMap(map));
    QCOMPARE(stepListOf(target)->count(), 2);
    m_stepFactory.reset();
    QVERIFY(!stepListOf(target)->fromMap(map));
    QVERIFY(stepListOf(target)->isEmpty());
}

void ProjectExplorerTest::stepsRunInOrder_data()
{
    QTest::addColumn<std::function<void(TestStep *)>>("prepareFirst");
    QTest::addColumn<bool>("success");
    QTest::addColumn<QStringList>("expected"); // between the headline and the last line

    const QString second = "Running step \"Test Step\"...\n";
    const auto row = [](const char *name,
                        const std::function<void(TestStep *)> &prepareFirst,
                        bool success,
                        const QStringList &expected) {
        QTest::newRow(name) << prepareFirst << success << expected;
    };
    const auto withHandler = [](OutputFormat format, SetupResult result) {
        return [format, result](TestStep *step) {
            step->setHandler([step, format, result] {
                emit step->addOutput("text", format);
                return result;
            });
        };
    };
    const QString first = "Running step \"First\"...\n";
    const QStringList failure{"! Error while building/deploying project app (kit: kit.a)\n",
                              "! When executing step \"First\"\n"};

    row("success",
        withHandler(OutputFormat::Stdout, SetupResult::Continue),
        true,
        {first, "out: text\n", second});
    row("a disabled step is left out",
        [](TestStep *step) { step->setEnabled(false); },
        true,
        {second});
    row(
        "init refuses",
        [](TestStep *step) { step->onInit = [] { return false; }; },
        false,
        failure);
    row("a failing step ends the run",
        withHandler(OutputFormat::Stderr, SetupResult::StopWithError),
        false,
        QStringList{first, "err: text\n"} + failure);
    row("an error message fails the run",
        withHandler(OutputFormat::ErrorMessage, SetupResult::Continue),
        false,
        {first, "! text\n", second});
    row("a done handler hides the error",
        [](TestStep *step) {
            step->makeRecipe = [] {
                return GroupItems{onGroupSetup([] { return SetupResult::StopWithError; }),
                                  onGroupDone([] { return DoneResult::Success; })};
            };
        },
        false,
        {first, "! Error: step \"First\" stopped with an error.\n", second});
}

void ProjectExplorerTest::stepsRunInOrder()
{
    QFETCH(std::function<void(TestStep *)>, prepareFirst);
    QFETCH(bool, success);
    QFETCH(QStringList, expected);

    const Target *target = openProject();
    stepListOf(target)->appendStep(STEP_ID);
    stepOf(target)->setDisplayName("First");
    prepareFirst(stepOf(target));
    run(stepListOf(target));

    QCOMPARE(m_results, QList<bool>{success});
    QCOMPARE(m_output.takeFirst(), QString("Running steps for project app...\n"));
    QCOMPARE(m_output.takeLast(),
             success ? QString("The steps for project app finished successfully.\n")
                     : QString("! The steps for project app failed.\n"));
    QCOMPARE(m_output, expected);
}

void ProjectExplorerTest::cancelInAHandler()
{
    const Target *target = openProject();
    TestStep *step = stepOf(target);
    step->makeRecipe = [&] {
        return GroupItems{onGroupSetup([&] {
                              spinAndDo([&] {
                                  QVERIFY(!BuildManager::buildList(stepListOf(target)));
                                  BuildManager::cancel();
                                  BuildManager::cancel();
                              });
                              emit step->addOutput("handler ends", OutputFormat::Stdout);
                              return SetupResult::StopWithError;
                          }),
                          onGroupDone([&](DoneWith with) {
                              emit step->addOutput(with == DoneWith::Cancel ? "canceled"
                                                                            : "not canceled",
                                                   OutputFormat::Stdout);
                          })};
    };
    stepListOf(target)->appendStep(STEP_ID);
    run(stepListOf(target));
    QCOMPARE(m_results, QList<bool>{false});
    const QStringList expected{"Canceling: the running step cannot be interrupted, waiting for it "
                               "to end...\n",
                               "out: handler ends\n",
                               "out: canceled\n",
                               "! Canceled build/deployment.\n"};
    QCOMPARE(m_output.mid(2), expected);
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
    run(stepListOf(target));
    QCOMPARE(m_results, QList<bool>{true});
    QVERIFY(target->project()->removeTarget(target));
}

void ProjectExplorerTest::projectIsClosedWhileItRuns_data()
{
    QTest::addColumn<QString>("where");
    for (const char *where : {"start", "init", "handler", "output", "program"})
        QTest::newRow(where) << QString(where);
}

void ProjectExplorerTest::projectIsClosedWhileItRuns()
{
    QFETCH(QString, where);

    const Target *target = openProject();
    QPointer<Project> project(target->project());
    const auto close = [&project] { ProjectManager::removeProject(project); };
    const QPointer<TestStep> step(stepOf(target));
    if (where == "init") {
        step->onInit = [&] {
            spinAndDo(close);
            return true;
        };
    } else if (where == "handler") {
        step->setHandler([&] {
            spinAndDo(close);
            return SetupResult::Continue;
        });
    } else {
        step->setScript("echo closing; sleep 60");
    }
    QObject context;
    if (where == "start")
        connect(BuildManager::instance(), &BuildManager::buildQueueStarted, &context, close);
    if (where == "program")
        QTimer::singleShot(200, &context, close);
    connect(
        BuildManager::instance(), &BuildManager::outputAdded, &context, [&](const QString &text) {
            if (text == "closing\n" && where == "output")
                close();
        });

    stepListOf(target)->appendStep(STEP_ID);
    run(stepListOf(target));
    QVERIFY(project.isNull());
    QVERIFY(step.isNull());
    QCOMPARE(m_results, QList<bool>{false});
    QCOMPARE(m_output.constLast(),
             QString("! The steps were removed while they ran, the run is abandoned.\n"));
}

void ProjectExplorerTest::programsAreShownLineByLine_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QString>("end");

    const QString normalEnd = "The process \"/bin/sh\" exited normally.\n";
    QTest::newRow("both channels")
        << "echo a; sleep 0.2; echo b >&2" << QStringList{"out: a\n", "err: b\n"} << normalEnd;
    QTest::newRow("carriage returns and empty lines")
        << "printf 'a\\r\\n\\r\\nb\\r\\n'" << QStringList{"out: a\n", "out: \n", "out: b\n"}
        << normalEnd;
    QTest::newRow("a line and a character in two chunks")
        << "printf 'x\\303'; sleep 0.2; printf '\\244y'" << QStringList{"out: xäy\n"} << normalEnd;
    QTest::newRow("fails") << "echo a; exit 3" << QStringList{"out: a\n"}
                           << "! The process \"/bin/sh\" exited with code 3.\n";
    QTest::newRow("crashes") << "kill -KILL $$" << QStringList{}
                             << "! The process \"/bin/sh\" crashed.\n";
    QTest::newRow("reads its input") << "cat" << QStringList{} << normalEnd;
}

void ProjectExplorerTest::programsAreShownLineByLine()
{
    QFETCH(QString, script);
    QFETCH(QStringList, expected);
    QFETCH(QString, end);

    const Target *target = openProject();
    stepOf(target)->setScript(script);
    run(stepListOf(target));
    const bool success = !end.startsWith("!");
    QCOMPARE(m_results, QList<bool>{success});
    const QString headline = "Starting: /bin/sh -c " + script + "\n";
    QCOMPARE(m_output.mid(2, expected.size() + 2),
             QStringList(headline) + expected + QStringList(end));
}

void ProjectExplorerTest::nothingIsLeftOfAProgram_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("closesProject");

    const QString withChild = "sh -c 'echo $$ > child; exec sleep 60' & "
                              "while [ ! -s child ]; do sleep 0.05; done; echo $$ > own; wait";
    QTest::newRow("canceled") << withChild << false;
    QTest::newRow("canceled and deaf") << "trap '' TERM; " + withChild << false;
    QTest::newRow("canceled, and its child is deaf")
        << "sh -c \"trap '' TERM; echo \\$\\$ > child; while :; do sleep 1; done\" & "
           "while [ ! -s child ]; do sleep 0.05; done; echo $$ > own; wait"
        << false;
    QTest::newRow("project closed") << "trap '' TERM; " + withChild << true;
}

void ProjectExplorerTest::nothingIsLeftOfAProgram()
{
    QFETCH(QString, script);
    QFETCH(bool, closesProject);

    const Target *target = openProject();
    stepOf(target)->setScript("cd " + m_directory->path() + "; " + script);
    QVERIFY(BuildManager::buildList(stepListOf(target)));
    QTRY_VERIFY(!read(m_directory->filePath("own")).isEmpty());
    const QStringList pids{read(m_directory->filePath("own")).trimmed(),
                           read(m_directory->filePath("child")).trimmed()};
    for (const QString &pid : pids)
        QVERIFY(isProcessAlive(pid));

    if (closesProject)
        ProjectManager::removeProject(target->project());
    else
        BuildManager::cancel();
    QTRY_VERIFY(!BuildManager::isBuilding());
    QCOMPARE(m_results, QList<bool>{false});
    QVERIFY(!m_output.contains("! The process \"/bin/sh\" crashed.\n"));
    for (const QString &pid : pids)
        QTRY_VERIFY(!isProcessAlive(pid));
}

QTEST_GUILESS_MAIN(ProjectExplorerTest)

#include "tst_projectexplorer.moc"
