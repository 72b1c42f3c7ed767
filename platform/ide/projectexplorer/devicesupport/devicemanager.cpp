#include <projectexplorer/devicesupport/devicemanager.h>

namespace ProjectExplorer {

DeviceManager *DeviceManager::instance()
{
    static DeviceManager manager;
    return &manager;
}

} // namespace ProjectExplorer
