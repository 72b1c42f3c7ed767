#pragma once

namespace Workbench {

/// Ids of the plugin's steps, which is loaded and not linked.
constexpr char RPM_SIGN_EXTERNAL_STEP[] = "Sealkit.RpmSignExternalStep";
constexpr char RPM_SIGN_STEP[] = "Sealkit.RpmSignStep";

} // namespace Workbench
