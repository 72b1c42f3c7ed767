#pragma once

#include <utils/filepath.h>

namespace Core::FileUtils {

/// Opens the system's file browser on the folder of \a path.
void showInGraphicalShell(const Utils::FilePath &path);

} // namespace Core::FileUtils
