#pragma once

#include <QTemporaryDir>

const QString RPMSIGN_TARGET = QStringLiteral("VeyraOS-5.1-x86_64");
const QString CUSTOMER_TARGET = QStringLiteral("VeyraOS-4.0-x86_64");
const QString BARE_TARGET = QStringLiteral("VeyraOS-3.4-x86_64");

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
    /// Where the tool \a name of a target is, or belongs.
    QString tool(const QString &name, const QString &target = RPMSIGN_TARGET) const
    {
        return m_folder.filePath("engine/targets/" + target + "/bin/" + name);
    }

private:
    QTemporaryDir m_folder;
};

/// Whether the test's row is about GOST and openssl lacks the engine for it, which Debian has up to
/// 12 only.
bool lacksGost();
