#pragma once

#include <brisk/brisk_global.h>

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
};

} // namespace Brisk
