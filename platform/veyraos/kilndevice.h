#pragma once

#include <projectexplorer/devicesupport/idevicefactory.h>

namespace Kiln::Internal {

/// The one device that stands for all that run the operating system: packages are made for it, but
/// nothing is brought to it. Kits without a device would be marked as faulty.
class KilnDeviceFactory : public ProjectExplorer::IDeviceFactory
{
public:
    KilnDeviceFactory();
};

/// To be called before there are kits.
void addDevice();

} // namespace Kiln::Internal
