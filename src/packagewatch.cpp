#include "packagewatch.h"

#include <QDir>

#include <chrono>

namespace Sealkit::Internal {

/// A build changes a file many times while it writes it.
constexpr std::chrono::milliseconds DELAY{300};

PackageWatch::PackageWatch()
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(DELAY);
    connect(&m_timer, &QTimer::timeout, this, &PackageWatch::compare);
    const auto compareSoon = [this] {
        if (!m_timer.isActive())
            m_timer.start();
    };
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, compareSoon);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, compareSoon);
}

void PackageWatch::lookAt(const QString &package, const QString &root)
{
    m_package = package;
    m_root = root;
    m_lastState = currentState();
    followFiles();
}

void PackageWatch::compare()
{
    followFiles();
    const PackageState state = currentState();
    if (state == m_lastState)
        return;
    m_lastState = state;
    emit changed();
}

QStringList PackageWatch::files() const
{
    if (m_package.isEmpty())
        return {};
    const QFileInfo package(m_package);
    const QString name = package.fileName();
    QStringList paths;
    if (QFileInfo::exists(m_root))
        paths << m_root;
    for (const QString &file : package.dir().entryList(QDir::Files | QDir::Hidden)) {
        if (file == name || file.startsWith(name + QLatin1Char('.')))
            paths << package.dir().filePath(file);
    }
    return paths;
}

PackageState PackageWatch::currentState() const
{
    PackageState state{m_package, m_root, {}};
    for (const QString &path : files())
        state.files << FileState{path, QFileInfo(path).metadataChangeTime()};
    return state;
}

/// The watcher loses a file or folder that is replaced, so it also watches the nearest existing
/// folder and starts anew after each change.
void PackageWatch::followFiles()
{
    QStringList wanted = files();
    for (const QString &path : {m_package, m_root}) {
        if (path.isEmpty() || m_package.isEmpty())
            continue;
        QString folder = QFileInfo(path).absolutePath();
        while (!QFileInfo::exists(folder))
            folder = QFileInfo(folder).absolutePath();
        if (!wanted.contains(folder))
            wanted << folder;
    }
    for (const QString &path : m_watcher.files() + m_watcher.directories()) {
        if (wanted.removeAll(path) == 0)
            m_watcher.removePath(path);
    }
    if (!wanted.isEmpty())
        m_watcher.addPaths(wanted);
}

} // namespace Sealkit::Internal
