#pragma once

#include <veyraos/veyraos_global.h>

namespace Kiln::Internal {

/// One kit for each target of the SDK's build engines; a kit that is registered already stays.
VEYRAOS_EXPORT void registerKits();

} // namespace Kiln::Internal
