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

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QSettings>
#include <QTest>

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
    void cleanupTestCase();

    void loads();
    void registersItsSteps();
    void putsItsDialogIntoTheToolsMenu();
    void titlesItsOptionsCategory();
    void copiesTheRegularKeys();
    void copiesTheRegularKeysIntoANewWorkspace();
    void onlyTheUserWritesAmongTheKeys();
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
    QVERIFY2(Brisk::openInstallation(FilePath::fromString(m_sdk.path()), &error),
             qPrintable(error));
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

void PluginTest::putsItsDialogIntoTheToolsMenu()
{
    const QMenu *menu = Core::ActionManager::actionContainer("Kiln.Tools.Menu")->menu();
    QAction *action = Core::ActionManager::command("Sealkit.SignDialog")->action();
    QVERIFY(menu->actions().contains(action));
    QCOMPARE(action->text(), "&Sign Packages");

    const auto dialogs = [] {
        QList<QDialog *> visible;
        const QWidgetList widgets = QApplication::topLevelWidgets();
        for (QWidget *widget : widgets) {
            if (auto *dialog = qobject_cast<QDialog *>(widget); dialog && dialog->isVisible())
                visible << dialog;
        }
        return visible;
    };
    action->trigger();
    QCOMPARE(dialogs().size(), 1);
    const QPointer<QDialog> dialog = dialogs().first();
    QCOMPARE(dialog->windowTitle(), "Sign Packages");

    auto *companyName = dialog->findChild<QLineEdit *>("generateCompanyNameLineEdit");
    companyName->setText("kept");
    dialog->close();
    action->trigger();
    QCOMPARE(dialogs(), QList<QDialog *>{dialog});
    QCOMPARE(companyName->text(), "kept");
    dialog->close();
}

void PluginTest::titlesItsOptionsCategory()
{
    const QList<Core::IOptionsPage *> pages = Core::IOptionsPage::allOptionsPages();
    QCOMPARE(pages.size(), 1);
    QCOMPARE(pages.first()->id(), Utils::Id("Z.SignOptions"));
    QCOMPARE(pages.first()->displayName(), "Sign packages");
    QCOMPARE(pages.first()->displayCategory(), Brisk::Sdk::osVariant());
    QVERIFY(!pages.first()->categoryIconPath().isEmpty());
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

void PluginTest::onlyTheUserWritesAmongTheKeys()
{
    const QTemporaryDir workspace;
    const mode_t mask = umask(0);
    moveWorkspace(workspace.path());
    umask(mask);
    QCOMPARE(QFile::permissions(workspace.path() + KEYS_FOLDER)
                 & (QFile::WriteGroup | QFile::WriteOther),
             QFile::Permissions());
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
