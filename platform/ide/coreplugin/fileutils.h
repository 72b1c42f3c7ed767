#pragma once

#include <utils/filepath.h>

class QWidget;

namespace Core {

struct FileUtils
{
    /// Opens the system's file browser on the folder of \a path.
    static void showInGraphicalShell(QWidget *parent, const Utils::FilePath &path);
};

} // namespace Core
