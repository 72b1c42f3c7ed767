#pragma once

#include <QFileInfo>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace Utils {

/// A path of the host's file system, kept with forward slashes as it was given.
class FilePath
{
public:
    FilePath() = default;

    /// From a string literal only; text that is not known at compile time goes through fromString()
    /// or fromUserInput().
    template<size_t N>
    FilePath(const char (&literal)[N])
        : m_path(QString::fromUtf8(literal, N - 1))
    {
    }

    static FilePath fromString(const QString &path);
    /// Expands a leading "~", takes native separators and cleans the path.
    static FilePath fromUserInput(const QString &path);

    /// The form that people are shown.
    QString toUserOutput() const;
    /// The form that Qt's file classes take.
    QString toFSPathString() const;
    /// Native separators, the home folder shortened to "~".
    QString shortNativePath() const;
    QFileInfo toFileInfo() const;

    QString fileName() const;
    FilePath parentDir() const;
    FilePath absoluteFilePath() const;
    FilePath pathAppended(const QString &path) const;
    FilePath operator/(const QString &path) const;

    bool isEmpty() const;
    bool exists() const;
    bool isFile() const;
    bool isDir() const;

    friend bool operator==(const FilePath &, const FilePath &) = default;
    friend size_t qHash(const FilePath &path, size_t seed = 0) { return qHash(path.m_path, seed); }

private:
    QString m_path;
};

using FilePaths = QList<FilePath>;

QDebug operator<<(QDebug debug, const FilePath &path);

} // namespace Utils

Q_DECLARE_METATYPE(Utils::FilePath)
