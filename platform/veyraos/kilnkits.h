#pragma once

namespace Kiln::Internal {

/// One kit for each target of the SDK's build engines; those that are registered already stay.
void registerKits();

} // namespace Kiln::Internal
