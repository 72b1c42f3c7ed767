#pragma once

#include <utils/filepath.h>

#include <QObject>
#include <QStringList>

#include <memory>

namespace Utils {
class QtcSettings;
}

namespace ExtensionSystem {

class PluginSpec;

/// Finds, orders, loads and lets go of plugins. Dependencies come first in loading and
/// initialize(), last in extensionsInitialized() and in the order of deletion.
class PluginManager : public QObject
{
    Q_OBJECT

public:
    PluginManager();
    ~PluginManager() override;

    static PluginManager *instance();
    /// The user's settings.
    static Utils::QtcSettings *settings();

    /// Reads the metadata of every plugin library in these folders.
    static void setPluginPaths(const Utils::FilePaths &paths);
    /// Loads and initializes; a plugin that fails keeps its reason in its spec, and takes those
    /// that depend on it along.
    static void loadPlugins(const QStringList &arguments = {});
    /// Asks every plugin to shut down, then deletes them.
    static void shutdown();

    static const QList<PluginSpec *> plugins();

private:
    class Private;
    const std::unique_ptr<Private> d;
};

} // namespace ExtensionSystem
