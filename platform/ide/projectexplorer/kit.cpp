#include <projectexplorer/kit.h>

namespace ProjectExplorer {

Kit::Kit(Utils::Id id)
    : m_id(id)
    , m_displayName(id.toString())
{
}

QVariant Kit::value(Utils::Id key, const QVariant &unset) const
{
    return m_values.value(key, unset);
}

void Kit::setValue(Utils::Id key, const QVariant &value)
{
    m_values.insert(key, value);
}

} // namespace ProjectExplorer
