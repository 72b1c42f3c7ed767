#pragma once

#include <utils/storekey.h>

#include <QSettings>

namespace Utils {

/// The IDE's settings, with keys of the IDE's own type. The file is that of a default-constructed
/// QSettings.
class QtcSettings : private QSettings
{
public:
    QtcSettings() = default;

    QVariant value(const Key &key) const;
    QVariant value(const Key &key, const QVariant &defaultValue) const;
    void setValue(const Key &key, const QVariant &value);
    void remove(const Key &key);
    bool contains(const Key &key) const;

    using QSettings::fileName;
    using QSettings::status;
    using QSettings::sync;
};

} // namespace Utils
