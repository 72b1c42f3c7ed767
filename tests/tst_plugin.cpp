#include "messages.h"
#include "settingsscope.h"
#include "straywarnings.h"
#include "temporarysdk.h"

#include <brisk/buildengine.h>
#include <brisk/sdk.h>
#include <coreplugin/dialogs/ioptionspage.h>
#include <extensionsystem/pluginmanager.h>
#include <extensionsystem/pluginspec.h>
#include <projectexplorer/buildstep.h>

#include <QDir>
#include <QSettings>
#include <QTest>

using ExtensionSystem::PluginManager;
using ExtensionSystem::PluginSpec;
using Utils::FilePath;

const QString KEYS_FOLDER = QStringLiteral("/.veyraos-regular-keys");

/// The built plugin as the application loads it.
class PluginTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { failOnStrayWarnings(); }
    void cleanupTestCase();

    void loads();
    void registersItsSteps();
    void copiesTheRegularKeys();
    void copiesTheRegularKeysIntoANewWorkspace();
    void tellsWhyKeysCannotBeCopied();

private:
    void moveWorkspace(const QString &path)
    {
        Brisk::Sdk::buildEngines().first()->setSharedSrcPath(FilePath::fromString(path));
    }

    SettingsScope m_settings;
    TemporarySdk m_sdk;
    PluginManager m_manager;
};

static QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void PluginTest::initTestCase()
{
    QString error;
    QVERIFY2(Brisk::Sdk::open(FilePath::fromString(m_sdk.path()), &error), qPrintable(error));
    PluginManager::setPluginPaths({PLUGIN_PATH});
    PluginManager::loadPlugins();
}

void PluginTest::cleanupTestCase()
{
    PluginManager::shutdown();
}

void PluginTest::loads()
{
    PluginSpec *sealkit = nullptr;
    const QList<PluginSpec *> specs = PluginManager::plugins();
    for (PluginSpec *spec : specs) {
        QVERIFY2(!spec->hasError(), qPrintable(spec->errorString()));
        if (spec->id() == "sealkit")
            sealkit = spec;
    }
    QVERIFY(sealkit);
    QCOMPARE(sealkit->state(), PluginSpec::Running);
    QCOMPARE(sealkit->name(), "Sealkit");
    QCOMPARE(sealkit->version(), "16.0.0");
    QCOMPARE(sealkit->description(), "Plugin for managing the step of signing RPM packages");

    QStringList dependencies;
    for (const ExtensionSystem::PluginDependency &dependency : sealkit->dependencies())
        dependencies << dependency.id + ' ' + dependency.version;
    QCOMPARE(dependencies,
             (QStringList{"core 16.0.0", "projectexplorer 16.0.0", "veyraos 16.0.0"}));
}

void PluginTest::registersItsSteps()
{
    QStringList steps;
    for (ProjectExplorer::BuildStepFactory *factory :
         ProjectExplorer::BuildStepFactory::allBuildStepFactories()) {
        if (factory->stepId().toString().startsWith("Sealkit."))
            steps << factory->stepId().toString() + '=' + factory->displayName();
    }
    QCOMPARE(steps,
             (QStringList{"Sealkit.RpmSignStep=RPM Sign (customer-sign)",
                          "Sealkit.RpmSignExternalStep=RPM Sign (rpmsign-external)"}));
}

void PluginTest::copiesTheRegularKeys()
{
    for (const char *name : {"/regular_key.pem", "/regular_cert.pem"}) {
        const QByteArray original = content(m_sdk.path() + "/package-signing" + name);
        QVERIFY(!original.isEmpty());
        QCOMPARE(content(m_sdk.workspace() + KEYS_FOLDER + name), original);
    }
}

void PluginTest::copiesTheRegularKeysIntoANewWorkspace()
{
    const QTemporaryDir workspace;
    QVERIFY(QDir(workspace.path()).mkdir(KEYS_FOLDER.mid(1)));
    QFile ownKey(workspace.path() + KEYS_FOLDER + "/regular_key.pem");
    QVERIFY(ownKey.open(QIODevice::WriteOnly));
    ownKey.write("own key");
    ownKey.close();

    Messages messages;
    moveWorkspace(workspace.path());
    QCOMPARE(content(ownKey.fileName()), "own key");
    QVERIFY(!content(workspace.path() + KEYS_FOLDER + "/regular_cert.pem").isEmpty());
    QCOMPARE(messages.take(), QStringList());
}

void PluginTest::tellsWhyKeysCannotBeCopied()
{
    const QTemporaryDir folder;
    const QString keys = m_sdk.path() + "/package-signing";
    QVERIFY(QFile::rename(keys, keys + ".gone"));
    Messages messages;
    moveWorkspace(folder.path());
    QCOMPARE(messages.take(),
             (QStringList{"![E] Failed to copy regular keys:\t" + folder.path() + KEYS_FOLDER,
                          "![W] Please make sure that the '" + folder.path()
                              + "' is writable and restart the ide",
                          "![W] OR",
                          "![W] Specify the path to the default signature keys in the settings"}));
    QVERIFY(QFile::rename(keys + ".gone", keys));
}

QTEST_MAIN(PluginTest)
#include "tst_plugin.moc"
