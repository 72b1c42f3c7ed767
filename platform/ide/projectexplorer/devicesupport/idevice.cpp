#include <projectexplorer/devicesupport/idevice.h>

namespace ProjectExplorer {

IDevice::IDevice() = default;
IDevice::~IDevice() = default;

void IDevice::setupId(Origin /*origin*/, Utils::Id id)
{
    m_id = id;
}

} // namespace ProjectExplorer
