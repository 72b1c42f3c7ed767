#pragma once

#include <memory>

namespace ProjectExplorer {

class IDevice;

using IDevicePtr = std::shared_ptr<IDevice>;
using IDeviceConstPtr = std::shared_ptr<const IDevice>;

} // namespace ProjectExplorer
