#include "workplace.h"

#include "files.h"
#include "rpmpackage.h"

#include <brisk/installation.h>
#include <host/buildmanager.h>
#include <host/userproject.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <veyraos/kilnkits.h>
#include <veyraos/veyraosplugin.h>

#include <QDir>
#include <QEventLoop>
#include <QFile>

using namespace ProjectExplorer;
using Utils::FilePath;

Workplace::Workplace()
    : m_hostPlugin(std::make_unique<Kiln::Internal::VeyraOSPlugin>())
{
    QString error;
    if (!Brisk::openInstallation(FilePath::fromString(m_sdk.path()), &error))
        qFatal("%s", qPrintable(error));
    Kiln::Internal::registerKits();
    copyRegularKeys();
}

/// As the plugin does when it is initialized.
void Workplace::copyRegularKeys() const
{
    const QString keys = m_sdk.workspace() + "/.veyraos-regular-keys";
    QDir().mkpath(keys);
    for (const char *name : {"/regular_key.pem", "/regular_cert.pem"}) {
        if (!QFile::copy(m_sdk.path() + "/package-signing" + name, keys + name))
            qFatal("The regular keys cannot be copied");
    }
}

Workplace::~Workplace()
{
    closeProjects();
    KitManager::deregisterKits(KitManager::kits());
    Brisk::closeInstallation();
}

FilePath Workplace::workspace() const
{
    return FilePath::fromString(m_sdk.workspace());
}

Kit *Workplace::kit(const QString &targetName) const
{
    const QList<Kit *> kits = KitManager::kits();
    for (Kit *kit : kits) {
        if (kit->displayName() == targetName)
            return kit;
    }
    return nullptr;
}

Project *Workplace::openProject(const QString &targetName)
{
    const FilePath folder = workspace() / QStringLiteral("project%1").arg(++m_projectCount);
    const FilePath spec = folder / "rpm" / "project.spec";
    writeFile(spec.toFSPathString(), {});

    auto *project = new Host::UserProject(spec);
    project->addTargetForKit(kit(targetName));
    ProjectManager::addProject(project);
    return project;
}

void Workplace::closeProjects()
{
    const QList<Project *> projects = ProjectManager::projects();
    for (Project *project : projects)
        ProjectManager::removeProject(project);
}

QStringList Workplace::makePackages(const Project *project, const QStringList &names)
{
    const QString folder = (project->projectDirectory() / "RPMS").toFSPathString();
    QDir(folder).removeRecursively();
    QStringList paths;
    for (const QString &name : names) {
        paths << folder + '/' + name;
        writePackage(paths.last());
    }
    return paths;
}

BuildStepList *deploySteps(const Project *project)
{
    return project->activeTarget()->activeDeployConfiguration()->stepList();
}

QStringList stepIds(const BuildStepList *stepList)
{
    QStringList ids;
    const QList<BuildStep *> steps = stepList->steps();
    for (const BuildStep *step : steps)
        ids << step->id().toString();
    return ids;
}

QStringList runStep(BuildStep *step, Tasking::DoneWith *result)
{
    QStringList output;
    const auto connection = QObject::connect(
        step,
        &BuildStep::addOutput,
        [&output](const QString &text, BuildStep::OutputFormat format) {
            static const QStringList formats{"Stdout", "Stderr", "NormalMessage", "ErrorMessage"};
            output << formats.at(int(format)) + ": " + text;
        });
    QEventLoop loop;
    Tasking::TaskTree tree(Tasking::Group{BuildManager::recipeOf(step)});
    QObject::connect(&tree, &Tasking::TaskTree::done, &loop, [&](Tasking::DoneWith doneWith) {
        if (result)
            *result = doneWith;
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    tree.start();
    loop.exec(); // the end quits it from the event loop, also when it has come already
    QObject::disconnect(connection);
    return output;
}
