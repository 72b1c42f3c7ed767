#pragma once

#include <utils/icon.h>

namespace Utils::Icons {

extern const Icon OK;
extern const Icon BROKEN;
extern const Icon NEWFILE;

} // namespace Utils::Icons
