#include "files.h"
#include "messages.h"
#include "settingsscope.h"
#include "straywarnings.h"
#include "temporarysdk.h"

#include <brisk/buildengine.h>
#include <brisk/installation.h>
#include <brisk/sdk.h>
#include <coreplugin/actionmanager/actioncontainer.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/actionmanager/command.h>
#include <coreplugin/dialogs/ioptionspage.h>
#include <extensionsystem/pluginmanager.h>
#include <host/pluginspec.h>
#include <projectexplorer/buildstep.h>

#include <QtWidgets>

#include <sys/stat.h>

using ExtensionSystem::PluginManager;
using Utils::FilePath;

const QString KEYS_FOLDER = QStringLiteral("/.veyraos-regular-keys");

/// The built plugin as the application loads it.
class PluginTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { failOnStrayWarnings(); }
    void cleanupTestCase() { PluginManager::shutdown(); }

    void loadsWithItsStepsAndOptions();
    void putsItsDialogIntoTheToolsMenu();
    void copiesTheRegularKeys();
    void storedRegularKeysFollowTheWorkspace();
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

void PluginTest::initTestCase()
{
    QString error;
    QVERIFY2(Brisk::openInstallation(FilePath::fromString(m_sdk.path()), &error),
             qPrintable(error));
    QVERIFY(QDir::setCurrent(m_sdk.path()));
    PluginManager::setPluginPaths({PLUGIN_PATH});
    PluginManager::loadPlugins();
}

void PluginTest::loadsWithItsStepsAndOptions()
{
    QStringList running;
    for (const auto *spec : PluginManager::plugins()) {
        QVERIFY2(!spec->hasError(), qPrintable(spec->errorString()));
        if (spec->state() == ExtensionSystem::PluginSpec::Running)
            running << spec->id() + ' ' + spec->version();
    }
    QVERIFY2(running.contains("sealkit 16.0.0"), qPrintable(running.join(", ")));

    QStringList steps;
    for (const auto *factory : ProjectExplorer::BuildStepFactory::allBuildStepFactories())
        steps << factory->stepId().toString() + '=' + factory->displayName();
    QCOMPARE(steps.filter("Sealkit."),
             (QStringList{"Sealkit.RpmSignStep=RPM Sign (customer-sign)",
                          "Sealkit.RpmSignExternalStep=RPM Sign (rpmsign-external)"}));

    const Core::IOptionsPage *page = Core::IOptionsPage::allOptionsPages().value(0);
    QVERIFY(page && !page->categoryIconPath().isEmpty());
    QCOMPARE(page->id(), Utils::Id("Z.SignOptions"));
    QCOMPARE(page->displayName(), "Sign packages");
    QCOMPARE(page->displayCategory(), Brisk::Sdk::osVariant());
}

void PluginTest::putsItsDialogIntoTheToolsMenu()
{
    const QMenu *menu = Core::ActionManager::actionContainer("Kiln.Tools.Menu")->menu();
    QAction *action = Core::ActionManager::command("Sealkit.SignDialog")->action();
    QVERIFY(menu->actions().contains(action));

    action->trigger();
    QTRY_VERIFY(QApplication::activeWindow());
    const QPointer<QWidget> dialog = QApplication::activeWindow();
    QCOMPARE(dialog->windowTitle(), "Sign Packages");
    dialog->close();
    action->trigger();
    QVERIFY2(dialog && dialog->isVisible(), "another dialog came up");
    dialog->close();
}

void PluginTest::copiesTheRegularKeys()
{
    const QTemporaryDir other;
    Messages messages;
    const mode_t mask = umask(0);
    moveWorkspace(other.path());
    umask(mask);
    for (const QString &workspace : {m_sdk.workspace(), other.path()}) {
        for (const QString name : {"/regular_key.pem", "/regular_cert.pem"}) {
            const QByteArray original = readFile(m_sdk.path() + "/package-signing" + name);
            QCOMPARE(readFile(workspace + KEYS_FOLDER + name), original);
        }
    }
    const QFile::Permissions others = QFile::WriteGroup | QFile::WriteOther;
    QVERIFY(!(QFile::permissions(other.path() + KEYS_FOLDER) & others));

    const QString ownKey = other.path() + KEYS_FOLDER + "/regular_key.pem";
    writeFile(ownKey, "own key");
    moveWorkspace({});
    QVERIFY(!QFile::exists(m_sdk.path() + KEYS_FOLDER)); // in the working directory
    moveWorkspace(other.path());
    QCOMPARE(readFile(ownKey), "own key");
    QCOMPARE(messages.take(), QStringList());
}

void PluginTest::storedRegularKeysFollowTheWorkspace()
{
    QSettings settings;
    settings.setValue("Sealkit.UseDefaultSignKey", true);
    settings.setValue("Sealkit.GlobalSignKey", "/old/regular_key.pem");
    settings.setValue("Sealkit.UseDefaultSignCert", false);
    settings.setValue("Sealkit.GlobalSignCert", "/own/cert.pem");
    const QTemporaryDir other;
    moveWorkspace(other.path());
    QCOMPARE(settings.value("Sealkit.GlobalSignKey"),
             other.path() + KEYS_FOLDER + "/regular_key.pem");
    QCOMPARE(settings.value("Sealkit.GlobalSignCert"), "/own/cert.pem");
    settings.clear();
}

void PluginTest::tellsWhyKeysCannotBeCopied()
{
    const QString keys = m_sdk.path() + "/package-signing";
    QVERIFY(QFile::rename(keys, keys + ".gone"));
    const QTemporaryDir workspace;
    Messages messages;
    moveWorkspace(workspace.path());
    const QStringList expected{
        "![E] Failed to copy regular keys:\t" + workspace.path() + KEYS_FOLDER,
        "![W] Please make sure that the '" + workspace.path() + "' is writable and restart the ide",
        "![W] OR",
        "![W] Specify the path to the default signature keys in the settings"};
    QVERIFY(QFile::rename(keys + ".gone", keys));
    QCOMPARE(messages.take(), expected);
}

QTEST_MAIN(PluginTest)
#include "tst_plugin.moc"
