#pragma once

#include <veyraos/veyraos_global.h>

namespace Kiln::Internal {

/// One kit for each target of the SDK's build engines; those that are registered already stay.
VEYRAOS_EXPORT void registerKits();

} // namespace Kiln::Internal
