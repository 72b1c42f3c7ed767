#include <veyraos/kilnkb2rpmbuildstep.h>

#include "kilntr.h"
#include <veyraos/kilnsdkkitaspect.h>

#include <brisk/buildengine.h>

#include <projectexplorer/kit.h>
#include <projectexplorer/project.h>
#include <projectexplorer/target.h>
#include <solutions/tasking/tasktree.h>
#include <utils/commandline.h>

#include <QDir>
#include <QDirIterator>
#include <QStandardPaths>

using namespace ProjectExplorer;
using namespace Tasking;

namespace Kiln::Internal {

constexpr char BUILD_TOOL[] = "rpmbuild";
constexpr char PACKAGING_FOLDER[] = "rpm";
constexpr char PACKAGES_FOLDER[] = "RPMS";
constexpr char WORKING_FOLDER[] = ".rpmbuild";

static Utils::FilePath packagesFolder(const Project *project)
{
    return project->projectDirectory() / QLatin1String(PACKAGES_FOLDER);
}

static QString macroDefinition(const char *name, const Utils::FilePath &path)
{
    QString value = path.toFSPathString();
    value.replace(QLatin1Char('%'), QLatin1String("%%"));
    return QLatin1String(name) + QLatin1Char(' ') + value;
}

static QString buildTool()
{
    return QStandardPaths::findExecutable(QLatin1String(BUILD_TOOL));
}

/// The package description: the project file, or the only one that goes with it. Otherwise empty.
static QString specFile(const Project *project)
{
    const QString projectFile = project->projectFilePath().toFSPathString();
    if (projectFile.endsWith(QLatin1String(".spec")))
        return projectFile;
    const Utils::FilePath folder = project->projectDirectory() / QLatin1String(PACKAGING_FOLDER);
    const QFileInfoList specs =
        QDir(folder.toFSPathString()).entryInfoList({QLatin1String("*.spec")}, QDir::Files);
    return specs.size() == 1 ? specs.constFirst().filePath() : QString();
}

static Utils::CommandLine buildCommand(const Project *project)
{
    const Utils::FilePath workingFolder =
        project->projectDirectory() / QLatin1String(WORKING_FOLDER);
    const QStringList arguments{QLatin1String("-bb"),
                                QLatin1String("--build-in-place"),
                                QLatin1String("--define"),
                                macroDefinition("_topdir", workingFolder),
                                QLatin1String("--define"),
                                macroDefinition("_rpmdir", packagesFolder(project)),
                                specFile(project)};
    return {Utils::FilePath::fromString(buildTool()), arguments};
}

KilnKb2RpmBuildStep::KilnKb2RpmBuildStep(BuildStepList *stepList, Utils::Id id)
    : KilnProcessStep(stepList, id)
{
    setDefaultDisplayName(displayName());
    setSummaryText(Tr::tr("Build the project's packages with %1").arg(QLatin1String(BUILD_TOOL)));
    setCommandLineProvider([this] { return buildCommand(project()); });
    setWorkingDirectoryProvider([this] { return project()->projectDirectory(); });
}

Utils::Id KilnKb2RpmBuildStep::stepId()
{
    return "Kiln.Kb2RpmBuildStep";
}

QString KilnKb2RpmBuildStep::displayName()
{
    return Tr::tr("Build RPM Packages");
}

QStringList KilnKb2RpmBuildStep::packages() const
{
    QStringList packages;
    QDirIterator files(packagesFolder(project()).toFSPathString(),
                       {QLatin1String("*.rpm")},
                       QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        packages.append(files.next());
    packages.sort();
    return packages;
}

QStringList KilnKb2RpmBuildStep::deployablePackagesFileNames() const
{
    QStringList deployable = packages();
    erase_if(deployable, [](const QString &package) {
        return package.endsWith(QLatin1String(".src.rpm"))
               || package.endsWith(QLatin1String(".nosrc.rpm"));
    });
    return deployable;
}

static bool isInside(const Utils::FilePath &path, const Utils::FilePath &folder)
{
    const QString inner = path.toFileInfo().canonicalFilePath() + QLatin1Char('/');
    const QString outer = folder.toFileInfo().canonicalFilePath() + QLatin1Char('/');
    return outer.size() > 1 && inner.startsWith(outer);
}

bool KilnKb2RpmBuildStep::init()
{
    const auto refuse = [this](const QString &reason) {
        emit addOutput(reason, OutputFormat::ErrorMessage);
        return false;
    };
    const Brisk::BuildEngine *engine = KilnSdkKitAspectFactory::buildEngine(kit());
    if (!engine) {
        return refuse(Tr::tr("Error: the kit \"%1\" has no build engine to build packages in.")
                          .arg(kit()->displayName()));
    }
    const Utils::FilePath folder = project()->projectDirectory();
    if (!isInside(folder, engine->sharedSrcPath())) {
        return refuse(Tr::tr("Error: the project's folder \"%1\" is not inside the workspace "
                             "\"%2\" of the build engine.")
                          .arg(folder.toUserOutput(), engine->sharedSrcPath().toUserOutput()));
    }
    if (specFile(project()).isEmpty()) {
        return refuse(Tr::tr("Error: there must be one package description in \"%1\".")
                          .arg((folder / QLatin1String(PACKAGING_FOLDER)).toUserOutput()));
    }
    if (buildTool().isEmpty()) {
        return refuse(Tr::tr("Error: \"%1\" is needed to build packages and was not found.")
                          .arg(QLatin1String(BUILD_TOOL)));
    }
    return KilnProcessStep::init();
}

/// What is named after a package, as its detached signatures are, belongs to it and goes too.
static bool removePackages(const Project *project)
{
    QDirIterator files(packagesFolder(project).toFSPathString(),
                       {QLatin1String("*.rpm"), QLatin1String("*.rpm.*")},
                       QDir::Files,
                       QDirIterator::Subdirectories);
    bool removed = true;
    while (files.hasNext())
        removed &= QFile::remove(files.next());
    return removed;
}

GroupItem KilnKb2RpmBuildStep::runRecipe()
{
    const auto onSetup = [this] {
        if (removePackages(project()))
            return SetupResult::Continue;
        emit addOutput(Tr::tr("Error: cannot remove the packages of the last build in \"%1\".")
                           .arg(packagesFolder(project()).toUserOutput()),
                       OutputFormat::ErrorMessage);
        return SetupResult::StopWithError;
    };
    const auto onDone = [this](DoneWith with) {
        if (with == DoneWith::Cancel)
            doCancel();
        return toDoneResult(with == DoneWith::Success);
    };
    return Group{onGroupSetup(onSetup), defaultProcessTask(), onGroupDone(onDone)};
}

void KilnKb2RpmBuildStep::doCancel()
{
    emit addOutput(Tr::tr("Package build stopped by user"), OutputFormat::ErrorMessage);
}

} // namespace Kiln::Internal
