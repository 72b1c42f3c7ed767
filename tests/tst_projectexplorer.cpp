#include "straywarnings.h"
#include "testrow.h"
#include "workplace.h"

#include <host/buildmanager.h>
#include <host/issues.h>
#include <host/userproject.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/projectexplorerconstants.h>
#include <projectexplorer/target.h>
#include <projectexplorer/task.h>

using namespace ProjectExplorer;
using namespace Tasking;

using OutputFormat = BuildStep::OutputFormat;

namespace {

constexpr char STEP_ID[] = "Test.Step";

class TestStep : public BuildStep
{
public:
    TestStep(BuildStepList *list, Utils::Id id)
        : BuildStep(list, id)
    {
    }

    bool init() override { return isReady; }
    void setHandler(const std::function<SetupResult()> &handler)
    {
        recipe = {onGroupSetup(handler)};
    }

    bool isReady = true;
    GroupItems recipe;

private:
    GroupItem runRecipe() override { return Group(recipe); }
};

class TestStepFactory : public BuildStepFactory
{
public:
    TestStepFactory()
    {
        registerStep<TestStep>(STEP_ID);
        setDisplayName("Test Step");
        setSupportedStepList(Constants::BUILDSTEPS_DEPLOY);
    }
};

} // namespace

using Prepare = std::function<void(TestStep *)>;

class ProjectExplorerTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void stepsComeBack();
    void stepsRunInOrder_data();
    void stepsRunInOrder();

private:
    /// A new project's deploy steps, two of the test's.
    BuildStepList *openProject()
    {
        m_project = static_cast<Host::UserProject *>(m_workplace.openProject(RPMSIGN_TARGET));
        BuildStepList *steps = deploySteps(m_project);
        steps->clear();
        for (int i = 0; i < 2; ++i)
            steps->appendStep(STEP_ID);
        steps->at(0)->setDisplayName("First");
        return steps;
    }

    Workplace m_workplace;
    const TestStepFactory m_stepFactory;
    Host::UserProject *m_project = nullptr;
};

void ProjectExplorerTest::stepsComeBack()
{
    openProject()->at(0)->setStepEnabled(false);
    QString error;
    QVERIFY2(m_project->saveSettings(&error), qPrintable(error));
    Host::UserProject restored(m_project->projectFilePath());
    QVERIFY2(restored.restoreSettings(&error), qPrintable(error));
    QCOMPARE(Utils::mapFromStore(restored.activeTarget()->toMap()),
             Utils::mapFromStore(m_project->activeTarget()->toMap()));
    QVERIFY(!deploySteps(&restored)->at(0)->stepEnabled());
}

void ProjectExplorerTest::stepsRunInOrder_data()
{
    // expected: between the headline and the last line
    addColumns<Prepare, bool, QString>("prepareFirst", "success", "expected");

    const auto printing = [](OutputFormat format, SetupResult result) -> Prepare {
        return [=](TestStep *step) {
            step->setHandler([=] {
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
    const Prepare refusing = [](TestStep *step) { step->isReady = false; };
    const Prepare hiding = [](TestStep *step) {
        step->setHandler([] { return SetupResult::StopWithError; });
        step->recipe << onGroupDone([] { return DoneResult::Success; });
    };
    const Prepare succeeding = printing(OutputFormat::Stdout, SetupResult::Continue);
    const Prepare failing = printing(OutputFormat::Stderr, SetupResult::StopWithError);
    const Prepare complaining = printing(OutputFormat::ErrorMessage, SetupResult::Continue);
    const QString first = "Running step \"First\"...\n";
    const QString second = "Running step \"Test Step\"...\n";
    const QString failure =
        "! Error while building/deploying project project (kit: " + RPMSIGN_TARGET
        + ")\n"
          "! When executing step \"First\"\n";

    addRow("success", succeeding, true, first + "out: text\n" + second);
    addRow("a disabled step is left out", disabled, true, second);
    addRow("a disabled aspect is not", greyedOut, true, first + second);
    addRow("an issue", reporting, true, first + "issue: text (more)\n" + second);
    addRow("init refuses", refusing, false, failure);
    addRow("a failing step ends the run", failing, false, first + "err: text\n" + failure);
    addRow("an error message", complaining, true, first + "! text\n" + second);
    addRow("a done handler hides the error", hiding, true, first + second);
}

void ProjectExplorerTest::stepsRunInOrder()
{
    QFETCH(Prepare, prepareFirst);
    QFETCH(bool, success);
    QFETCH(QString, expected);

    BuildStepList *steps = openProject();
    prepareFirst(static_cast<TestStep *>(steps->at(0)));

    QObject context;
    QString output;
    std::optional<bool> result;
    const auto *manager = BuildManager::instance();
    connect(manager,
            &BuildManager::outputAdded,
            &context,
            [&](const QString &text, OutputFormat format) {
                output += QStringList{"out: ", "err: ", "", "! "}.at(int(format)) + text;
            });
    connect(Host::Issues::instance(), &Host::Issues::added, &context, [&](const Task &issue) {
        output += "issue: " + issue.summary + " (" + issue.details.join(", ") + ")\n";
    });
    connect(manager, &BuildManager::buildQueueFinished, &context, [&](bool ok) { result = ok; });
    QVERIFY(BuildManager::buildList(steps));
    QTRY_VERIFY(!BuildManager::isBuilding());
    QCOMPARE(result, success);
    QCOMPARE(output,
             "Running steps for project project...\n" + expected
                 + (success ? "The steps for project project finished successfully.\n"
                            : "! The steps for project project failed.\n"));
}

QTEST_GUILESS_MAIN(ProjectExplorerTest)
#include "tst_projectexplorer.moc"
