#include "targettoolsinfo.h"

#include "command.h"

namespace Sealkit::Internal {

using Target = Command::brisk::engine::target;

TargetToolsInfo::TargetToolsInfo(const QString &target)
    : name(target)
{
    hasRpmsignExternal = Command::exec<Target::rpmsign_external::version>({}, target).succeeded();
    if (!hasRpmsignExternal) {
        // The exit code alone decides: a crash on the way out makes no difference.
        hasCustomerSign = Command::exec<Target::customer_sign::help>({}, target).exitCode == 0;
        hasNxvcertCli = Command::exec<Target::nxvcert_cli::help>({}, target).exitCode == 0;
    }
    updateOpensslState();
}

void TargetToolsInfo::updateOpensslState()
{
    hasOpenssl = Command::exec<Target::openssl::version>({}, name).succeeded();
}

} // namespace Sealkit::Internal
