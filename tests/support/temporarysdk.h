#pragma once

#include <QTemporaryDir>

/// A demo SDK of its own, with fresh keys, that goes with this object. The test program ends when
/// it cannot be made.
class TemporarySdk
{
public:
    TemporarySdk();

    /// The installation folder.
    QString path() const { return m_folder.path(); }
    /// The build engine's shared source folder.
    QString workspace() const { return m_folder.filePath(QStringLiteral("workspace")); }

private:
    QTemporaryDir m_folder;
};
