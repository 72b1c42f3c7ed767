#pragma once

#include <utils/filepath.h>

class QMainWindow;

/// What the application tells the core about itself. Not part of the IDE's API: plugins don't
/// include this.
namespace Core::Host {

void setMainWindow(QMainWindow *window);
void setResourcePath(const Utils::FilePath &path);

} // namespace Core::Host
