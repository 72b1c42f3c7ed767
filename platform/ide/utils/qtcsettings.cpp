#include <utils/qtcsettings.h>

namespace Utils {

QVariant QtcSettings::value(const Key &key) const
{
    return QSettings::value(stringFromKey(key));
}

QVariant QtcSettings::value(const Key &key, const QVariant &defaultValue) const
{
    return QSettings::value(stringFromKey(key), defaultValue);
}

void QtcSettings::setValue(const Key &key, const QVariant &value)
{
    QSettings::setValue(stringFromKey(key), value);
}

void QtcSettings::remove(const Key &key)
{
    QSettings::remove(stringFromKey(key));
}

bool QtcSettings::contains(const Key &key) const
{
    return QSettings::contains(stringFromKey(key));
}

} // namespace Utils
