#pragma once

#include <projectexplorer/devicesupport/idevicefwd.h>

#include <utils/id.h>

#include <QString>

namespace ProjectExplorer {

class IDeviceWidget;

/// What a kit's programs run on.
class IDevice
{
public:
    enum Origin { ManuallyAdded, AutoDetected };

    virtual ~IDevice();

    Utils::Id id() const { return m_id; }
    void setupId(Origin origin, Utils::Id id);
    Utils::Id type() const { return m_type; }
    void setType(Utils::Id type) { m_type = type; }
    QString displayName() const { return m_displayName; }
    void setDefaultDisplayName(const QString &name) { m_displayName = name; }

    /// Null for a device that has nothing to configure.
    virtual IDeviceWidget *createWidget() = 0;

protected:
    IDevice();

    void setDisplayType(const QString &type) { m_displayType = type; }

private:
    Utils::Id m_id;
    Utils::Id m_type;
    QString m_displayName;
    QString m_displayType;
};

} // namespace ProjectExplorer
