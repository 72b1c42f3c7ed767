#include "signdata.h"

#include "command.h"
#include "utils.h"

#include <brisk/buildengine.h>

#include <QDateTime>
#include <QFile>
#include <QObject>

#include <algorithm>

namespace Sealkit::Internal {

/// Whether the paths that a back end needs are given and lie in \a workspace; otherwise sets
/// \a error.
static bool areUsable(const QStringList &paths,
                      const Utils::FilePath &workspace,
                      const QString &emptyText,
                      const QString &outsideText,
                      QString *error)
{
    const auto isInside = [&](const QString &path) { return isFileChildOf(path, workspace); };
    const bool isAnyEmpty = paths.contains(QString());
    if (!isAnyEmpty && std::all_of(paths.begin(), paths.end(), isInside))
        return true;
    *error = isAnyEmpty ? emptyText : outsideText.arg(workspace.shortNativePath());
    return false;
}

template<>
bool SignData::isValid<RpmsignExternal>(const Utils::FilePath &workspace, QString *error) const
{
    return areUsable({key, certificate},
                     workspace,
                     QObject::tr("Error: key and certificate can't be empty"),
                     QObject::tr("Error: key and certificate must be inside workspace folder: %1"),
                     error);
}

template<>
bool SignData::isValid<CustomerSealkit>(const Utils::FilePath &workspace, QString *error) const
{
    return areUsable({binariesKey, key, certificate},
                     workspace,
                     QObject::tr("Error: keys and certificate can't be empty"),
                     QObject::tr("Error: keys and certificate must be inside workspace folder: %1"),
                     error);
}

static QByteArray csrConfig(const QString &companyName)
{
    QByteArray config("[ req ]\n"
                      " distinguished_name = req_distinguished_name\n"
                      " prompt = no\n"
                      " string_mask = utf8only\n"
                      " x509_extensions = v3_usr\n"
                      " \n"
                      "[ req_distinguished_name ]\n"
                      " CN = %COMPANY_NAME%\n"
                      " \n"
                      "[ v3_usr ]\n"
                      " basicConstraints=critical,CA:FALSE\n"
                      " keyUsage=digitalSignature\n"
                      " subjectKeyIdentifier=hash\n"
                      " authorityKeyIdentifier=keyid\n");
    // As it stands, an apostrophe would begin a text in quotes.
    return config.replace("%COMPANY_NAME%", companyName.toUtf8().replace("'", "\\'"));
}

QFileInfo KeyGenerationData::generateCsrConfig(const QString &companyName, QString *error)
{
    const Brisk::BuildEngine *engine = firstBuildEngine();
    if (!engine) {
        *error = QObject::tr("No Build Engine found");
        return {};
    }

    const QString fileName =
        QStringLiteral("/.csr_%1.conf")
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("mmssz")));
    QFile file(engine->sharedSrcPath().toFSPathString() + fileName);
    const QFileInfo info(file);
    // Unbuffered, so that write() already fails when the disk is full.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        *error = QObject::tr("Could not open %1 for writing: %2.")
                     .arg(info.absoluteFilePath(), file.errorString());
        return {};
    }
    if (file.write(csrConfig(companyName)) < 1) {
        *error = QObject::tr("Could not write data to %1: %2.")
                     .arg(info.absoluteFilePath(), file.errorString());
        return {};
    }
    file.close();
    return info;
}

QStringList getKeyGenerationComand(const QString &target, const KeyGenerationData &data)
{
    using Openssl = Command::Target::openssl;
    switch (data.algorithm) {
    case RSA:
        return Command::compose<Openssl::generateKeyRSA>(
            target, data.keyPath.toUserOutput(), data.encrypt);
    case GOST:
        return Command::compose<Openssl::generateKeyGost>(
            target, data.keyPath.toUserOutput(), data.encrypt);
    }
    return {};
}

} // namespace Sealkit::Internal
