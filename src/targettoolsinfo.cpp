#include "targettoolsinfo.h"

#include "command.h"

namespace Sealkit::Internal {

using Command::Target;

/// Of a tool that was started, the exit code alone decides: a crash on the way out makes no
/// difference.
template<typename Help>
static bool showsHelp(const QString &target)
{
    const Command::Result result = Command::exec<Help>({}, target);
    return result.started && result.exitCode == 0;
}

TargetToolsInfo::TargetToolsInfo(const QString &target)
    : name(target)
{
    hasRpmsignExternal = Command::exec<Target::rpmsign_external::version>({}, target).succeeded();
    if (!hasRpmsignExternal) {
        hasCustomerSign = showsHelp<Target::customer_sign::help>(target);
        hasNxvcertCli = showsHelp<Target::nxvcert_cli::help>(target);
    }
    updateOpensslState();
}

void TargetToolsInfo::updateOpensslState()
{
    hasOpenssl = Command::exec<Target::openssl::version>({}, name).succeeded();
}

} // namespace Sealkit::Internal
