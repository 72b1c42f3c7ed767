#pragma once

#include <veyraos/veyraos_global.h>

#include <QString>

namespace Kiln::Internal {

/// The host plugin's settings.
class VEYRAOS_EXPORT KilnSettings
{
public:
    /// The full path of the SDK's command-line tool; empty without an SDK.
    static QString briskPath();
};

} // namespace Kiln::Internal
