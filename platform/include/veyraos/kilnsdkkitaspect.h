#pragma once

#include <veyraos/veyraos_global.h>

#include <brisk/buildtargetdata.h>

namespace Brisk {
class BuildEngine;
}

namespace ProjectExplorer {
class Kit;
}

namespace Kiln::Internal {

/// Ties a kit to a target of a build engine.
class VEYRAOS_EXPORT KilnSdkKitAspectFactory
{
public:
    /// Invalid when the kit names no target or the engine is gone.
    static Brisk::BuildTargetData buildTarget(const ProjectExplorer::Kit *kit);
    /// Null when the kit has no engine or the engine is gone.
    static Brisk::BuildEngine *buildEngine(const ProjectExplorer::Kit *kit);
    static void setBuildTarget(ProjectExplorer::Kit *kit,
                               const Brisk::BuildEngine *engine,
                               const QString &targetName);
};

} // namespace Kiln::Internal
