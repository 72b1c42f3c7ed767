#include <projectexplorer/projectconfiguration.h>

#include <projectexplorer/target.h>

#include <utils/qtcassert.h>

namespace ProjectExplorer {

constexpr char ID_KEY[] = "ProjectExplorer.ProjectConfiguration.Id";
constexpr char DISPLAY_NAME_KEY[] = "ProjectExplorer.ProjectConfiguration.DisplayName";

ProjectConfiguration::ProjectConfiguration(Target *target, Utils::Id id)
    : m_target(target)
    , m_id(id)
{
    QTC_CHECK(target);
}

Target *ProjectConfiguration::target() const
{
    return m_target;
}

Project *ProjectConfiguration::project() const
{
    return m_target->project();
}

Kit *ProjectConfiguration::kit() const
{
    return m_target->kit();
}

QString ProjectConfiguration::displayName() const
{
    return usesDefaultDisplayName() ? m_defaultDisplayName : m_displayName;
}

void ProjectConfiguration::setDisplayName(const QString &name)
{
    const QString before = displayName();
    m_displayName = name == m_defaultDisplayName ? QString() : name;
    if (displayName() != before)
        emit displayNameChanged();
}

void ProjectConfiguration::setDefaultDisplayName(const QString &name)
{
    const QString before = displayName();
    m_defaultDisplayName = name;
    if (displayName() != before)
        emit displayNameChanged();
}

void ProjectConfiguration::fromMap(const Utils::Store &map)
{
    if (idFromMap(map) != m_id) {
        reportError();
        return;
    }
    setDisplayName(map.value(DISPLAY_NAME_KEY, m_displayName).toString());
}

void ProjectConfiguration::toMap(Utils::Store &map) const
{
    map.insert(ID_KEY, m_id.toSetting());
    if (!usesDefaultDisplayName())
        map.insert(DISPLAY_NAME_KEY, m_displayName);
}

Utils::Id idFromMap(const Utils::Store &map)
{
    return Utils::Id::fromSetting(map.value(ID_KEY));
}

} // namespace ProjectExplorer
