#include <projectexplorer/devicesupport/devicekitaspects.h>

#include <projectexplorer/kit.h>

namespace ProjectExplorer {

constexpr char DEVICE_TYPE_KEY[] = "ProjectExplorer.Kit.RunDeviceType";

Utils::Id RunDeviceTypeKitAspect::deviceTypeId(const Kit *kit)
{
    return kit ? Utils::Id::fromSetting(kit->value(DEVICE_TYPE_KEY)) : Utils::Id();
}

void RunDeviceTypeKitAspect::setDeviceTypeId(Kit *kit, Utils::Id type)
{
    kit->setValue(DEVICE_TYPE_KEY, type.toSetting());
}

} // namespace ProjectExplorer
