#pragma once

#include <projectexplorer/devicesupport/idevicefwd.h>

#include <utils/id.h>

#include <QString>

#include <functional>

namespace ProjectExplorer {

/// Makes the devices of one type anew from what was saved of them.
class IDeviceFactory
{
public:
    virtual ~IDeviceFactory();
    IDeviceFactory(const IDeviceFactory &) = delete;
    IDeviceFactory &operator=(const IDeviceFactory &) = delete;

    Utils::Id deviceType() const { return m_deviceType; }
    QString displayName() const { return m_displayName; }

protected:
    explicit IDeviceFactory(Utils::Id deviceType);

    void setDisplayName(const QString &name) { m_displayName = name; }
    void setConstructionFunction(const std::function<IDevicePtr()> &constructor);

private:
    Utils::Id m_deviceType;
    QString m_displayName;
    std::function<IDevicePtr()> m_constructor;
};

} // namespace ProjectExplorer
