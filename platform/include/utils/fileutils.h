#pragma once

#include <utils/filepath.h>

#include <functional>

namespace Utils::FileUtils {

/// Copies one file; false when it cannot be copied.
using CopyHelper =
    std::function<bool(const FilePath &source, const FilePath &destination, QString *error)>;

/// The IDE's asks before it overwrites a file. This one never does: who calls it has seen to that,
/// and a file that is there is a failure.
class CopyAskingForOverwrite
{
public:
    CopyHelper operator()();
};

/// Copies a file, or, in the IDE alone, a folder; missing parent folders are made.
/// On failure \a error says what could not be copied.
bool copyRecursively(const FilePath &source,
                     const FilePath &destination,
                     QString *error,
                     CopyHelper helper);

} // namespace Utils::FileUtils
