#include "session.h"

#include <brisk/installation.h>
#include <host/application.h>
#include <host/buildmanager.h>
#include <host/pluginspec.h>
#include <host/userproject.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QSettings>
#include <QTranslator>

using namespace ProjectExplorer;
using Utils::FilePath;

namespace Workbench {

constexpr char SDK_KEY[] = "Workbench/Sdk";
constexpr char PROJECT_KEY[] = "Workbench/Project";
// The IDE's, which the plugin reads, too.
constexpr char LANGUAGE_KEY[] = "General/OverrideLanguage";

// Dialogs of plugins have buttons whose texts are Qt's, and shall speak one language.
static void loadQtTranslation()
{
    const QString language = Session::chosenLanguage();
    const QLocale locale = language.isEmpty() ? QLocale() : QLocale(language);
    auto *translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(locale, "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(translator);
}

void setUpApplication(const QString &settingsFolder)
{
    QCoreApplication::setOrganizationName("Sealkit");
    QCoreApplication::setApplicationName("Workbench");
    if (!settingsFolder.isEmpty())
        QSettings::setPath(
            QSettings::NativeFormat, QSettings::UserScope, QDir(settingsFolder).absolutePath());
    loadQtTranslation();
}

static FilePath besideProgram(const QString &path)
{
    const QString raw = QCoreApplication::applicationDirPath() + "/../" + path;
    return FilePath::fromString(QDir::cleanPath(raw));
}

bool Session::openSdk(const QString &folder, QString *error)
{
    const QString chosen =
        folder.isEmpty() ? QSettings().value(SDK_KEY).toString() : QDir(folder).absolutePath();
    if (chosen.isEmpty()) {
        *error =
            tr("No SDK is chosen. Choose one in Edit > Options > Workbench, or start with --sdk "
               "DIR.");
        return false;
    }
    if (!Brisk::openInstallation(FilePath::fromString(chosen), error))
        return false;
    m_sdk = chosen;
    return true;
}

void Session::chooseSdk(const QString &folder)
{
    if (!folder.isEmpty())
        m_sdk = folder;
}

QStringList Session::languages()
{
    QStringList names{"en"};
    const QDir folder(besideProgram("share/qtcreator/translations").toFSPathString());
    for (const QString &file : folder.entryList({"Sealkit_*.qm"}, QDir::Files, QDir::Name))
        names << QFileInfo(file).completeBaseName().section('_', 1);
    return names;
}

QString Session::chosenLanguage()
{
    return QSettings().value(LANGUAGE_KEY).toString();
}

void Session::chooseLanguage(const QString &language)
{
    if (language.isEmpty())
        QSettings().remove(LANGUAGE_KEY);
    else
        QSettings().setValue(LANGUAGE_KEY, language);
}

void Session::loadPlugins()
{
    Core::Host::setResourcePath(besideProgram("share/qtcreator"));
    ExtensionSystem::PluginManager::setPluginPaths({besideProgram("lib/qtcreator/plugins")});
    ExtensionSystem::PluginManager::loadPlugins();
    for (const QString &error : pluginErrors())
        emit problemFound(error);
}

QStringList Session::pluginErrors()
{
    QStringList errors;
    for (const ExtensionSystem::PluginSpec *spec : ExtensionSystem::PluginManager::plugins()) {
        if (spec->hasError())
            errors << tr("The plugin \"%1\" cannot be used: %2")
                          .arg(spec->name(), spec->errorString());
    }
    return errors;
}

// The package description that \a path stands for; empty, with the reason, when there is none.
static FilePath findProjectFile(const QString &path, QString *error)
{
    const QFileInfo info(path);
    if (info.isFile() && info.suffix() == "spec")
        return FilePath::fromString(info.absoluteFilePath());
    const QDir packaging(info.absoluteFilePath() + "/rpm");
    const QStringList specs = packaging.entryList({"*.spec"}, QDir::Files, QDir::Name);
    if (specs.size() == 1)
        return FilePath::fromString(packaging.filePath(specs.first()));
    if (specs.isEmpty())
        *error = Session::tr("There is no package description (rpm/*.spec) in \"%1\".").arg(path);
    else
        *error = Session::tr("\"%1\" has several package descriptions; choose one of %2.")
                     .arg(path, specs.join(", "));
    return {};
}

static Kit *findKit(const QString &targetName, QString *error)
{
    QStringList known;
    for (Kit *kit : KitManager::kits()) {
        if (kit->displayName() == targetName)
            return kit;
        known << kit->displayName();
    }
    *error = Session::tr("There is no target \"%1\". Known targets: %2.")
                 .arg(targetName, known.isEmpty() ? Session::tr("none") : known.join(", "));
    return nullptr;
}

static void activate(Project *project, Kit *kit)
{
    Target *target = project->target(kit);
    project->setActiveTarget(target ? target : project->addTargetForKit(kit), SetActive::Cascade);
}

Project *Session::openProject(const QString &path, const QString &targetName, QString *error)
{
    const FilePath file = findProjectFile(path, error);
    if (file.isEmpty())
        return nullptr;
    Kit *kit = nullptr;
    if (!targetName.isEmpty() && !(kit = findKit(targetName, error)))
        return nullptr;

    const QList<Project *> open = ProjectManager::projects();
    const auto isSame = [&file](const Project *other) { return other->projectFilePath() == file; };
    const auto found = std::find_if(open.begin(), open.end(), isSame);
    Project *project = found == open.end() ? nullptr : *found;
    if (!project) {
        auto *opened = new Host::UserProject(file);
        project = opened;
        QString reason;
        if (!opened->restoreSettings(&reason)) {
            m_saveProblems.insert(project, reason);
            emit problemFound(reason);
        }
        ProjectManager::addProject(project);
    }
    if (!kit && !project->activeTarget() && !KitManager::kits().isEmpty())
        kit = KitManager::kits().constFirst();
    if (kit)
        activate(project, kit);
    return project;
}

void Session::saveProject(Project *project)
{
    QString reason;
    static_cast<Host::UserProject *>(project)->saveSettings(&reason);
    const QString previous = m_saveProblems.value(project);
    m_saveProblems.insert(project, reason);
    if (!reason.isEmpty() && reason != previous)
        emit problemFound(reason);
}

void Session::closeProject(Project *project)
{
    saveProject(project);
    m_saveProblems.remove(project);
    ProjectManager::removeProject(project);
}

QString Session::rememberedProject()
{
    return QSettings().value(PROJECT_KEY).toString();
}

void Session::save()
{
    QString open;
    for (Project *project : ProjectManager::projects()) {
        saveProject(project);
        open = project->projectFilePath().toFSPathString();
    }
    QSettings settings;
    if (!m_sdk.isEmpty())
        settings.setValue(SDK_KEY, m_sdk);
    settings.setValue(PROJECT_KEY, open);
    settings.sync();
    if (settings.status() != QSettings::NoError)
        emit problemFound(tr("The settings cannot be written to \"%1\".").arg(settings.fileName()));
}

void Session::shutdown()
{
    BuildManager::cancel();
    const QList<Project *> open = ProjectManager::projects();
    for (Project *project : open)
        ProjectManager::removeProject(project);
    ExtensionSystem::PluginManager::shutdown();
    KitManager::deregisterKits(KitManager::kits());
    Brisk::closeInstallation();
}

} // namespace Workbench
