#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>

namespace Sealkit::Internal {

/// Notices when a package changes on disk, or a file beside it whose name is that of the package
/// and an ending, such as a signature. The package need not exist yet.
class PackageWatch : public QObject
{
    Q_OBJECT

public:
    PackageWatch();

    /// Watches \a package from now on; an empty path watches nothing.
    void lookAt(const QString &package);
    /// Compares the files with their last state at once, since some file systems announce no
    /// changes.
    void compare();
    /// Paths, sizes and times of the package's files when they were last compared.
    QStringList lastState() const { return m_lastState; }

signals:
    void changed();

private:
    QStringList files() const;
    QStringList stateOfFiles() const;
    void followFiles();

    QString m_package;
    QStringList m_lastState;
    QFileSystemWatcher m_watcher;
    QTimer m_timer;
};

} // namespace Sealkit::Internal
