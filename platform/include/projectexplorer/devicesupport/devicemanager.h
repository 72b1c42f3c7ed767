#pragma once

#include <projectexplorer/devicesupport/idevice.h>

#include <QHash>
#include <QObject>

namespace ProjectExplorer {

/// All devices.
class DeviceManager : public QObject
{
    Q_OBJECT

public:
    static DeviceManager *instance();

    /// Null when there is none.
    IDeviceConstPtr find(Utils::Id id) const { return m_devices.value(id); }
    /// Replaces the one that has the same id.
    void addDevice(const IDeviceConstPtr &device) { m_devices.insert(device->id(), device); }

private:
    DeviceManager() = default;

    QHash<Utils::Id, IDeviceConstPtr> m_devices;
};

} // namespace ProjectExplorer
