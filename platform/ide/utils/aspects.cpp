#include <utils/aspects.h>

namespace Utils {

BaseAspect::BaseAspect() = default;

void BaseAspect::setEnabled(bool enabled)
{
    if (m_enabled == enabled)
        return;
    m_enabled = enabled;
    emit enabledChanged();
}

void BaseAspect::fromMap(const Store &) {}

void BaseAspect::toMap(Store &) const {}

} // namespace Utils
