#pragma once

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>

namespace Sealkit::Internal {

/// Differs when a file has changed, also when another one of the same size and date took its place.
struct FileState
{
    QString path;
    QDateTime metadataChanged; ///< a change of the content is also one of the metadata

    friend bool operator==(const FileState &, const FileState &) = default;
};

/// A package and what lies beside it under its name and an ending, and the root certificates that
/// it is judged by.
struct PackageState
{
    QString package;
    QString root;
    QList<FileState> files;

    friend bool operator==(const PackageState &, const PackageState &) = default;
};

/// Notices when a package changes on disk, or a file beside it whose name is that of the package
/// and an ending, such as a signature, or the root certificates. None of them need exist yet.
class PackageWatch : public QObject
{
    Q_OBJECT

public:
    PackageWatch();

    /// Watches \a package and the file \a root from now on; an empty path watches nothing.
    void lookAt(const QString &package, const QString &root);
    /// Compares the files with their last state at once, since some file systems announce no
    /// changes.
    void compare();
    /// Of the package when it was last compared.
    PackageState lastState() const { return m_lastState; }

signals:
    void changed();

private:
    QStringList files() const;
    PackageState currentState() const;
    void followFiles();

    QString m_package;
    QString m_root;
    PackageState m_lastState;
    QFileSystemWatcher m_watcher;
    QTimer m_timer;
};

} // namespace Sealkit::Internal
