#include <projectexplorer/devicesupport/idevicefactory.h>

namespace ProjectExplorer {

IDeviceFactory::IDeviceFactory(Utils::Id deviceType)
    : m_deviceType(deviceType)
{
}

IDeviceFactory::~IDeviceFactory() = default;

void IDeviceFactory::setConstructionFunction(const std::function<IDevicePtr()> &constructor)
{
    m_constructor = constructor;
}

} // namespace ProjectExplorer
