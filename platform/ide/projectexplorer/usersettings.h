#pragma once

#include <utils/filepath.h>

#include <QVariantMap>

#include <optional>

namespace ProjectExplorer {

/// What the user configured in a project, in a file of its own: a JSON object of strings, numbers,
/// booleans, lists and maps.
class UserSettings
{
public:
    /// Empty without a file. Null, with the reason, when the file cannot be understood.
    static std::optional<QVariantMap> read(const Utils::FilePath &file, QString *errorMessage);
    /// All or nothing; false with the reason.
    static bool
    write(const Utils::FilePath &file, const QVariantMap &settings, QString *errorMessage);
};

} // namespace ProjectExplorer
