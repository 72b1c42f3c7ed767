#include "settingsscope.h"
#include "straywarnings.h"

#include <brisk/buildengine.h>
#include <brisk/installation.h>
#include <brisk/sdk.h>
#include <extensionsystem/pluginmanager.h>
#include <host/buildmanager.h>
#include <host/userproject.h>
#include <projectexplorer/devicesupport/devicekitaspects.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <utils/qtcsettings.h>
#include <veyraos/kilnbuildsteputils.h>
#include <veyraos/kilnconstants.h>
#include <veyraos/kilndeployconfiguration.h>
#include <veyraos/kilnkb2rpmbuildstep.h>
#include <veyraos/kilnkits.h>
#include <veyraos/kilnsdkkitaspect.h>
#include <veyraos/kilnsettings.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Kiln::Internal;
using namespace ProjectExplorer;

using OutputFormat = BuildStep::OutputFormat;

static void writeFile(const QString &path, const QByteArray &contents = {})
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(contents);
}

class VeyraOSTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void sdkIsReadFromItsFolder();
    void movedWorkspaceIsSaved();
    void folderWithoutSdkIsRefused();
    void kitsFollowTheSdk();
    void briskIsThatOfTheSdkUnlessSet();
    void packagesAreBuiltAnew();
    void buildIsRefused_data();
    void buildIsRefused();

private:
    QString path(const QString &name) const { return m_directory->filePath(name); }
    Target *openProject(const QString &folder);
    bool run(BuildStepList *list);

    const SettingsScope m_settings;
    std::unique_ptr<QTemporaryDir> m_directory;
    const KilnKb2RpmBuildStepFactory m_stepFactory;
    const KilnRpmDeployConfigurationFactory m_deployFactory;
    QString m_output;
    QStringList m_errors;
};

void VeyraOSTest::init()
{
    failOnStrayWarnings();
    m_directory = std::make_unique<QTemporaryDir>();
    writeFile(path("sdk/sdk.ini"),
              "[General]\nOsVariant=Veyra OS Pro\n"
              "[BuildEngine]\nName=Engine\nSharedHome=home\nSharedSource=../work-space\n");
    for (const QString name : {"V-5.9-arm", "V-5.10-arm", "V-5.10.2-arm"})
        writeFile(path("sdk/engine/targets/" + name + "/bin/notes.txt"));
    const QString tool = path("sdk/engine/targets/V-5.9-arm/bin/tool");
    writeFile(tool, "#!/bin/sh\n");
    QFile::setPermissions(tool, QFile::ReadOwner | QFile::ExeOwner);

    QString error;
    QVERIFY2(Brisk::openInstallation(Utils::FilePath::fromString(path("sdk")), &error),
             qPrintable(error));
    registerKits();
    m_output.clear();
    m_errors.clear();
    connect(BuildManager::instance(),
            &BuildManager::outputAdded,
            this,
            [this](const QString &text, OutputFormat format) {
                m_output.append(text);
                if (format == OutputFormat::ErrorMessage)
                    m_errors.append(text);
            });
}

void VeyraOSTest::cleanup()
{
    BuildManager::instance()->disconnect(this);
    while (!ProjectManager::projects().isEmpty())
        ProjectManager::removeProject(ProjectManager::projects().constFirst());
    KitManager::deregisterKits(KitManager::kits());
    Brisk::closeInstallation();
}

Target *VeyraOSTest::openProject(const QString &folder)
{
    const QString spec = path(folder + "/rpm/app.spec");
    writeFile(spec,
              "Name: app\nVersion: 1\nRelease: 1\nSummary: App\nLicense: MIT\nBuildArch: noarch\n"
              "%description\nApp.\n%package extra\nSummary: Extra\n%description extra\nExtra.\n"
              "%install\nmkdir -p \"%{buildroot}/opt\"\ncp data.txt \"%{buildroot}/opt/\"\n"
              "%files\n/opt/data.txt\n%files extra\n");
    writeFile(path(folder + "/data.txt"), "data");
    auto *project = new Host::UserProject(Utils::FilePath::fromString(spec));
    project->addTargetForKit(KitManager::kits().constFirst());
    ProjectManager::addProject(project);
    return project->activeTarget();
}

bool VeyraOSTest::run(BuildStepList *list)
{
    QSignalSpy finished(BuildManager::instance(), &BuildManager::buildQueueFinished);
    if (!BuildManager::buildList(list))
        return false;
    if (finished.isEmpty() && !finished.wait(60'000))
        return false;
    return finished.constFirst().constFirst().toBool();
}

void VeyraOSTest::sdkIsReadFromItsFolder()
{
    QCOMPARE(Brisk::Sdk::installationPath(), path("sdk"));
    QCOMPARE(Brisk::Sdk::osVariant(), QString("Veyra OS Pro"));
    QCOMPARE(Brisk::Sdk::buildEngines().size(), 1);
    const Brisk::BuildEngine *engine = Brisk::Sdk::buildEngines().constFirst();
    QCOMPARE(engine->sharedHomePath().toFSPathString(), path("sdk/home"));
    QCOMPARE(engine->sharedSrcPath().toFSPathString(), path("work-space"));
    const QStringList newestFirst{"V-5.10.2-arm", "V-5.10-arm", "V-5.9-arm"};
    QCOMPARE(engine->buildTargetOrigins(), newestFirst);
    const Brisk::BuildTargetData expected{"V-5.9-arm", {"tool"}};
    QCOMPARE(engine->buildTarget("V-5.9-arm"), expected);
    QVERIFY(!engine->buildTarget("../targets/V-5.9-arm").isValid());
}

void VeyraOSTest::movedWorkspaceIsSaved()
{
    Brisk::BuildEngine *engine = Brisk::Sdk::buildEngines().constFirst();
    QSignalSpy changed(engine, &Brisk::BuildEngine::sharedSrcPathChanged);
    const auto moved = Utils::FilePath::fromString(path("a, b"));
    engine->setSharedSrcPath(moved);
    engine->setSharedSrcPath(moved);
    QCOMPARE(changed.size(), 1);

    QString error;
    QVERIFY(Brisk::saveSharedSrcPath(engine, &error));
    QVERIFY(Brisk::openInstallation(Utils::FilePath::fromString(path("sdk")), &error));
    QCOMPARE(Brisk::Sdk::buildEngines().constFirst()->sharedSrcPath(), moved);
    QCOMPARE(Brisk::Sdk::osVariant(), QString("Veyra OS Pro"));
}

void VeyraOSTest::folderWithoutSdkIsRefused()
{
    QString error;
    QVERIFY(!Brisk::openInstallation(Utils::FilePath::fromString(path("none")), &error));
    QVERIFY2(error.contains(path("none")), qPrintable(error));
    QCOMPARE(Brisk::Sdk::installationPath(), path("sdk"));

    writeFile(path("bare/sdk.ini"));
    QVERIFY(Brisk::openInstallation(Utils::FilePath::fromString(path("bare")), &error));
    QCOMPARE(Brisk::Sdk::osVariant(), QString("Veyra OS"));
    QVERIFY(Brisk::Sdk::buildEngines().isEmpty());
}

void VeyraOSTest::kitsFollowTheSdk()
{
    registerKits();
    QCOMPARE(KitManager::kits().size(), 3);
    const Kit *kit = KitManager::kit("Kiln.Kit.V-5.9-arm");
    QVERIFY(kit);
    QCOMPARE(kit->displayName(), QString("V-5.9-arm"));
    QCOMPARE(RunDeviceTypeKitAspect::deviceTypeId(kit),
             Utils::Id(Kiln::Constants::KILN_DEVICE_TYPE));
    QCOMPARE(KilnSdkKitAspectFactory::buildEngine(kit), Brisk::Sdk::buildEngines().constFirst());
    QCOMPARE(KilnSdkKitAspectFactory::buildTarget(kit).tools, QStringList{"tool"});

    Brisk::closeInstallation();
    QVERIFY(!KilnSdkKitAspectFactory::buildEngine(kit));
    QVERIFY(!KilnSdkKitAspectFactory::buildTarget(kit).isValid());
}

void VeyraOSTest::briskIsThatOfTheSdkUnlessSet()
{
    QCOMPARE(KilnSettings::briskPath(), path("sdk/bin/brisk"));
    Utils::QtcSettings *settings = ExtensionSystem::PluginManager::settings();
    settings->setValue("Kiln.BriskPath", "/opt/brisk");
    QCOMPARE(KilnSettings::briskPath(), QString("/opt/brisk"));
    settings->remove("Kiln.BriskPath");
}

void VeyraOSTest::packagesAreBuiltAnew()
{
    const Target *target = openProject("work-space/100%_app");
    BuildStepList *list = target->activeDeployConfiguration()->stepList();
    const auto *step =
        earlierBuildStep<KilnKb2RpmBuildStep>(target->activeDeployConfiguration(), nullptr);
    QVERIFY(step);
    const QString folder = path("work-space/100%_app/RPMS");
    writeFile(folder + "/noarch/old-1-1.noarch.rpm");
    writeFile(folder + "/noarch/app-1-1.noarch.rpm.sig");
    writeFile(folder + "/notes.txt");

    QVERIFY2(run(list), qPrintable(m_output.right(900)));
    const QStringList expected{folder + "/noarch/app-1-1.noarch.rpm",
                               folder + "/noarch/app-extra-1-1.noarch.rpm"};
    QCOMPARE(step->packages(), expected);
    QVERIFY(!QFile::exists(folder + "/noarch/app-1-1.noarch.rpm.sig"));
    QVERIFY(QFile::exists(folder + "/notes.txt"));

    writeFile(folder + "/app-1-1.src.rpm");
    QCOMPARE(step->packages().size(), 3);
    QCOMPARE(step->deployablePackagesFileNames(), expected);
}

void VeyraOSTest::buildIsRefused_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("trouble");
    QTest::addColumn<QString>("message");

    QTest::newRow("no build engine")
        << "work-space/app"
        << "engine"
        << "Error: the kit \"V-5.10.2-arm\" has no build engine to build packages in.\n";
    QTest::newRow("outside of the workspace")
        << "work-space too/app" << QString()
        << "Error: the project's folder \"%1/work-space too/app\" is not inside the workspace "
           "\"%1/work-space\" of the build engine.\n";
    QTest::newRow("no tool") << "work-space/app"
                             << "tool"
                             << "Error: \"rpmbuild\" is needed to build packages and was not "
                                "found.\n";
}

void VeyraOSTest::buildIsRefused()
{
    QFETCH(QString, folder);
    QFETCH(QString, trouble);
    QFETCH(QString, message);

    const Target *target = openProject(folder);
    QVERIFY(QDir().mkpath(path("work-space")));
    if (trouble == "engine")
        Brisk::closeInstallation();
    const QByteArray searchPath = qgetenv("PATH");
    if (trouble == "tool")
        qputenv("PATH", path("").toUtf8());
    const bool success = run(target->activeDeployConfiguration()->stepList());
    qputenv("PATH", searchPath);
    QVERIFY(!success);
    QCOMPARE(m_errors.value(0), message.replace("%1", m_directory->path()));
}

QTEST_GUILESS_MAIN(VeyraOSTest)

#include "tst_veyraos.moc"
