#include <utils/fileutils.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QSaveFile>

#include <algorithm>

namespace Utils {

static QString tr(const char *text)
{
    return QCoreApplication::translate("QtC::Utils", text);
}

static bool copyFails(const FilePath &source,
                      const FilePath &destination,
                      const QString &reason,
                      QString *error)
{
    if (error) {
        *error = tr("Could not copy file \"%1\" to \"%2\".")
                     .arg(source.toUserOutput(), destination.toUserOutput());
        if (!reason.isEmpty())
            *error += ' ' + reason;
    }
    return false;
}

static bool copyContents(QFile *from, QSaveFile *to)
{
    constexpr qint64 CHUNK_BYTES = 1 << 20;
    while (!from->atEnd()) {
        const QByteArray chunk = from->read(CHUNK_BYTES);
        if (chunk.isEmpty() || to->write(chunk) != chunk.size())
            return false;
    }
    return true;
}

// A destination that is there keeps its content unless the whole of the new one could be written.
static bool replaceFile(const FilePath &source, const FilePath &destination, QString *error)
{
    QFile from(source.toFSPathString());
    if (!from.open(QIODevice::ReadOnly))
        return copyFails(source, destination, from.errorString(), error);

    QSaveFile to(destination.toFSPathString());
    if (!to.open(QIODevice::WriteOnly))
        return copyFails(source, destination, to.errorString(), error);

    to.setPermissions(from.permissions());
    if (!copyContents(&from, &to)) {
        const bool readFailed = from.error() != QFileDevice::NoError;
        return copyFails(
            source, destination, readFailed ? from.errorString() : to.errorString(), error);
    }
    return to.commit() || copyFails(source, destination, to.errorString(), error);
}

FileUtils::CopyAskingForOverwrite::CopyAskingForOverwrite(
    const std::function<void(FilePath)> &postOperation)
    : m_postOperation(postOperation)
{
}

FileUtils::CopyHelper FileUtils::CopyAskingForOverwrite::operator()()
{
    return [this](const FilePath &source, const FilePath &destination, QString *error) {
        return copyFile(source, destination, error);
    };
}

bool FileUtils::CopyAskingForOverwrite::copyFile(const FilePath &source,
                                                 const FilePath &destination,
                                                 QString *error)
{
    if (destination.exists() && m_answer == Answer::AskEachTime) {
        const int button = QMessageBox::question(
            QApplication::activeWindow(),
            tr("Overwrite File?"),
            tr("Overwrite existing file \"%1\"?").arg(destination.toUserOutput()),
            QMessageBox::Yes | QMessageBox::YesToAll | QMessageBox::No | QMessageBox::NoToAll
                | QMessageBox::Cancel,
            QMessageBox::No);
        if (button == QMessageBox::Cancel)
            return copyFails(source, destination, tr("It was canceled."), error);
        if (button == QMessageBox::No)
            return true;
        if (button == QMessageBox::YesToAll)
            m_answer = Answer::AllYes;
        if (button == QMessageBox::NoToAll)
            m_answer = Answer::AllNo;
    }
    if (destination.exists() && m_answer == Answer::AllNo)
        return true;

    if (!replaceFile(source, destination, error))
        return false;
    if (m_postOperation)
        m_postOperation(destination);
    return true;
}

bool FileUtils::copyRecursively(const FilePath &source,
                                const FilePath &destination,
                                QString *error,
                                CopyHelper helper)
{
    if (!source.exists())
        return copyFails(source, destination, tr("There is no such file."), error);

    const FilePath folder =
        source.isDir() ? destination : destination.absoluteFilePath().parentDir();
    const QDir sourceDir(source.toFSPathString());
    const QStringList names =
        sourceDir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    if (!QDir().mkpath(folder.toFSPathString())) {
        const QString reason = tr("The folder \"%1\" cannot be created.");
        return copyFails(source, destination, reason.arg(folder.toUserOutput()), error);
    }
    if (!source.isDir())
        return helper(source, destination, error);
    return std::all_of(names.begin(), names.end(), [&](const QString &name) {
        return copyRecursively(source / name, destination / name, error, helper);
    });
}

} // namespace Utils
