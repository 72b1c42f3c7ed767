#include "rpmsignexternal.h"

#include "signdata.h"

#include <QFile>
#include <QPointer>

namespace Sealkit::Internal {

using Command::Target;

RpmsignExternal::RpmsignExternal(QObject *parent)
    : SignTool(parent)
{
}

Command::Result RpmsignExternal::addSignature(const QString &target,
                                              const QStringList &packages,
                                              const SignData &data)
{
    // After the first run this object may be gone, and so may the caller with the arguments.
    const QPointer<const SignTool> self(this);
    const bool signsTwice = !data.clientCertificate.isEmpty() && !data.clientKey.isEmpty();
    const QStringList secondCommandLine = Command::compose<Target::rpmsign_external::sign>(
        target, data.clientKey, data.clientCertificate, packages);

    const Command::Result result =
        run<Target::rpmsign_external::sign>(target, data.key, data.certificate, packages);
    return result.succeeded() && signsTwice ? run(self, secondCommandLine) : result;
}

Command::Result RpmsignExternal::removeSignature(const QString &target, const QStringList &packages)
{
    return run<Target::rpmsign_external::remove>(target, packages);
}

Command::Result RpmsignExternal::verifySignature(const QString &target,
                                                 const QStringList &packages,
                                                 const SignData &data)
{
    return run<Target::rpmsign_external::verify>(target, data.rootCertificate, packages);
}

Command::Result RpmsignExternal::dumpSignature(const QString &target, const QStringList &packages)
{
    return run<Target::rpmsign_external::dump>(target, packages);
}

/// Removes the file at \a path if it is empty; true if so. openssl creates its file before it asks
/// for the pass phrase, and does not notice a full disk. An empty file would pass for a key or a
/// request.
static bool removeEmptyFile(const Utils::FilePath &path)
{
    const QFileInfo info = path.toFileInfo();
    return info.isFile() && info.size() == 0 && QFile::remove(info.filePath());
}

Command::Result RpmsignExternal::generateRequest(const QString &callersTarget,
                                                 const KeyGenerationData &callersData)
{
    // After a run this object may be gone, and so may the caller with the arguments.
    const QPointer<const SignTool> self(this);
    const QString target = callersTarget; // NOLINT(performance-unnecessary-copy-initialization)
    const KeyGenerationData data = callersData;

    if (!data.keyPath.exists()) {
        const Command::Result result = run(self,
                                           getKeyGenerationComand(target, data),
                                           handlerForNewKey(data.keyPath.toUserOutput()));
        removeEmptyFile(data.keyPath);
        if (!result.succeeded())
            return result;
    }

    QString error;
    const QFileInfo config = KeyGenerationData::generateCsrConfig(data.companyName, &error);
    if (!config.exists()) {
        for (const QString &text : {tr("Filed to generate CSR"), error}) {
            if (self)
                emit addError(text);
        }
        return {.crashed = false, .exitCode = -1, .stdErr = {}, .stdOut = {}};
    }

    Command::Result result =
        run(self,
            Command::compose<Target::openssl::generateRequest>(target,
                                                               data.keyPath.toUserOutput(),
                                                               data.requestPath.toUserOutput(),
                                                               config.absoluteFilePath()));
    QFile::remove(config.absoluteFilePath());
    if (result.succeeded() && removeEmptyFile(data.requestPath)) {
        result.exitCode = -1;
        result.stdErr += tr("The request is empty; is the disk full?").toUtf8();
    }
    return result;
}

} // namespace Sealkit::Internal
