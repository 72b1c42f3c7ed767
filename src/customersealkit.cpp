#include "customersealkit.h"

#include "signdata.h"

namespace Sealkit::Internal {

using Command::Target;

CustomerSealkit::CustomerSealkit(QObject *parent)
    : SignTool(parent)
{
}

Command::Result CustomerSealkit::addSignature(const QString &target,
                                              const QStringList &packages,
                                              const SignData &data)
{
    return Command::exec<Target::customer_sign::sign>(m_handler, target, data, packages);
}

Command::Result CustomerSealkit::removeSignature(const QString &target, const QStringList &packages)
{
    return Command::exec<Target::nxvcert_cli::remove>(m_handler, target, packages);
}

Command::Result CustomerSealkit::verifySignature(const QString &target,
                                                 const QStringList &packages,
                                                 const SignData &data)
{
    return Command::exec<Target::nxvcert_cli::verify>(
        m_handler, target, data.rootCertificate, packages);
}

Command::Result CustomerSealkit::dumpSignature(const QString &target, const QStringList &packages)
{
    return Command::exec<Target::nxvcert_cli::dump>(m_handler, target, packages);
}

Command::Result CustomerSealkit::generateRequest(const QString & /*target*/,
                                                 const KeyGenerationData & /*data*/)
{
    return {.crashed = false, .exitCode = -1, .stdErr = {}, .stdOut = {}};
}

} // namespace Sealkit::Internal
