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

    const bool known = std::ranges::any_of(
        specs, [&](const PluginSpec *other) { return other->id() == spec->id(); });
    if (known && !spec->hasError())
        spec->fail(PluginManager::tr("The plugin \"%1\" is installed twice.").arg(spec->id()));
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

/// The ids of the plugins on the way \a from one \a to the other; empty when there is no way.
static QStringList
dependencyPath(const PluginSpec *from, const PluginSpec *to, QList<const PluginSpec *> *visited)
{
    const QList<PluginSpec *> dependencies = from->dependencySpecs();
    for (const PluginSpec *dependency : dependencies) {
        if (dependency == to)
            return {to->id()};
        if (visited->contains(dependency))
            continue;
        visited->append(dependency);
        const QStringList rest = dependencyPath(dependency, to, visited);
        if (!rest.isEmpty())
            return QStringList{dependency->id()} + rest;
    }
    return {};
}

static void failIfCircular(PluginSpec *spec)
{
    QList<const PluginSpec *> visited;
    const QStringList loop = dependencyPath(spec, spec, &visited);
    if (!loop.isEmpty())
        spec->fail(PluginManager::tr("It depends on itself: %1.")
                       .arg((QStringList{spec->id()} + loop).join(QLatin1String(" -> "))));
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
        failIfCircular(spec);
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
