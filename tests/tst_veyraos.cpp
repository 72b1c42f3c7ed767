#include "files.h"
#include "straywarnings.h"
#include "testrow.h"
#include "workplace.h"

#include <brisk/buildengine.h>
#include <brisk/sdk.h>
#include <host/buildmanager.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/devicesupport/devicekitaspects.h>
#include <projectexplorer/project.h>
#include <projectexplorer/target.h>
#include <veyraos/kilnbuildsteputils.h>
#include <veyraos/kilnconstants.h>
#include <veyraos/kilnkb2rpmbuildstep.h>
#include <veyraos/kilnsdkkitaspect.h>

#include <QFile>

using namespace Kiln::Internal;
using namespace ProjectExplorer;

class VeyraOSTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void kitsTellWhatATargetHas();
    void packagesAreBuiltAnew();

private:
    Project *openProject();
    QStringList errorsOf(const Project *project);

    Workplace m_workplace;
};

Project *VeyraOSTest::openProject()
{
    Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    writeFile((project->projectDirectory() / "rpm/project.spec").toFSPathString(),
              "Name: app\nVersion: 1\nRelease: 1\nSummary: App\nLicense: MIT\nBuildArch: noarch\n"
              "%description\nApp.\n%package extra\nSummary: Extra\n%description extra\nExtra.\n"
              "%files\n%files extra\n");
    return project;
}

QStringList VeyraOSTest::errorsOf(const Project *project)
{
    QStringList errors;
    QObject context;
    connect(BuildManager::instance(),
            &BuildManager::outputAdded,
            &context,
            [&errors](const QString &text, BuildStep::OutputFormat format) {
                if (format == BuildStep::OutputFormat::ErrorMessage)
                    errors << text;
            });
    BuildManager::buildList(deploySteps(project));
    const bool isDone = QTest::qWaitFor([] { return !BuildManager::isBuilding(); }, 60'000);
    return isDone ? errors : QStringList("it builds for ever");
}

void VeyraOSTest::kitsTellWhatATargetHas()
{
    const Brisk::BuildEngine *engine = Brisk::Sdk::buildEngines().value(0);
    QVERIFY(engine);
    QCOMPARE(engine->buildTargetOrigins(),
             (QStringList{RPMSIGN_TARGET, CUSTOMER_TARGET, BARE_TARGET})); // the newest first
    const Kit *kit = m_workplace.kit(RPMSIGN_TARGET);
    QCOMPARE(RunDeviceTypeKitAspect::deviceTypeId(kit),
             Utils::Id(Kiln::Constants::KILN_DEVICE_TYPE));
    QCOMPARE(KilnSdkKitAspectFactory::buildEngine(kit), engine);
    QVERIFY(KilnSdkKitAspectFactory::buildTarget(kit).tools.contains("rpmsign-external"));
}

void VeyraOSTest::packagesAreBuiltAnew()
{
    const Project *project = openProject();
    const QString folder = (project->projectDirectory() / "RPMS").toFSPathString();
    for (const char *old : {"/noarch/old-1-1.noarch.rpm", "/noarch/app-1-1.noarch.rpm.sig"})
        writeFile(folder + old, {});
    writeFile(folder + "/notes.txt", {});

    QCOMPARE(errorsOf(project), QStringList());
    const QStringList expected{folder + "/noarch/app-1-1.noarch.rpm",
                               folder + "/noarch/app-extra-1-1.noarch.rpm"};
    const auto *step = earlierBuildStep<KilnKb2RpmBuildStep>(
        project->activeTarget()->activeDeployConfiguration(), nullptr);
    QCOMPARE(step->packages(), expected);
    QVERIFY(!QFile::exists(folder + "/noarch/app-1-1.noarch.rpm.sig"));
    QVERIFY(QFile::exists(folder + "/notes.txt"));
    writeFile(folder + "/app-1-1.src.rpm", {});
    QCOMPARE(step->deployablePackagesFileNames(), expected);
}

QTEST_GUILESS_MAIN(VeyraOSTest)
#include "tst_veyraos.moc"
