#pragma once

#include <utils/store.h>

#include <QObject>

namespace Utils {

/// A thing that has settings. Whether it is enabled is about its controls, and is not saved.
class BaseAspect : public QObject
{
    Q_OBJECT

public:
    BaseAspect();

    bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled);

    virtual void fromMap(const Store &map);
    virtual void toMap(Store &map) const;

signals:
    void enabledChanged();

private:
    bool m_enabled = true;
};

/// Base of everything in a project that is configured.
class AspectContainer : public BaseAspect
{
    Q_OBJECT
};

} // namespace Utils
