#include "testplugin.h"

#ifdef TEST_PLUGIN_NEEDS_A_MISSING_SYMBOL
extern int symbolOfNoLibrary;
int *missingSymbol = &symbolOfNoLibrary;
#endif

#ifndef TEST_PLUGIN_IS_NO_IPLUGIN

#include <QCoreApplication>
#include <QVariant>

static void note(const char *function)
{
    const QString call = QString::fromUtf8(TEST_PLUGIN_ID) + '.' + QString::fromUtf8(function);
    QCoreApplication *app = QCoreApplication::instance();
    app->setProperty("calls", app->property("calls").toStringList() << call);
}

TestPlugin::~TestPlugin()
{
    note("deleted");
}

bool TestPlugin::initialize(const QStringList &arguments, QString *errorString)
{
    note("initialize");
    const bool refuses = arguments.contains(QString::fromUtf8("refuse=" TEST_PLUGIN_ID));
    if (refuses)
        *errorString = "I was told to refuse.";
    return !refuses;
}

void TestPlugin::extensionsInitialized()
{
    note("extensionsInitialized");
}

ExtensionSystem::IPlugin::ShutdownFlag TestPlugin::aboutToShutdown()
{
    note("aboutToShutdown");
    return SynchronousShutdown;
}

#endif
