#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>

namespace Sealkit::Internal {

/// Notices when a package that somebody has looked at changes on disk, or what lies beside it under
/// its name and an ending, as signatures do. A package that is not there yet is waited for.
class PackageWatch : public QObject
{
    Q_OBJECT

public:
    PackageWatch();

    /// Somebody looks at \a package now: what changes from here on is news. An empty path: at none.
    void lookAt(const QString &package);
    /// Compares at once. For file systems that tell nobody of changes.
    void compare();
    /// Of the package's files, as it was seen last.
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
