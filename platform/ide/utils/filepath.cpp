#include <utils/filepath.h>

#include <QDebug>
#include <QDir>

namespace Utils {

FilePath FilePath::fromString(const QString &path)
{
    FilePath result;
    result.m_path = path;
    return result;
}

FilePath FilePath::fromUserInput(const QString &path)
{
    QString expanded = QDir::fromNativeSeparators(path);
    if (expanded == QLatin1String("~") || expanded.startsWith(QLatin1String("~/")))
        expanded.replace(0, 1, QDir::homePath());
    return fromString(expanded.isEmpty() ? QString() : QDir::cleanPath(expanded));
}

QString FilePath::toUserOutput() const
{
    return QDir::toNativeSeparators(m_path);
}

QString FilePath::toFSPathString() const
{
    return m_path;
}

QString FilePath::shortNativePath() const
{
    const QString home = QDir::homePath();
    if (m_path == home || m_path.startsWith(home + '/'))
        return QDir::toNativeSeparators('~' + m_path.mid(home.size()));
    return toUserOutput();
}

QFileInfo FilePath::toFileInfo() const
{
    return QFileInfo(m_path);
}

QString FilePath::fileName() const
{
    return m_path.mid(m_path.lastIndexOf('/') + 1);
}

FilePath FilePath::parentDir() const
{
    if (m_path.isEmpty() || QDir(m_path).isRoot())
        return {};
    return fromString(QDir::cleanPath(m_path + "/.."));
}

FilePath FilePath::absoluteFilePath() const
{
    if (m_path.isEmpty())
        return {};
    return fromString(QDir::cleanPath(toFileInfo().absoluteFilePath()));
}

FilePath FilePath::pathAppended(const QString &path) const
{
    if (path.isEmpty())
        return *this;
    if (m_path.isEmpty())
        return fromString(path);

    QString joined = m_path;
    while (joined.endsWith('/'))
        joined.chop(1);
    if (!path.startsWith('/'))
        joined += '/';
    return fromString(joined + path);
}

FilePath FilePath::operator/(const QString &path) const
{
    return pathAppended(path);
}

bool FilePath::isEmpty() const
{
    return m_path.isEmpty();
}

bool FilePath::exists() const
{
    return !isEmpty() && QFileInfo::exists(m_path);
}

bool FilePath::isFile() const
{
    return !isEmpty() && toFileInfo().isFile();
}

bool FilePath::isDir() const
{
    return !isEmpty() && toFileInfo().isDir();
}

QDebug operator<<(QDebug debug, const FilePath &path)
{
    return debug << path.toUserOutput();
}

} // namespace Utils
