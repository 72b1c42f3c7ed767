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

/// The steps of another deploy configuration, which the target then has, too.
static QStringList addConfiguration(Target *target)
{
    auto *configuration = DeployConfigurationFactory::find(target).first()->create(target);
    target->addDeployConfiguration(configuration);
    return stepIds(configuration->stepList());
}

class ProjectListenerTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnStrayWarnings();
        QSettings().clear();
    }
    void cleanup() { m_workplace.closeProjects(); }

    void insertsTheStepThatFitsTheTarget_data();
    void insertsTheStepThatFitsTheTarget();
    void servesWhatIsAddedLater();
    void completesConfigurations_data();
    void completesConfigurations();
    void offersStepsWhereTheyFit();

private:
    Workplace m_workplace;
    DeployStepFactory<CustomerSignStep> m_customerFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignFactory;
    const ProjectListener m_listener;
};

void ProjectListenerTest::insertsTheStepThatFitsTheTarget_data()
{
    addColumns<QString, QVariant, QStringList, bool>("targetName", "stored", "steps", "enabled");

    const TemporarySdk &sdk = m_workplace.sdk();
    QVERIFY(QFile::copy(sdk.tool("customer-sign", CUSTOMER_TARGET), sdk.tool("customer-sign")));
    const QStringList rpmsign{RPM_BUILD, RPMSIGN};
    const QStringList customer{RPM_BUILD, CUSTOMER};
    addRow("rpmsign-external beside customer-sign", RPMSIGN_TARGET, QVariant(), rpmsign, true);
    addRow("rpmsign-external, switched off", RPMSIGN_TARGET, QVariant(false), rpmsign, false);
    addRow("customer-sign knows no switch", CUSTOMER_TARGET, QVariant(true), customer, false);
}

void ProjectListenerTest::insertsTheStepThatFitsTheTarget()
{
    QFETCH(const QString, targetName);
    QFETCH(const QVariant, stored);
    if (stored.isValid())
        QSettings().setValue("Sealkit.DefaultSign", stored);
    const BuildStepList *steps = deploySteps(m_workplace.openProject(targetName));
    QTEST(stepIds(steps), "steps");
    QTEST(steps->steps().last()->stepEnabled(), "enabled");
}

void ProjectListenerTest::servesWhatIsAddedLater()
{
    Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    QCOMPARE(addConfiguration(project->activeTarget()), (QStringList{RPM_BUILD, RPMSIGN}));
    Target *later = project->addTargetForKit(m_workplace.kit(CUSTOMER_TARGET));
    const QStringList customer{RPM_BUILD, CUSTOMER};
    QCOMPARE(stepIds(later->activeDeployConfiguration()->stepList()), customer);
    QCOMPARE(addConfiguration(later), customer);
}

void ProjectListenerTest::completesConfigurations_data()
{
    addColumns<QStringList, QStringList>("before", "after");

    addRow("no RPM build step", QStringList(), QStringList());
    const QStringList signedBefore{CUSTOMER, RPM_BUILD};
    addRow("sign step of the other kind", signedBefore, signedBefore);
    const QStringList twice{RPM_BUILD, RPM_BUILD};
    addRow("two RPM build steps", twice, QStringList{RPM_BUILD, RPMSIGN, RPM_BUILD});
}

void ProjectListenerTest::completesConfigurations()
{
    QFETCH(const QStringList, before);
    BuildStepList *steps = deploySteps(m_workplace.openProject(RPMSIGN_TARGET));
    steps->clear();
    for (const QString &id : before)
        steps->appendStep(Utils::Id::fromString(id));
    addConfiguration(steps->target()); // makes the listener look at all configurations
    QTEST(stepIds(steps), "after");
}

void ProjectListenerTest::offersStepsWhereTheyFit()
{
    BuildStepList *deployList = deploySteps(m_workplace.openProject(BARE_TARGET));
    BuildStepList buildList(deployList->projectConfiguration(), Constants::BUILDSTEPS_BUILD);
    Kit *kit = m_workplace.kit(BARE_TARGET);
    const QList<BuildStepFactory *> factories{&m_customerFactory, &m_rpmsignFactory};
    for (BuildStepFactory *factory : factories) {
        QVERIFY(factory->canHandle(deployList));
        QVERIFY(!factory->canHandle(&buildList));
        RunDeviceTypeKitAspect::setDeviceTypeId(kit, "Desktop");
        QVERIFY(!factory->canHandle(deployList));
        RunDeviceTypeKitAspect::setDeviceTypeId(kit, Kiln::Constants::KILN_DEVICE_TYPE);

        deployList->appendStep(factory->stepId()); // by hand, so on, whatever the target's tools
        QVERIFY(deployList->steps().last()->stepEnabled());
    }
    QCOMPARE(stepIds(deployList), (QStringList{RPM_BUILD, CUSTOMER, RPMSIGN}));
}

QTEST_MAIN(ProjectListenerTest)
#include "tst_projectlistener.moc"
