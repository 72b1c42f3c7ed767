#include <utils/fileutils.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace Utils::FileUtils {

static QString tr(const char *text)
{
    return QCoreApplication::translate("QtC::Utils", text);
}

static bool copyFile(const FilePath &source, const FilePath &destination, QString *error)
{
    QFile file(source.toFSPathString());
    if (file.copy(destination.toFSPathString()))
        return true;
    *error = tr("Could not copy file \"%1\" to \"%2\". %3")
                 .arg(source.toUserOutput(), destination.toUserOutput(), file.errorString());
    return false;
}

CopyHelper CopyAskingForOverwrite::operator()()
{
    return copyFile;
}

bool copyRecursively(const FilePath &source,
                     const FilePath &destination,
                     QString *error,
                     CopyHelper helper)
{
    QDir().mkpath(destination.absoluteFilePath().parentDir().toFSPathString());
    return helper(source, destination, error);
}

} // namespace Utils::FileUtils
