#include "requestcheck.h"

#include "keyfile.h"
#include "signdata.h"

#include <QDir>
#include <QObject>

#include <filesystem>

namespace Sealkit::Internal {

constexpr qsizetype MAX_COMPANY_NAME = 64; // characters; openssl refuses more

/// The name is written into openssl's configuration. There some signs have a meaning of their own:
/// openssl would leave them out, and some also hide the text after them. Apostrophes, which names
/// do have, are quoted.
static QString problemOfName(const QString &name)
{
    for (const char *sign : {"\"", "`", "#", "$", "\\"}) {
        if (name.contains(QLatin1String(sign)))
            return QObject::tr("Company name cannot contain %1").arg(QLatin1String(sign));
    }
    if (name.contains(QLatin1Char('\n')) || name.contains(QLatin1Char('\r')))
        return QObject::tr("Company name cannot have more than one line");
    if (name != name.trimmed())
        return QObject::tr("Company name cannot begin or end with a blank");
    if (name.toUcs4().size() > MAX_COMPANY_NAME)
        return QObject::tr("Company name cannot have more than %1 characters")
            .arg(MAX_COMPANY_NAME);
    return {};
}

/// Where the file at \a path is or would be made, with all links followed.
static QString placeOf(const QString &path)
{
    constexpr int MAX_LINKS = 40; // as many as the system follows
    QFileInfo info(path);
    for (int links = 0; info.isSymLink() && links < MAX_LINKS; ++links)
        info.setFile(info.symLinkTarget());
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? QDir::cleanPath(info.absoluteFilePath())
                            : QDir(folder).filePath(info.fileName());
}

static bool isSameFile(const QString &path, const QString &other)
{
    std::error_code none; // equivalent() would throw for a missing file
    return placeOf(path) == placeOf(other)
           || std::filesystem::equivalent(QFileInfo(path).filesystemAbsoluteFilePath(),
                                          QFileInfo(other).filesystemAbsoluteFilePath(),
                                          none);
}

QString whyNoRequest(const KeyGenerationData &request)
{
    if (request.companyName.isEmpty())
        return QObject::tr("Company name field cannot be empty");
    if (request.keyPath.isEmpty())
        return QObject::tr("Key field cannot be empty");
    if (request.requestPath.isEmpty())
        return QObject::tr("Request field cannot be empty");

    if (const QString problem = problemOfName(request.companyName); !problem.isEmpty())
        return problem;
    const QString path = request.requestPath.toFSPathString();
    if (isSameFile(request.keyPath.toFSPathString(), path))
        return QObject::tr("Key and request cannot be the same file");
    if (holdsPrivateKey(path))
        return QObject::tr("The request would overwrite the private key in %1")
            .arg(request.requestPath.toUserOutput());
    if (QFileInfo::exists(path) && !holdsRequest(path)) {
        return QObject::tr(
                   "The request would overwrite %1, which is no certificate signing request")
            .arg(request.requestPath.toUserOutput());
    }
    return {};
}

} // namespace Sealkit::Internal
