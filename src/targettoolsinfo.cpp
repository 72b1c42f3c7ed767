#include "targettoolsinfo.h"

#include "command.h"

namespace Sealkit::Internal {

using Command::Target;

/// Whether the tool is there. Only its exit code counts once it was started; it may even crash.
template<typename Help>
static bool showsHelp(const QString &target, const std::stop_token &stop)
{
    const Command::Result result = Command::exec({}, Command::compose<Help>(target), stop);
    return result.started && result.exitCode == 0;
}

template<typename Version>
static bool tellsVersion(const QString &target, const std::stop_token &stop)
{
    return Command::exec({}, Command::compose<Version>(target), stop).succeeded();
}

TargetToolsInfo::TargetToolsInfo(const QString &target, const std::stop_token &stop)
    : name(target)
{
    // After the first run the caller may be gone, and so may its text.
    hasRpmsignExternal = tellsVersion<Target::rpmsign_external::version>(name, stop);
    if (!hasRpmsignExternal) {
        hasCustomerSign = showsHelp<Target::customer_sign::help>(name, stop);
        hasNxvcertCli = showsHelp<Target::nxvcert_cli::help>(name, stop);
    }
    updateOpensslState(stop);
}

void TargetToolsInfo::updateOpensslState(const std::stop_token &stop)
{
    hasOpenssl = tellsVersion<Target::openssl::version>(name, stop);
}

} // namespace Sealkit::Internal
