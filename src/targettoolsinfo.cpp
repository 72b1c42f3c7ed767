#include "targettoolsinfo.h"

#include "command.h"

namespace Sealkit::Internal {

using Command::Target;

/// Whether the tool is there. Only its exit code counts once it was started; it may even crash.
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
