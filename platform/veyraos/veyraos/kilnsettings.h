#pragma once

#include <QString>

namespace Kiln::Internal {

/// The host plugin's settings.
class KilnSettings
{
public:
    /// The full path of the SDK's command-line tool.
    static QString briskPath();
};

} // namespace Kiln::Internal
