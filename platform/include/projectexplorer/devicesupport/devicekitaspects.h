#pragma once

#include <utils/id.h>

namespace ProjectExplorer {

class Kit;

/// The type of the device that a kit's programs run on.
class RunDeviceTypeKitAspect
{
public:
    static Utils::Id deviceTypeId(const Kit *kit);
    static void setDeviceTypeId(Kit *kit, Utils::Id type);
};

} // namespace ProjectExplorer
