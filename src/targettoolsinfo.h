#pragma once

#include <QString>

namespace Sealkit::Internal {

/// Which tools a build target has.
struct TargetToolsInfo
{
    TargetToolsInfo() = default;
    /// Runs the tools in \a target to find out.
    explicit TargetToolsInfo(const QString &target);

    /// Looks for openssl again, and only for openssl.
    void updateOpensslState();

    QString name;
    bool hasRpmsignExternal = false;
    bool hasCustomerSign = false; ///< not looked for beside rpmsign-external
    bool hasNxvcertCli = false;   ///< not looked for beside rpmsign-external
    bool hasOpenssl = false;

    friend bool operator==(const TargetToolsInfo &, const TargetToolsInfo &) = default;
};

} // namespace Sealkit::Internal
