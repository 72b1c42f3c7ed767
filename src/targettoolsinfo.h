#pragma once

#include <QString>

#include <stop_token>

namespace Sealkit::Internal {

/// Which tools a build target has.
struct TargetToolsInfo
{
    TargetToolsInfo() = default;
    /// Runs the tools in \a target to find out; when \a stop is requested they end at once.
    explicit TargetToolsInfo(const QString &target, const std::stop_token &stop = {});

    /// Looks for openssl again, and only for openssl.
    void updateOpensslState(const std::stop_token &stop = {});

    QString name;
    bool hasRpmsignExternal = false;
    bool hasCustomerSign = false; ///< not looked for beside rpmsign-external
    bool hasNxvcertCli = false;   ///< not looked for beside rpmsign-external
    bool hasOpenssl = false;

    friend bool operator==(const TargetToolsInfo &, const TargetToolsInfo &) = default;
};

} // namespace Sealkit::Internal
