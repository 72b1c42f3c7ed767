#pragma once

#include <QStringList>
#include <QTemporaryDir>

/// Stands in for brisk: notes the words behind the target of each call, and ends with the next of
/// the given exit codes.
class RecordingBrisk
{
public:
    /// Becomes the brisk of the settings.
    RecordingBrisk();

    /// One code per line; when they are used up, calls succeed.
    void endWith(const QByteArray &codes) const;
    /// The next calls leave a file.
    void leaveBehind(const QString &path, const QByteArray &content) const;
    /// The calls since the last time, each with "|" between its words.
    QStringList takeCalls() const;
    /// Where the last call ran.
    QString folderOfLastCall() const;

private:
    QTemporaryDir m_folder;
};
