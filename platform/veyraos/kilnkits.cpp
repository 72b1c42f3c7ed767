#include "kilnkits.h"

#include <veyraos/kilnconstants.h>
#include <veyraos/kilnsdkkitaspect.h>

#include <brisk/buildengine.h>
#include <brisk/sdk.h>

#include <projectexplorer/devicesupport/devicekitaspects.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitmanager.h>

using namespace ProjectExplorer;

namespace Kiln::Internal {

static void registerKit(const Brisk::BuildEngine *engine, const QString &targetName)
{
    const Utils::Id id = Utils::Id::fromString(QString(QLatin1String("Kiln.Kit.") + targetName));
    if (KitManager::kit(id))
        return;
    const auto init = [engine, targetName](Kit *kit) {
        kit->setUnexpandedDisplayName(targetName);
        RunDeviceTypeKitAspect::setDeviceTypeId(kit, Constants::KILN_DEVICE_TYPE);
        KilnSdkKitAspectFactory::setBuildTarget(kit, engine, targetName);
    };
    KitManager::registerKit(init, id);
}

void registerKits()
{
    for (const Brisk::BuildEngine *engine : Brisk::Sdk::buildEngines()) {
        const QStringList targetNames = engine->buildTargetOrigins();
        for (const QString &targetName : targetNames)
            registerKit(engine, targetName);
    }
}

} // namespace Kiln::Internal
