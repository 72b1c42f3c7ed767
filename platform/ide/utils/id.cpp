#include <utils/id.h>

namespace Utils {

Id Id::fromSetting(const QVariant &variant)
{
    return fromString(variant.toString());
}

Id Id::fromString(QStringView name)
{
    Id id;
    id.m_name = name.toUtf8();
    return id;
}

} // namespace Utils
