// Measures what this project adds to its tools' own time, and how well it keeps its window alive.
#include "comparison.h"
#include "workplace.h"

#include <brisk/installation.h>
#include <extensionsystem/iplugin.h>
#include <veyraos/veyraosplugin.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QPluginLoader>

#include <cstdio>

using namespace Benchmarks;

/// The platform without a display complains about each window that is shown.
static void dropComplaints(QtMsgType, const QMessageLogContext &, const QString &message)
{
    if (!message.startsWith("This plugin does not support "))
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

/// Loads and initializes the plugin, as the IDE does when it starts, and prints how many
/// milliseconds that took. What the plugin depends on is there already.
static int startPlugin(const QString &sdk)
{
    const SettingsScope settings;
    const Kiln::Internal::VeyraOSPlugin hostPlugin;
    QString error;
    std::unique_ptr<ExtensionSystem::IPlugin> plugin;
    bool isStarted = Brisk::openInstallation(Utils::FilePath::fromString(sdk), &error);
    const double time = milliseconds([&] {
        QPluginLoader loader(SEALKIT_LIBRARY);
        plugin.reset(qobject_cast<ExtensionSystem::IPlugin *>(loader.instance()));
        isStarted = isStarted && plugin && plugin->initialize({}, &error);
        if (isStarted)
            plugin->extensionsInitialized();
    });
    std::fprintf(isStarted ? stdout : stderr, "%f\n%s", time, qPrintable(error));
    return isStarted ? 0 : 1;
}

int main(int argc, char **argv)
{
    qInstallMessageHandler(dropComplaints);
    const QApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addOptions({{"smoke", {}}, {"filter", {}, "regex"}, {"json", {}, "file"}});
    parser.addOption({"start-plugin", {}, "sdk"}); // what a row runs in a process of its own
    parser.process(application);
    if (parser.isSet("start-plugin"))
        return startPlugin(parser.value("start-plugin"));
    isSmoke = parser.isSet("smoke");

    Workplace workplace;
    const auto rows = deployRows(workplace) + toolRows(workplace) + windowRows(workplace);
    return run(rows, parser.value("filter"), parser.value("json")) ? 0 : 1;
}
