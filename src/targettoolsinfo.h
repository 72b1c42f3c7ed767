#pragma once

#include <QString>

namespace Sealkit::Internal {

/// Which tools a build target has.
struct TargetToolsInfo
{
    TargetToolsInfo() = default;
    /// Finds out by running the tools in the target.
    explicit TargetToolsInfo(const QString &target);

    /// Looks for openssl again; the rest stays as it is.
    void updateOpensslState();

    QString name;
    bool hasRpmsignExternal = false;
    bool hasCustomerSign = false; ///< not looked for beside rpmsign-external
    bool hasNxvcertCli = false;   ///< not looked for beside rpmsign-external
    bool hasOpenssl = false;

    friend bool operator==(const TargetToolsInfo &, const TargetToolsInfo &) = default;
};

} // namespace Sealkit::Internal
