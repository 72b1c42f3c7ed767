#include <brisk/sdk.h>

#include "installation.h"

#include <brisk/buildengine.h>

#include <QCoreApplication>
#include <QDir>
#include <QSettings>

#include <memory>
#include <vector>

namespace Brisk {

constexpr char CONFIGURATION_FILE[] = "sdk.ini";
constexpr char OS_VARIANT_KEY[] = "OsVariant";
constexpr char ENGINE_NAME_KEY[] = "BuildEngine/Name";
constexpr char SHARED_HOME_KEY[] = "BuildEngine/SharedHome";
constexpr char SHARED_SOURCE_KEY[] = "BuildEngine/SharedSource";
constexpr char DEFAULT_OS_VARIANT[] = "Veyra OS";

namespace {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(Brisk)
};

struct Installation
{
    QString path;
    QString osVariant = QLatin1String(DEFAULT_OS_VARIANT);
    std::vector<std::unique_ptr<BuildEngine>> engines;
};

} // namespace

static Installation &installation()
{
    static Installation theInstallation;
    return theInstallation;
}

static QString configurationFile(const QString &sdkPath)
{
    return QDir(sdkPath).filePath(QLatin1String(CONFIGURATION_FILE));
}

static std::unique_ptr<BuildEngine> readEngine(const QSettings &configuration, const QDir &sdk)
{
    const QString name = configuration.value(QLatin1String(ENGINE_NAME_KEY)).toString();
    if (name.isEmpty())
        return nullptr;
    const auto folder = [&](const char *key) {
        const QString path = configuration.value(QLatin1String(key)).toString();
        return path.isEmpty()
                   ? Utils::FilePath()
                   : Utils::FilePath::fromString(QDir::cleanPath(sdk.absoluteFilePath(path)));
    };
    const QString directory = sdk.filePath(QLatin1String("engine"));
    auto engine = std::make_unique<BuildEngine>(name, Utils::FilePath::fromString(directory));
    engine->setSharedHomePath(folder(SHARED_HOME_KEY));
    engine->setSharedSrcPath(folder(SHARED_SOURCE_KEY));
    return engine;
}

QString Sdk::installationPath()
{
    return installation().path;
}

QString Sdk::osVariant()
{
    return installation().osVariant;
}

QList<BuildEngine *> Sdk::buildEngines()
{
    QList<BuildEngine *> engines;
    for (const std::unique_ptr<BuildEngine> &engine : installation().engines)
        engines.append(engine.get());
    return engines;
}

bool openInstallation(const Utils::FilePath &path, QString *errorMessage)
{
    const QDir sdk(QDir::cleanPath(path.absoluteFilePath().toFSPathString()));
    const QString file = configurationFile(sdk.path());
    if (!QFileInfo(file).isFile()) {
        *errorMessage = Tr::tr("\"%1\" is no SDK: it has no file \"%2\".")
                            .arg(path.toUserOutput(), QLatin1String(CONFIGURATION_FILE));
        return false;
    }
    const QSettings configuration(file, QSettings::IniFormat);
    if (configuration.status() != QSettings::NoError) {
        *errorMessage = Tr::tr("Cannot read the SDK's configuration \"%1\".").arg(file);
        return false;
    }

    Installation opened;
    opened.path = sdk.path();
    opened.osVariant =
        configuration.value(QLatin1String(OS_VARIANT_KEY), opened.osVariant).toString();
    if (auto engine = readEngine(configuration, sdk))
        opened.engines.push_back(std::move(engine));
    installation() = std::move(opened);
    return true;
}

void closeInstallation()
{
    installation() = {};
}

bool saveSharedSrcPath(BuildEngine *engine, QString *errorMessage)
{
    const QString file = configurationFile(installation().path);
    QSettings configuration(file, QSettings::IniFormat);
    configuration.setValue(QLatin1String(SHARED_SOURCE_KEY),
                           engine->sharedSrcPath().toFSPathString());
    configuration.sync();
    if (configuration.status() == QSettings::NoError)
        return true;
    *errorMessage = Tr::tr("Cannot write the SDK's configuration \"%1\".").arg(file);
    return false;
}

} // namespace Brisk
