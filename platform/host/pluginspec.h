#pragma once

#include <QJsonObject>
#include <QList>
#include <QPluginLoader>
#include <QStringList>

namespace ExtensionSystem {

class IPlugin;

/// What is known of one plugin: its metadata, how far it got, and what went wrong. One with an
/// error keeps the state that it had reached.
class PluginSpec
{
public:
    enum State { Invalid, Read, Resolved, Loaded, Initialized, Running, Stopped, Deleted };

    /// Reads the metadata in the library at \a filePath; a file that is no plugin of this kind
    /// stays Invalid without an error.
    explicit PluginSpec(const QString &filePath);

    QString id() const { return m_id; }
    QString name() const { return m_name; }
    QString version() const { return m_version; }
    State state() const { return m_state; }
    bool hasError() const { return !m_errorString.isEmpty(); }
    QString errorString() const { return m_errorString; }

    /// Finds the plugins depended on among \a specs.
    bool resolveDependencies(const QList<PluginSpec *> &specs);
    QList<PluginSpec *> dependencySpecs() const { return m_dependencySpecs; }

    bool load();
    bool initialize(const QStringList &arguments);
    void extensionsInitialized();
    void stop();
    void kill();

private:
    void readMetaData(const QJsonObject &pluginMetaData);
    bool fail(const QString &reason);
    bool checkDependencies();

    QString m_id;
    QString m_name;
    QString m_version;
    QStringList m_dependencies;
    QList<PluginSpec *> m_dependencySpecs;
    QString m_errorString;
    State m_state = Invalid;
    QPluginLoader m_loader;
    IPlugin *m_plugin = nullptr;
};

} // namespace ExtensionSystem
