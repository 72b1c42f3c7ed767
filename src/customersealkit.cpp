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
    return run<Target::customer_sign::sign>(target, data, packages);
}

Command::Result CustomerSealkit::removeSignature(const QString &target, const QStringList &packages)
{
    return run<Target::nxvcert_cli::remove>(target, packages);
}

Command::Result CustomerSealkit::verifySignature(const QString &target,
                                                 const QStringList &packages,
                                                 const SignData &data)
{
    return run<Target::nxvcert_cli::verify>(target, data.rootCertificate, packages);
}

Command::Result CustomerSealkit::dumpSignature(const QString &target, const QStringList &packages)
{
    return run<Target::nxvcert_cli::dump>(target, packages);
}

Command::Result CustomerSealkit::generateRequest(const QString & /*target*/,
                                                 const KeyGenerationData & /*data*/)
{
    return {.crashed = false, .exitCode = -1, .stdErr = {}, .stdOut = {}};
}

} // namespace Sealkit::Internal
