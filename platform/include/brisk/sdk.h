#pragma once

#include <brisk/brisk_global.h>

#include <utils/filepath.h>

#include <QList>
#include <QString>

namespace Brisk {

class BuildEngine;

/// The SDK installation in use.
class BRISK_EXPORT Sdk
{
public:
    static QString installationPath();
    /// The operating system's name as its vendor writes it.
    static QString osVariant();
    static QList<BuildEngine *> buildEngines();

    /// Stand-in's own: reads `<path>/sdk.ini`; engines read before are deleted. False, with the
    /// reason, when there is no SDK in that folder.
    static bool open(const Utils::FilePath &path, QString *errorMessage);
    /// Stand-in's own: back to no SDK.
    static void close();
    /// Stand-in's own: writes where the engine's workspace is.
    static bool saveSharedSrcPath(BuildEngine *engine, QString *errorMessage);
};

} // namespace Brisk
