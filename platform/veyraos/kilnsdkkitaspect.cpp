#include <veyraos/kilnsdkkitaspect.h>

#include <brisk/buildengine.h>
#include <brisk/sdk.h>

#include <projectexplorer/kit.h>

#include <algorithm>

namespace Kiln::Internal {

constexpr char BUILD_ENGINE_KEY[] = "Kiln.Kit.BuildEngine";
constexpr char BUILD_TARGET_KEY[] = "Kiln.Kit.BuildTarget";

Brisk::BuildTargetData KilnSdkKitAspectFactory::buildTarget(const ProjectExplorer::Kit *kit)
{
    const Brisk::BuildEngine *engine = buildEngine(kit);
    if (!engine)
        return {};
    return engine->buildTarget(kit->value(BUILD_TARGET_KEY).toString());
}

Brisk::BuildEngine *KilnSdkKitAspectFactory::buildEngine(const ProjectExplorer::Kit *kit)
{
    if (!kit)
        return nullptr;
    const QList<Brisk::BuildEngine *> engines = Brisk::Sdk::buildEngines();
    const QString name = kit->value(BUILD_ENGINE_KEY).toString();
    const auto engine = std::ranges::find(engines, name, &Brisk::BuildEngine::name);
    return engine == engines.end() ? nullptr : *engine;
}

void KilnSdkKitAspectFactory::setBuildTarget(ProjectExplorer::Kit *kit,
                                             const Brisk::BuildEngine *engine,
                                             const QString &targetName)
{
    kit->setValue(BUILD_ENGINE_KEY, engine->name());
    kit->setValue(BUILD_TARGET_KEY, targetName);
}

} // namespace Kiln::Internal
