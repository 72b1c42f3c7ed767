#pragma once

#include <brisk/brisk_global.h>

#include <utils/filepath.h>

#include <QString>

namespace Brisk {

class BuildEngine;

/// Reads `<path>/sdk.ini`; engines read before are deleted. False, with the reason, when there is
/// no SDK in that folder.
BRISK_EXPORT bool openInstallation(const Utils::FilePath &path, QString *errorMessage);
/// Back to no SDK.
BRISK_EXPORT void closeInstallation();
/// Writes where the engine's workspace is.
BRISK_EXPORT bool saveSharedSrcPath(BuildEngine *engine, QString *errorMessage);

} // namespace Brisk
