// pluginstart LIBRARY SDK: loads and initializes a plugin, as the application does when it starts,
// and prints how many milliseconds that took. What the plugin depends on is there already.
#include "comparison.h"
#include "settingsscope.h"

#include <brisk/installation.h>
#include <extensionsystem/iplugin.h>
#include <veyraos/veyraosplugin.h>

#include <QApplication>
#include <QPluginLoader>

#include <cstdio>
#include <memory>

using namespace Benchmarks;

static void openSdk(const QString &path)
{
    QString error;
    const bool isOpen = Brisk::openInstallation(Utils::FilePath::fromString(path), &error);
    require(isOpen, error.toStdString());
}

static std::unique_ptr<ExtensionSystem::IPlugin> start(const QString &library)
{
    QPluginLoader loader(library);
    std::unique_ptr<ExtensionSystem::IPlugin> plugin(
        qobject_cast<ExtensionSystem::IPlugin *>(loader.instance()));
    require(plugin != nullptr, loader.errorString().toStdString());
    QString error;
    const bool isInitialized = plugin->initialize({}, &error);
    require(isInitialized, error.toStdString());
    plugin->extensionsInitialized();
    return plugin;
}

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const SettingsScope settings;
    const Kiln::Internal::VeyraOSPlugin hostPlugin;
    try {
        const QStringList arguments = application.arguments();
        openSdk(arguments.value(2));
        std::unique_ptr<ExtensionSystem::IPlugin> plugin;
        std::printf("%f\n", milliseconds([&] { plugin = start(arguments.value(1)); }));
    } catch (const Failure &failure) {
        std::fprintf(stderr, "pluginstart: %s\n", failure.what());
        return 1;
    }
    return 0;
}
