#include "kilndevice.h"

#include "kilntr.h"
#include <veyraos/kilnconstants.h>

#include <brisk/sdk.h>

#include <projectexplorer/devicesupport/devicemanager.h>

#include <memory>

using namespace ProjectExplorer;

namespace Kiln::Internal {

namespace {

class KilnDevice final : public IDevice
{
public:
    KilnDevice()
    {
        setupId(AutoDetected, "Kiln.Device");
        setType(Constants::KILN_DEVICE_TYPE);
        setDisplayType(Brisk::Sdk::osVariant());
        setDefaultDisplayName(Tr::tr("Veyra OS Device"));
    }

    IDeviceWidget *createWidget() override { return nullptr; }
};

} // namespace

KilnDeviceFactory::KilnDeviceFactory()
    : IDeviceFactory(Constants::KILN_DEVICE_TYPE)
{
    setDisplayName(Tr::tr("Veyra OS Device"));
    setConstructionFunction([] { return std::make_shared<KilnDevice>(); });
}

void addDevice()
{
    DeviceManager::instance()->addDevice(std::make_shared<KilnDevice>());
}

} // namespace Kiln::Internal
