#include "commandline.h"
#include "headlessdeploy.h"
#include "interrupts.h"
#include "mainwindow.h"
#include "session.h"

#include <QApplication>
#include <QFile>
#include <QStandardPaths>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <cstdlib>

using namespace Workbench;

static int endEarly(const EarlyExit &exit)
{
    std::fprintf(exit.exitCode ? stderr : stdout, "%s\n", qUtf8Printable(exit.message));
    return exit.exitCode;
}

static bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY")
           || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
           || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

// Logins set it. Without them Qt makes a folder up, and says so at each start.
static void provideRuntimeFolder()
{
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        return;
    const QtMessageHandler handler = qInstallMessageHandler([](auto, auto &, auto &) {});
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    qInstallMessageHandler(handler);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder));
}

static int runWindow(const CommandLine &commandLine)
{
    Session session;
    Interrupts interrupts;
    MainWindow window(&session);
    QObject::connect(&interrupts, &Interrupts::interrupted, &window, &MainWindow::closeAtOnce);
    window.show();
    QTimer::singleShot(0, &window, [&] { window.open(commandLine); });
    const int exitCode = QApplication::exec();
    // Plugins parent their dialogs to the window, so they have to go first.
    session.shutdown();
    return exitCode;
}

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const auto parsed = parseCommandLine(arguments);
    if (const auto *exit = std::get_if<EarlyExit>(&parsed))
        return endEarly(*exit);

    const CommandLine &commandLine = *std::get_if<CommandLine>(&parsed);
    if (commandLine.deploy)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    else if (!hasDisplay())
        return endEarly({1, "workbench: There is no display for a window; see --deploy."});

    provideRuntimeFolder();
    if (commandLine.checkDisplay)
        // Qt aborts where it cannot reach the display.
        std::signal(SIGABRT, [](int) { std::_Exit(1); });
    QApplication application(argc, argv);
    if (commandLine.checkDisplay)
        return 0;
    QApplication::setQuitOnLastWindowClosed(false);
    setUpApplication(commandLine.settingsFolder);
    return commandLine.deploy ? HeadlessDeploy(commandLine).run() : runWindow(commandLine);
}
