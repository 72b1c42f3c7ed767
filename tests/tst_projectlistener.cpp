#include "customersignstep.h"
#include "projectlistener.h"
#include "rpmsignexternalstep.h"
#include "stepfactory.h"
#include "straywarnings.h"
#include "testrow.h"
#include "workplace.h"

#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/devicesupport/devicekitaspects.h>
#include <projectexplorer/project.h>
#include <projectexplorer/target.h>

#include <QFile>
#include <QSettings>

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
    void servesWhatIsAddedLater();
    void completesConfigurations_data();
    void completesConfigurations();
    void leavesProjectsThatWereOpenBefore();
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
    addColumns<QString, QVariant, QStringList, bool>(
        "targetName", "switchForNewSteps", "steps", "enabled");

    const TemporarySdk &sdk = m_workplace.sdk();
    QVERIFY(QFile::copy(sdk.tool("customer-sign", CUSTOMER_TARGET), sdk.tool("customer-sign")));
    const QStringList rpmsign{RPM_BUILD, RPMSIGN};
    const QStringList customer{RPM_BUILD, CUSTOMER};
    addRow("rpmsign-external beside customer-sign", RPMSIGN_TARGET, QVariant(), rpmsign, true);
    addRow("rpmsign-external, switched off", RPMSIGN_TARGET, QVariant(false), rpmsign, false);
    addRow("customer-sign knows no switch", CUSTOMER_TARGET, QVariant(true), customer, false);
    addRow("no tool", BARE_TARGET, QVariant(), QStringList{RPM_BUILD}, true);
}

void ProjectListenerTest::insertsTheStepThatFitsTheTarget()
{
    QFETCH(const QString, targetName);
    QFETCH(const QVariant, switchForNewSteps);
    if (switchForNewSteps.isValid())
        QSettings().setValue("Sealkit.DefaultSign", switchForNewSteps);
    const BuildStepList *steps = deploySteps(m_workplace.openProject(targetName));
    QTEST(stepIds(steps), "steps");
    QTEST(steps->steps().last()->stepEnabled(), "enabled");
}

void ProjectListenerTest::servesWhatIsAddedLater()
{
    Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    QCOMPARE(stepIds(addConfiguration(project->activeTarget())->stepList()),
             (QStringList{RPM_BUILD, RPMSIGN}));
    Target *later = project->addTargetForKit(m_workplace.kit(CUSTOMER_TARGET));
    for (const DeployConfiguration *configuration :
         {later->activeDeployConfiguration(), addConfiguration(later)})
        QCOMPARE(stepIds(configuration->stepList()), (QStringList{RPM_BUILD, CUSTOMER}));
}

void ProjectListenerTest::completesConfigurations_data()
{
    addColumns<QStringList, QStringList>("before", "after");

    addRow("no RPM build step", QStringList(), QStringList());
    const QStringList signedBefore{CUSTOMER, RPM_BUILD};
    addRow("sign step of the other kind, before the RPM build step", signedBefore, signedBefore);
    addRow("two RPM build steps",
           QStringList{RPM_BUILD, RPM_BUILD},
           QStringList{RPM_BUILD, RPMSIGN, RPM_BUILD});
}

// Another configuration makes the listener look at all of them.
void ProjectListenerTest::completesConfigurations()
{
    QFETCH(const QStringList, before);
    const Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    BuildStepList *steps = deploySteps(project);
    steps->clear();
    for (const QString &id : before)
        steps->appendStep(Utils::Id::fromString(id));
    addConfiguration(project->activeTarget());
    QTEST(stepIds(steps), "after");
}

void ProjectListenerTest::leavesProjectsThatWereOpenBefore()
{
    m_listener.reset();
    const Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    m_listener = std::make_unique<ProjectListener>();
    addConfiguration(project->activeTarget());
    QCOMPARE(stepIds(deploySteps(project)), QStringList{RPM_BUILD});
}

void ProjectListenerTest::offersStepsWhereTheyFit()
{
    BuildStepList *deployList = deploySteps(m_workplace.openProject(BARE_TARGET));
    BuildStepList buildList(deployList->projectConfiguration(), Constants::BUILDSTEPS_BUILD);
    Kit *kit = m_workplace.kit(BARE_TARGET);
    for (BuildStepFactory *factory : BuildStepFactory::allBuildStepFactories()) {
        if (!factory->stepId().toString().startsWith("Sealkit."))
            continue;
        QVERIFY(factory->canHandle(deployList));
        QVERIFY(!factory->canHandle(&buildList));
        RunDeviceTypeKitAspect::setDeviceTypeId(kit, "Desktop");
        QVERIFY(!factory->canHandle(deployList));
        RunDeviceTypeKitAspect::setDeviceTypeId(kit, Kiln::Constants::KILN_DEVICE_TYPE);

        deployList->appendStep(factory->stepId()); // by hand, so on, whatever the target's tools
        const ProjectConfiguration *step = deployList->steps().last();
        QCOMPARE(step->displayName(), factory->displayName());
        QVERIFY(deployList->steps().last()->stepEnabled());
    }
    QCOMPARE(stepIds(deployList), (QStringList{RPM_BUILD, CUSTOMER, RPMSIGN}));
}

QTEST_MAIN(ProjectListenerTest)
#include "tst_projectlistener.moc"
