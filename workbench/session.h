#pragma once

#include <extensionsystem/pluginmanager.h>

#include <QHash>
#include <QObject>
#include <QStringList>

namespace ProjectExplorer {
class Project;
}

namespace Workbench {

/// Names of the program, and where its settings are; an empty folder means the user's own place.
void setUpApplication(const QString &settingsFolder);

/// What is open: the SDK, the plugins and the projects, from start to shutdown.
class Session : public QObject
{
    Q_OBJECT

public:
    Session() = default;

    /// Opens the SDK in \a folder, or the remembered one, and offers a kit for each of its targets.
    bool openSdk(const QString &folder, QString *error);
    /// Folder of the SDK to be remembered: the one that is open, or chosen since. Empty without
    /// one.
    QString sdk() const { return m_sdk; }
    /// Remembers \a folder for the next start. An empty one leaves everything as it is.
    void chooseSdk(const QString &folder);

    /// What the plugin speaks, as names of locales.
    static QStringList languages();
    /// One of languages(), or empty for the system's.
    static QString chosenLanguage();
    /// For the next start.
    static void chooseLanguage(const QString &language);

    /// Loads the plugins that are installed beside the program.
    void loadPlugins();
    /// One line for each plugin that did not make it.
    static QStringList pluginErrors();

    /// Opens the project at \a path, a folder with one rpm/ *.spec or that file itself, and makes
    /// \a targetName its active target; without a name the project keeps the one it had, or gets
    /// one for the first kit. Null, with the reason, when one or the other can't be done.
    ProjectExplorer::Project *
    openProject(const QString &path, const QString &targetName, QString *error);
    /// Saves the project and closes it.
    void closeProject(ProjectExplorer::Project *project);

    /// The path of the project that was open at the last save().
    static QString rememberedProject();
    /// Writes the open project and all settings to the disk; the SDK and the project are remembered.
    void save();

    /// Closes everything without saving; the plugins are gone afterwards.
    void shutdown();

signals:
    /// Something that the user has to know, but that stops nothing.
    void problemFound(const QString &message);

private:
    void saveProject(ProjectExplorer::Project *project);

    ExtensionSystem::PluginManager m_pluginManager;
    QString m_sdk;
    /// Why a project could not be saved, so that nobody is told the same twice.
    QHash<ProjectExplorer::Project *, QString> m_saveProblems;
};

} // namespace Workbench
