#include <extensionsystem/pluginmanager.h>

#include <host/pluginspec.h>

#include <utils/qtcassert.h>
#include <utils/qtcsettings.h>

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>

#include <algorithm>
#include <functional>
#include <vector>

namespace ExtensionSystem {

static PluginManager *theInstance = nullptr;

class PluginManager::Private
{
public:
    void readPlugin(const QString &filePath);
    void enqueueWithDependencies(PluginSpec *spec);

    std::vector<std::unique_ptr<PluginSpec>> ownedSpecs;
    QList<PluginSpec *> specs;
    QList<PluginSpec *> loadQueue; // dependencies first
};

void PluginManager::Private::readPlugin(const QString &filePath)
{
    auto spec = std::make_unique<PluginSpec>(filePath);
    if (spec->state() == PluginSpec::Invalid && !spec->hasError())
        return; // a library, but no plugin of ours

    specs.append(spec.get());
    ownedSpecs.push_back(std::move(spec));
}

void PluginManager::Private::enqueueWithDependencies(PluginSpec *spec)
{
    if (spec->hasError() || loadQueue.contains(spec))
        return;
    const QList<PluginSpec *> dependencies = spec->dependencySpecs();
    for (PluginSpec *dependency : dependencies)
        enqueueWithDependencies(dependency);
    loadQueue.append(spec);
}

PluginManager::PluginManager()
    : d(std::make_unique<Private>())
{
    QTC_CHECK(!theInstance);
    theInstance = this;
}

PluginManager::~PluginManager()
{
    shutdown();
    theInstance = nullptr;
}

PluginManager *PluginManager::instance()
{
    return theInstance;
}

Utils::QtcSettings *PluginManager::settings()
{
    static std::unique_ptr<Utils::QtcSettings> theSettings;
    if (!theSettings) {
        theSettings = std::make_unique<Utils::QtcSettings>();
        // What was set last is to be written while there still is an application.
        qAddPostRoutine([] { theSettings.reset(); });
    }
    return theSettings.get();
}

void PluginManager::setPluginPaths(const Utils::FilePaths &paths)
{
    Private *d = theInstance->d.get();
    QTC_ASSERT(d->loadQueue.isEmpty(), return );
    d->specs.clear();
    d->ownedSpecs.clear();
    for (const Utils::FilePath &path : paths) {
        const QFileInfoList files =
            QDir(path.toFSPathString()).entryInfoList(QDir::Files, QDir::Name);
        for (const QFileInfo &file : files) {
            if (QLibrary::isLibrary(file.fileName()))
                d->readPlugin(file.absoluteFilePath());
        }
    }
}

void PluginManager::loadPlugins(const QStringList &arguments)
{
    Private *d = theInstance->d.get();
    for (PluginSpec *spec : std::as_const(d->specs))
        spec->resolveDependencies(d->specs);
    for (PluginSpec *spec : std::as_const(d->specs))
        d->enqueueWithDependencies(spec);

    // A plugin may turn the event loop, and with it come to shutdown(), while it is called.
    const QList<PluginSpec *> queue = d->loadQueue;
    for (PluginSpec *spec : queue)
        spec->load();
    for (PluginSpec *spec : queue)
        spec->initialize(arguments);
    std::for_each(queue.rbegin(), queue.rend(), std::mem_fn(&PluginSpec::extensionsInitialized));
}

void PluginManager::shutdown()
{
    const QList<PluginSpec *> queue = std::exchange(theInstance->d->loadQueue, {});
    std::for_each(queue.rbegin(), queue.rend(), std::mem_fn(&PluginSpec::stop));
    std::for_each(queue.rbegin(), queue.rend(), std::mem_fn(&PluginSpec::kill));
}

const QList<PluginSpec *> PluginManager::plugins()
{
    return theInstance->d->specs;
}

} // namespace ExtensionSystem
