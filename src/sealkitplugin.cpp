#include "sealkitplugin.h"

#include "constants.h"
#include "ideclosing.h"
#include "projectlistener.h"
#include "signdialog.h"
#include "signoptionspage.h"
#include "utils.h"

#include <brisk/buildengine.h>
#include <brisk/sdk.h>
#include <coreplugin/actionmanager/actioncontainer.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/actionmanager/command.h>
#include <coreplugin/coreconstants.h>
#include <coreplugin/dialogs/ioptionspage.h>
#include <coreplugin/icore.h>
#include <coreplugin/messagemanager.h>
#include <extensionsystem/pluginmanager.h>
#include <utils/fileutils.h>
#include <utils/icon.h>
#include <utils/qtcsettings.h>

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QLocale>
#include <QMainWindow>
#include <QTranslator>

using Utils::FilePath;

namespace Sealkit::Internal {

constexpr QFile::Permissions KEYS_FOLDER_PERMISSIONS =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup
    | QFile::ReadOther | QFile::ExeOther;

SealkitPlugin::SealkitPlugin() = default;

SealkitPlugin::~SealkitPlugin() = default;

bool SealkitPlugin::initialize(const QStringList & /*arguments*/, QString * /*errorString*/)
{
    watchIdeClosing();
    registerOptionsCategory();
    loadTranslations();
    addSignPackagesAction();
    new SignOptionsPage(this);
    watchBuildEngines();
    return true;
}

void SealkitPlugin::extensionsInitialized()
{
    m_projectListener = std::make_unique<ProjectListener>();
}

ExtensionSystem::IPlugin::ShutdownFlag SealkitPlugin::aboutToShutdown()
{
    return SynchronousShutdown;
}

void SealkitPlugin::registerOptionsCategory()
{
    const Utils::Icon icon(
        {{Kiln::Constants::KILN_OPTIONS_CATEGORY_ICON, Utils::Theme::IconsBaseColor}});
    Core::IOptionsPage::registerCategory(
        Constants::KILN_OPTIONS_CATEGORY, Brisk::Sdk::osVariant(), icon.imageFilePath());
}

void SealkitPlugin::loadTranslations()
{
    const QVariant language =
        ExtensionSystem::PluginManager::settings()->value("General/OverrideLanguage");
    const QLocale locale = language.metaType().isValid() ? QLocale(language.toString()) : QLocale();
    auto *translator = new QTranslator(this);
    const auto load = [translator, &locale](const QString &directory) {
        return translator->load(locale, QStringLiteral("Sealkit"), QStringLiteral("_"), directory);
    };
    if (load(Core::ICore::resourcePath(QStringLiteral("translations")).toFSPathString())
        || load(QStringLiteral(":/sealkit/translations"))) {
        QCoreApplication::installTranslator(translator);
    }
}

void SealkitPlugin::addSignPackagesAction()
{
    auto *action = new QAction(tr("&Sign Packages"), this);
    connect(action, &QAction::triggered, this, &SealkitPlugin::showSignDialog);
    Core::Command *command = Core::ActionManager::registerAction(
        action, Constants::SIGN_DIALOG_ACTION_ID, Core::Context(Core::Constants::C_GLOBAL));
    Core::ActionManager::createMenu(Constants::KILN_TOOLS_MENU)->addAction(command);
}

void SealkitPlugin::showSignDialog()
{
    if (!m_signDialog)
        m_signDialog = std::make_unique<SignDialog>(Core::ICore::mainWindow());
    m_signDialog->show();
    Core::ICore::raiseWindow(m_signDialog.get());
}

void SealkitPlugin::watchBuildEngines()
{
    const QList<Brisk::BuildEngine *> engines = Brisk::Sdk::buildEngines();
    for (Brisk::BuildEngine *engine : engines) {
        connect(engine,
                &Brisk::BuildEngine::sharedSrcPathChanged,
                this,
                [this](const FilePath &path) { onSharedSrcPathChanged(path, true); });
        onSharedSrcPathChanged(engine->sharedSrcPath(), false);
    }
    if (const Brisk::BuildEngine *engine = firstBuildEngine()) {
        connect(engine, &Brisk::BuildEngine::sharedSrcPathChanged, this, followRegularKeys);
        followRegularKeys(engine->sharedSrcPath());
    }
}

void SealkitPlugin::onSharedSrcPathChanged(const FilePath &sharedSrcPath, bool printUserLog)
{
    // For an engine without a workspace, the keys would land in the working directory.
    if (sharedSrcPath.isEmpty())
        return;

    const QDir workspace(sharedSrcPath.absoluteFilePath().toFSPathString());
    qCDebug(debugLog) << "[SealkitPlugin] Copy keys to:" << workspace.path();

    const QLatin1String keysFolder(Constants::PREINSTALL_KEY_FOLDER_UNDER_WORKSPACE);
    if (!workspace.exists(keysFolder)) {
        // Whatever the user's mask allows, others may read the keys but not add any.
        const bool created = workspace.mkdir(keysFolder, KEYS_FOLDER_PERMISSIONS);
        qCDebug(debugLog).nospace().noquote()
            << "[SealkitPlugin] Dir created: " << (created ? "true" : "false") << ". "
            << workspace.path();
    }

    const FilePath keysPath = sharedSrcPath / keysFolder;
    const auto copyToWorkspace = [&](const char *fileName) {
        return copyDefault(fileName, keysPath / QLatin1String(fileName));
    };
    if (copyToWorkspace(Constants::PREINSTALL_KEY_NAME)
        && copyToWorkspace(Constants::PREINSTALL_CERT_NAME)) {
        return;
    }
    if (!printUserLog)
        return;
    Core::MessageManager::writeDisrupting(
        tr("[E] Failed to copy regular keys:\t%1").arg(keysPath.toUserOutput()));
    Core::MessageManager::writeDisrupting(
        tr("[W] Please make sure that the '%1' is writable and restart the ide")
            .arg(sharedSrcPath.toUserOutput()));
    Core::MessageManager::writeDisrupting(tr("[W] OR"));
    Core::MessageManager::writeDisrupting(
        tr("[W] Specify the path to the default signature keys in the settings"));
}

bool SealkitPlugin::copyDefault(const char *fileName, const FilePath &destination)
{
    if (destination.exists())
        return true;
    const FilePath source =
        FilePath::fromString(QStringList{Brisk::Sdk::installationPath(),
                                         QLatin1String(Constants::PREINSTALL_KEY_FOLDER),
                                         QLatin1String(fileName)}
                                 .join(QLatin1Char('/')));

    Utils::FileUtils::CopyAskingForOverwrite copyHelper;
    QString error;
    const bool copied =
        Utils::FileUtils::copyRecursively(source, destination, &error, copyHelper());
    if (!copied)
        qCDebug(debugLog) << "[SealkitPlugin] Failed to copy" << source << ":" << error;
    return copied;
}

} // namespace Sealkit::Internal
