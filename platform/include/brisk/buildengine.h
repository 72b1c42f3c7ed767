#pragma once

#include <brisk/brisk_global.h>
#include <brisk/buildtargetdata.h>

#include <utils/filepath.h>

#include <QList>
#include <QObject>
#include <QStringList>

namespace Brisk {

/// The place where packages are built: its targets, and the folders it shares with the host.
class BRISK_EXPORT BuildEngine : public QObject
{
    Q_OBJECT

public:
    BuildEngine(const QString &name, const Utils::FilePath &directory);

    QString name() const { return m_name; }

    Utils::FilePath sharedHomePath() const { return m_sharedHomePath; }
    void setSharedHomePath(const Utils::FilePath &path) { m_sharedHomePath = path; }
    /// The workspace: all that tools in the engine see of the host's sources.
    Utils::FilePath sharedSrcPath() const { return m_sharedSrcPath; }
    void setSharedSrcPath(const Utils::FilePath &path);

    /// The names of the targets, newest version first.
    QStringList buildTargetOrigins() const;
    /// Invalid when there is no such target.
    BuildTargetData buildTarget(const QString &name) const;

signals:
    void sharedSrcPathChanged(const Utils::FilePath &path);

private:
    QString m_name;
    Utils::FilePath m_directory;
    Utils::FilePath m_sharedHomePath;
    Utils::FilePath m_sharedSrcPath;
};

} // namespace Brisk
