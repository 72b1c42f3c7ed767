#include "straywarnings.h"

#include <extensionsystem/pluginmanager.h>
#include <host/pluginspec.h>

#include <QTest>

using namespace ExtensionSystem;

class PluginManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void callsPluginsInOrder();
    void loadsOnlyOneOfTwoWithTheSameId();
    void tellsWhyAPluginFailed_data();
    void tellsWhyAPluginFailed();
};

// Plugins that fail before they are initialized have no say, nor have libraries of another kind.
static const QStringList CALLS_ON_LOADING{"refusing.initialize",
                                          "root.initialize",
                                          "middle.initialize",
                                          "leaf.initialize",
                                          "leaf.extensionsInitialized",
                                          "middle.extensionsInitialized",
                                          "root.extensionsInitialized"};
static const QStringList CALLS_ON_SHUTDOWN{"leaf.aboutToShutdown",
                                           "middle.aboutToShutdown",
                                           "root.aboutToShutdown",
                                           "leaf.deleted",
                                           "middle.deleted",
                                           "root.deleted",
                                           "after_refusing.deleted",
                                           "refusing.deleted"};

static QStringList takeCalls()
{
    QCoreApplication *app = QCoreApplication::instance();
    const QStringList calls = app->property("calls").toStringList();
    app->setProperty("calls", {});
    return calls;
}

static void load(const Utils::FilePaths &paths)
{
    PluginManager::setPluginPaths(paths);
    PluginManager::loadPlugins({"refuse=refusing"});
}

static QList<PluginSpec *> specs(const QString &id)
{
    QList<PluginSpec *> found = PluginManager::plugins();
    erase_if(found, [&](const PluginSpec *spec) { return spec->id() != id; });
    return found;
}

void PluginManagerTest::init()
{
    failOnStrayWarnings();
    takeCalls();
}

void PluginManagerTest::callsPluginsInOrder()
{
    PluginManager manager;
    load({TEST_PLUGIN_DIR});
    QCOMPARE(takeCalls(), CALLS_ON_LOADING);
    for (const char *id : {"root", "middle", "leaf"}) {
        QCOMPARE(specs(id).size(), 1);
        QCOMPARE(specs(id).first()->state(), PluginSpec::Running);
        QCOMPARE(specs(id).first()->errorString(), QString());
    }

    PluginManager::shutdown();
    QCOMPARE(takeCalls(), CALLS_ON_SHUTDOWN);
    PluginManager::shutdown();
    QCOMPARE(takeCalls(), QStringList());
}

void PluginManagerTest::loadsOnlyOneOfTwoWithTheSameId()
{
    PluginManager manager;
    load({TEST_PLUGIN_DIR, TEST_PLUGIN_DIR});
    QCOMPARE(takeCalls(), CALLS_ON_LOADING);

    QCOMPARE(specs("root").size(), 2);
    QCOMPARE(specs("root").first()->errorString(), QString());
    QCOMPARE(specs("root").last()->errorString(), "The plugin \"root\" is installed twice.");
}

void PluginManagerTest::tellsWhyAPluginFailed_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("beginning");

    QTest::newRow("refuses") << "refusing"
                             << "Its initialization failed: I was told to refuse.";
    QTest::newRow("depends on one that refuses")
        << "after_refusing"
        << "It depends on the plugin \"refusing\", which failed: Its initialization failed: I was "
           "told to refuse.";
    QTest::newRow("dependency absent")
        << "needs_absent"
        << "It depends on the plugin \"absent\" (2.1.0), which is not installed.";
    QTest::newRow("dependency too old")
        << "needs_newer"
        << "It depends on version 2.1.1 of the plugin \"root\", but 2.1.0 is installed, which is "
           "compatible back to 2.0.0.";
    QTest::newRow("dependency too new")
        << "needs_older"
        << "It depends on version 1.9.0 of the plugin \"root\", but 2.1.0 is installed, which is "
           "compatible back to 2.0.0.";
    QTest::newRow("depends on itself")
        << "loop_two"
        << "It depends on itself: loop_two -> loop_three -> loop_one -> loop_two.";
    QTest::newRow("depends on one that depends on itself")
        << "after_loop"
        << "It depends on the plugin \"loop_one\", which failed: It depends on itself: ";
    QTest::newRow("library does not load") << "missing_symbol"
                                           << "It cannot be loaded: Cannot load library ";
    QTest::newRow("class is no plugin") << "no_iplugin"
                                        << "Its class \"TestPlugin\" is not derived from the class "
                                           "of all plugins, IPlugin.";
}

void PluginManagerTest::tellsWhyAPluginFailed()
{
    QFETCH(const QString, id);
    QFETCH(const QString, beginning);

    PluginManager manager;
    load({TEST_PLUGIN_DIR});
    QCOMPARE(specs(id).size(), 1);
    QCOMPARE(specs(id).first()->errorString().left(beginning.size()), beginning);
}

QTEST_GUILESS_MAIN(PluginManagerTest)

#include "tst_pluginmanager.moc"
