#include "files.h"
#include "straywarnings.h"
#include "testrow.h"
#include "workplace.h"

#include <brisk/buildengine.h>
#include <brisk/sdk.h>
#include <host/buildmanager.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/devicesupport/devicekitaspects.h>
#include <projectexplorer/project.h>
#include <veyraos/kilnconstants.h>
#include <veyraos/kilnkb2rpmbuildstep.h>
#include <veyraos/kilnsdkkitaspect.h>

#include <QFile>
#include <QSignalSpy>

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
    Workplace m_workplace;
};

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
    const Project *project = m_workplace.openProject(RPMSIGN_TARGET);
    writeFile(project->projectFilePath().toFSPathString(),
              "Name: app\nVersion: 1\nRelease: 1\nSummary: App\nLicense: MIT\nBuildArch: noarch\n"
              "%description\nApp.\n%package extra\nSummary: Extra\n%description extra\nExtra.\n"
              "%files\n%files extra\n");
    const QString folder = (project->projectDirectory() / "RPMS").toFSPathString();
    const QString signature = folder + "/noarch/app-1-1.noarch.rpm.sig";
    for (const QString &file : {folder + "/old-1-1.noarch.rpm", signature, folder + "/notes.txt"})
        writeFile(file, {});

    QSignalSpy finished(BuildManager::instance(), &BuildManager::buildQueueFinished);
    QVERIFY(BuildManager::buildList(deploySteps(project)));
    QVERIFY(finished.wait(60'000));
    QVERIFY(finished.first().first().toBool());
    const QStringList expected{folder + "/noarch/app-1-1.noarch.rpm",
                               folder + "/noarch/app-extra-1-1.noarch.rpm"};
    const auto *step = static_cast<KilnKb2RpmBuildStep *>(deploySteps(project)->at(0));
    QCOMPARE(step->packages(), expected);
    QVERIFY(!QFile::exists(signature));
    QVERIFY(QFile::exists(folder + "/notes.txt"));
    writeFile(folder + "/app-1-1.src.rpm", {});
    QCOMPARE(step->deployablePackagesFileNames(), expected);
}

QTEST_GUILESS_MAIN(VeyraOSTest)
#include "tst_veyraos.moc"
