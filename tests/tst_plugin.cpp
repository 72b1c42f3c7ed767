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
    void cleanupTestCase() { PluginManager::shutdown(); }

    void loads();
    void registersItsStepsAndOptions();
    void putsItsDialogIntoTheToolsMenu();
    void copiesTheRegularKeys();
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

void PluginTest::loads()
{
    const PluginSpec *sealkit = nullptr;
    for (const PluginSpec *spec : PluginManager::plugins()) {
        QVERIFY2(!spec->hasError(), qPrintable(spec->errorString()));
        if (spec->id() == "sealkit")
            sealkit = spec;
    }
    QVERIFY(sealkit && sealkit->state() == PluginSpec::Running);
    QCOMPARE(sealkit->version(), "16.0.0");
    QStringList dependencies;
    for (const ExtensionSystem::PluginDependency &dependency : sealkit->dependencies())
        dependencies << dependency.id + ' ' + dependency.version;
    QCOMPARE(dependencies,
             (QStringList{"core 16.0.0", "projectexplorer 16.0.0", "veyraos 16.0.0"}));
}

void PluginTest::registersItsStepsAndOptions()
{
    QStringList steps;
    for (const auto *factory : ProjectExplorer::BuildStepFactory::allBuildStepFactories())
        steps << factory->stepId().toString() + '=' + factory->displayName();
    QCOMPARE(steps.filter("Sealkit."),
             (QStringList{"Sealkit.RpmSignStep=RPM Sign (customer-sign)",
                          "Sealkit.RpmSignExternalStep=RPM Sign (rpmsign-external)"}));

    const QList<Core::IOptionsPage *> pages = Core::IOptionsPage::allOptionsPages();
    QCOMPARE(pages.size(), 1);
    QCOMPARE(pages.first()->id(), Utils::Id("Z.SignOptions"));
    QCOMPARE(pages.first()->displayName(), "Sign packages");
    QCOMPARE(pages.first()->displayCategory(), Brisk::Sdk::osVariant());
    QVERIFY(!pages.first()->categoryIconPath().isEmpty());
}

void PluginTest::putsItsDialogIntoTheToolsMenu()
{
    const QMenu *menu = Core::ActionManager::actionContainer("Kiln.Tools.Menu")->menu();
    QAction *action = Core::ActionManager::command("Sealkit.SignDialog")->action();
    QVERIFY(menu->actions().contains(action));
    QCOMPARE(action->text(), "&Sign Packages");

    const auto shownByTheAction = [action] {
        action->trigger();
        QWidgetList widgets = QApplication::topLevelWidgets();
        widgets.removeIf([](const QWidget *widget) { return !widget->isVisible(); });
        return widgets;
    };
    const QWidgetList shown = shownByTheAction();
    QCOMPARE(shown.size(), 1);
    QWidget *dialog = shown.first();
    QCOMPARE(dialog->windowTitle(), "Sign Packages");
    auto *companyName = dialog->findChild<QLineEdit *>("generateCompanyNameLineEdit");
    companyName->setText("kept");
    dialog->close();
    QCOMPARE(shownByTheAction(), shown);
    QCOMPARE(companyName->text(), "kept");
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
            QVERIFY(!original.isEmpty());
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
