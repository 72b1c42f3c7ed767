#include "constants.h"
#include "customersignstep.h"
#include "projectlistener.h"
#include "rpmsignexternalstep.h"
#include "stepfactory.h"
#include "straywarnings.h"
#include "workplace.h"

#include <brisk/buildengine.h>
#include <brisk/sdk.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/devicesupport/devicekitaspects.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>

#include <QFile>
#include <QSettings>
#include <QTest>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;

const QString RPM_BUILD = QStringLiteral("Kiln.Kb2RpmBuildStep");
const QString RPMSIGN = QStringLiteral("Sealkit.RpmSignExternalStep");
const QString CUSTOMER = QStringLiteral("Sealkit.RpmSignStep");

/// Another deploy configuration for the target; with it, the target has one more.
static DeployConfiguration *addConfiguration(Target *target)
{
    DeployConfiguration *configuration =
        DeployConfigurationFactory::find(target).first()->create(target);
    target->addDeployConfiguration(configuration);
    return configuration;
}

class ProjectListenerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void insertsTheStepThatFitsTheTarget_data();
    void insertsTheStepThatFitsTheTarget();
    void obeysTheSwitchForNewSteps_data();
    void obeysTheSwitchForNewSteps();
    void servesWhatIsAddedLater();
    void leavesConfigurationsAlone();
    void putsTheStepBehindTheFirstRpmBuildStep();
    void leavesProjectsAloneThatWereOpenBefore();
    void offersStepsWhereTheyFit();

private:
    Workplace m_workplace;
    DeployStepFactory<CustomerSignStep> m_customerFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignFactory;
    std::unique_ptr<ProjectListener> m_listener;
};

void ProjectListenerTest::init()
{
    failOnStrayWarnings();
    m_listener = std::make_unique<ProjectListener>();
}

void ProjectListenerTest::cleanup()
{
    m_workplace.closeProjects();
    QSettings().clear();
}

void ProjectListenerTest::insertsTheStepThatFitsTheTarget_data()
{
    QTest::addColumn<QString>("targetName");
    QTest::addColumn<bool>("addCustomerSign");
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("rpmsign-external")
        << RPMSIGN_TARGET << false << QStringList{RPM_BUILD, RPMSIGN} << true;
    QTest::newRow("both tools") << RPMSIGN_TARGET << true << QStringList{RPM_BUILD, RPMSIGN}
                                << true;
    QTest::newRow("customer-sign")
        << CUSTOMER_TARGET << false << QStringList{RPM_BUILD, CUSTOMER} << false;
    QTest::newRow("no tool") << BARE_TARGET << false << QStringList{RPM_BUILD} << true;
}

void ProjectListenerTest::insertsTheStepThatFitsTheTarget()
{
    QFETCH(const QString, targetName);
    QFETCH(const bool, addCustomerSign);
    const QString tools = m_workplace.sdk().path() + "/engine/targets/%1/bin/customer-sign";
    if (addCustomerSign)
        QVERIFY(QFile::copy(tools.arg(CUSTOMER_TARGET), tools.arg(targetName)));

    const BuildStepList *steps = deploySteps(m_workplace.openProject(targetName));
    QTEST(stepIds(steps), "steps");
    QTEST(steps->steps().last()->stepEnabled(), "enabled");
    if (addCustomerSign)
        QFile::remove(tools.arg(targetName));
}

void ProjectListenerTest::obeysTheSwitchForNewSteps_data()
{
    QTest::addColumn<QString>("targetName");
    QTest::addColumn<bool>("stored");
    QTest::addColumn<bool>("enabled");

    QTest::newRow("rpmsign-external, on") << RPMSIGN_TARGET << true << true;
    QTest::newRow("rpmsign-external, off") << RPMSIGN_TARGET << false << false;
    QTest::newRow("customer-sign knows no switch") << CUSTOMER_TARGET << true << false;
}

void ProjectListenerTest::obeysTheSwitchForNewSteps()
{
    QFETCH(const QString, targetName);
    QFETCH(const bool, stored);
    QSettings().setValue("Sealkit.DefaultSign", stored);
    QTEST(deploySteps(m_workplace.openProject(targetName))->at(1)->stepEnabled(), "enabled");
}

void ProjectListenerTest::servesWhatIsAddedLater()
{
    Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    const QStringList expected{RPM_BUILD, RPMSIGN};

    QCOMPARE(stepIds(addConfiguration(project->activeTarget())->stepList()), expected);

    Target *later = project->addTargetForKit(m_workplace.kit(CUSTOMER_TARGET));
    const QStringList expectedLater{RPM_BUILD, CUSTOMER};
    QCOMPARE(stepIds(later->activeDeployConfiguration()->stepList()), expectedLater);
    QCOMPARE(stepIds(addConfiguration(later)->stepList()), expectedLater);

    const QList<DeployConfiguration *> all = project->activeTarget()->deployConfigurations();
    for (DeployConfiguration *configuration : all)
        QCOMPARE(stepIds(configuration->stepList()), expected);
}

void ProjectListenerTest::leavesConfigurationsAlone()
{
    Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    BuildStepList *steps = deploySteps(project);

    // A step of the other kind counts, wherever it stands and though it is switched off.
    QVERIFY(steps->removeStep(1));
    steps->insertStep(0, Utils::Id("Sealkit.RpmSignStep"));
    steps->at(0)->setStepEnabled(false);
    addConfiguration(project->activeTarget());
    QCOMPARE(stepIds(steps), (QStringList{CUSTOMER, RPM_BUILD}));

    // Nothing to sign without an RPM build step.
    steps->clear();
    addConfiguration(project->activeTarget());
    QCOMPARE(stepIds(steps), QStringList());
}

void ProjectListenerTest::putsTheStepBehindTheFirstRpmBuildStep()
{
    Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    BuildStepList *steps = deploySteps(project);
    QVERIFY(steps->removeStep(1));
    steps->appendStep(Utils::Id("Kiln.Kb2RpmBuildStep"));
    addConfiguration(project->activeTarget());
    QCOMPARE(stepIds(steps), (QStringList{RPM_BUILD, RPMSIGN, RPM_BUILD}));
}

void ProjectListenerTest::leavesProjectsAloneThatWereOpenBefore()
{
    m_listener.reset();
    Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    m_listener = std::make_unique<ProjectListener>();
    addConfiguration(project->activeTarget());
    QCOMPARE(stepIds(deploySteps(project)), QStringList{RPM_BUILD});
}

void ProjectListenerTest::offersStepsWhereTheyFit()
{
    Project *project = m_workplace.openProject(BARE_TARGET);
    BuildStepList *deployList = deploySteps(project);
    BuildStepList buildList(deployList->projectConfiguration(),
                            ProjectExplorer::Constants::BUILDSTEPS_BUILD);
    for (BuildStepFactory *factory : {static_cast<BuildStepFactory *>(&m_customerFactory),
                                      static_cast<BuildStepFactory *>(&m_rpmsignFactory)}) {
        QVERIFY(factory->canHandle(deployList));
        QVERIFY(!factory->canHandle(&buildList));

        // A step added by hand is on, whatever the tools of the target.
        deployList->appendStep(factory->stepId());
        const BuildStep *step = deployList->steps().last();
        QCOMPARE(step->id(), factory->stepId());
        QVERIFY(step->stepEnabled());
        const ProjectConfiguration *configuration = step;
        QCOMPARE(configuration->displayName(), factory->displayName());
    }

    RunDeviceTypeKitAspect::setDeviceTypeId(m_workplace.kit(BARE_TARGET), "Desktop");
    QVERIFY(!m_rpmsignFactory.canHandle(deployList));
    QVERIFY(!m_customerFactory.canHandle(deployList));
    RunDeviceTypeKitAspect::setDeviceTypeId(m_workplace.kit(BARE_TARGET),
                                            Kiln::Constants::KILN_DEVICE_TYPE);
}

QTEST_MAIN(ProjectListenerTest)
#include "tst_projectlistener.moc"
