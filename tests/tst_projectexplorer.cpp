#include "straywarnings.h"
#include "workplace.h"

#include <host/buildmanager.h>
#include <host/issues.h>
#include <host/userproject.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/projectexplorerconstants.h>
#include <projectexplorer/target.h>
#include <projectexplorer/task.h>

#include <QSignalSpy>

using namespace ProjectExplorer;
using namespace Tasking;

constexpr char STEP_ID[] = "Test.Step";

class TestStep : public BuildStep
{
public:
    TestStep(BuildStepList *list, Utils::Id id)
        : BuildStep(list, id)
    {
    }
    bool init() override { return isReady; }

    bool isReady = true;
    OutputFormat format = OutputFormat::Stdout;
    SetupResult result = SetupResult::Continue;

private:
    GroupItem runRecipe() override
    {
        return Group{onGroupSetup([this] {
            emit addOutput("text", format);
            emit addTask(DeploymentTask(Task::Error, "issue\nwhy"));
            return result;
        })};
    }
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

class ProjectExplorerTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void stepsComeBack();
    void stepsRunInOrder();

private:
    Workplace m_workplace;
    const TestStepFactory m_stepFactory;
};

void ProjectExplorerTest::stepsComeBack()
{
    auto *project = static_cast<Host::UserProject *>(m_workplace.openProject(RPMSIGN_TARGET));
    deploySteps(project)->at(0)->setStepEnabled(false);
    QString error;
    QVERIFY2(project->saveSettings(&error), qPrintable(error));
    Host::UserProject restored(project->projectFilePath());
    QVERIFY2(restored.restoreSettings(&error), qPrintable(error));
    QVERIFY(restored.activeTarget()->toMap() == project->activeTarget()->toMap());
    QVERIFY(!deploySteps(&restored)->at(0)->stepEnabled());
}

/// What a run writes and reports; "success" behind it when it succeeds.
static QString outputOf(BuildStepList *steps)
{
    QObject context;
    QString output;
    const auto *manager = BuildManager::instance();
    QObject::connect(manager, &BuildManager::outputAdded, &context, [&](auto &text, auto format) {
        output += QStringList{"out: ", "err: ", "", "! "}.at(int(format)) + text;
    });
    QObject::connect(Host::Issues::instance(), &Host::Issues::added, &context, [&](auto &issue) {
        output += issue.summary + " (" + issue.details.join(", ") + ")\n";
    });
    QSignalSpy finished(manager, &BuildManager::buildQueueFinished);
    BuildManager::buildList(steps);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // of the run
    return finished.value(0).value(0).toBool() ? output + "success" : output;
}

void ProjectExplorerTest::stepsRunInOrder()
{
    BuildStepList *steps = deploySteps(m_workplace.openProject(RPMSIGN_TARGET));
    steps->clear();
    steps->appendStep(STEP_ID);
    steps->appendStep(STEP_ID);
    auto *first = static_cast<TestStep *>(steps->at(0));
    first->setDisplayName("First");
    const QString start = "Running steps for project project...\n";
    const QString second = "Running step \"Test Step\"...\nout: text\nissue (why)\n"
                           "The steps for project project are over.\nsuccess";
    const QString failure =
        "! Error while building/deploying project project (kit: " + RPMSIGN_TARGET
        + ")\n! When executing step \"First\"\n! The steps for project project failed.\n";

    first->setEnabled(false); // the aspect, which counts for nothing
    first->format = BuildStep::OutputFormat::ErrorMessage;
    const QString ofFirst = "Running step \"First\"...\n! text\nissue (why)\n";
    QCOMPARE(outputOf(steps), start + ofFirst + second);
    first->result = SetupResult::StopWithError;
    QCOMPARE(outputOf(steps), start + ofFirst + failure);
    first->isReady = false;
    QCOMPARE(outputOf(steps), start + failure);
    first->setStepEnabled(false);
    QCOMPARE(outputOf(steps), start + second);
}

QTEST_GUILESS_MAIN(ProjectExplorerTest)
#include "tst_projectexplorer.moc"
