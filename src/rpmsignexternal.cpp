#include "rpmsignexternal.h"

#include "signdata.h"

#include <QFile>
#include <QPointer>

namespace Sealkit::Internal {

using Target = Command::brisk::engine::target;

RpmsignExternal::RpmsignExternal(QObject *parent)
    : SignTool(parent)
{
}

Command::Result RpmsignExternal::addSignature(const QString &target,
                                              const QStringList &packages,
                                              const SignData &data)
{
    // A copy: this object may be gone after the first run.
    const Command::Handler handler = m_handler;
    const Command::Result result = Command::exec<Target::rpmsign_external::sign>(
        handler, target, data.key, data.certificate, packages);
    if (!result.succeeded() || data.clientCertificate.isEmpty() || data.clientKey.isEmpty())
        return result;
    return Command::exec<Target::rpmsign_external::sign>(
        handler, target, data.clientKey, data.clientCertificate, packages);
}

Command::Result RpmsignExternal::removeSignature(const QString &target, const QStringList &packages)
{
    return Command::exec<Target::rpmsign_external::remove>(m_handler, target, packages);
}

Command::Result RpmsignExternal::verifySignature(const QString &target,
                                                 const QStringList &packages,
                                                 const SignData &data)
{
    return Command::exec<Target::rpmsign_external::verify>(
        m_handler, target, data.rootCertificate, packages);
}

Command::Result RpmsignExternal::dumpSignature(const QString &target, const QStringList &packages)
{
    return Command::exec<Target::rpmsign_external::dump>(m_handler, target, packages);
}

/// openssl creates a file before it asks for the pass phrase, and does not notice when the disk is
/// full. Left behind empty, it would pass for what it should hold. True if it was.
static bool removeEmptyFile(const Utils::FilePath &path)
{
    const QFileInfo info = path.toFileInfo();
    return info.isFile() && info.size() == 0 && QFile::remove(info.filePath());
}

Command::Result RpmsignExternal::generateRequest(const QString &target,
                                                 const KeyGenerationData &data)
{
    const QPointer<RpmsignExternal> self(this);
    const Command::Handler handler = m_handler;

    if (!data.keyPath.exists()) {
        const Command::Result result = Command::exec(handler, getKeyGenerationComand(target, data));
        removeEmptyFile(data.keyPath);
        if (!result.succeeded())
            return result;
    }

    QString error;
    const QFileInfo config = KeyGenerationData::generateCsrConfig(data.companyName, &error);
    if (!config.exists()) {
        if (self)
            emit addError(tr("Filed to generate CSR"));
        if (self)
            emit addError(error);
        return {.crashed = false, .exitCode = -1, .stdErr = {}, .stdOut = {}};
    }

    Command::Result result =
        Command::exec<Target::openssl::generateRequest>(handler,
                                                        target,
                                                        data.keyPath.toUserOutput(),
                                                        data.requestPath.toUserOutput(),
                                                        config.absoluteFilePath());
    QFile::remove(config.absoluteFilePath());
    if (result.succeeded() && removeEmptyFile(data.requestPath)) {
        result.exitCode = -1;
        if (self)
            emit addError(tr("Filed to generate CSR"));
    }
    return result;
}

} // namespace Sealkit::Internal
