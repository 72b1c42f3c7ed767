#include <projectexplorer/target.h>

#include <host/buildmanager.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/project.h>

#include <utils/qtcassert.h>

#include <algorithm>
#include <utility>

namespace ProjectExplorer {

constexpr char DEPLOY_CONFIGURATIONS_KEY[] = "ProjectExplorer.Target.DeployConfigurations";
constexpr char ACTIVE_DEPLOY_CONFIGURATION_KEY[] =
    "ProjectExplorer.Target.ActiveDeployConfiguration";

Target::Target(Project *project, Kit *kit)
    : m_project(project)
    , m_kit(kit)
{
}

Target::~Target()
{
    m_activeDeployConfiguration = nullptr;
    qDeleteAll(std::exchange(m_deployConfigurations, {}));
}

Utils::Id Target::id() const
{
    return m_kit->id();
}

QString Target::displayName() const
{
    return m_kit->displayName();
}

static QString uniqueDisplayName(const QString &name, const QList<DeployConfiguration *> &others)
{
    const auto isTaken = [&others](const QString &candidate) {
        return std::ranges::any_of(others, [&candidate](const DeployConfiguration *other) {
            return other->displayName() == candidate;
        });
    };
    QString candidate = name;
    for (int number = 2; isTaken(candidate); ++number)
        candidate = name + QLatin1Char(' ') + QString::number(number);
    return candidate;
}

void Target::addDeployConfiguration(DeployConfiguration *configuration)
{
    QTC_ASSERT(configuration && configuration->target() == this, return );
    QTC_ASSERT(!m_deployConfigurations.contains(configuration), return );
    configuration->setDisplayName(
        uniqueDisplayName(configuration->displayName(), m_deployConfigurations));
    m_deployConfigurations.append(configuration);
    emit addedDeployConfiguration(configuration);
    if (!m_activeDeployConfiguration)
        setActiveDeployConfiguration(configuration, SetActive::Cascade);
}

void Target::setActiveDeployConfiguration(DeployConfiguration *configuration, SetActive)
{
    QTC_ASSERT(!configuration || m_deployConfigurations.contains(configuration), return );
    if (m_activeDeployConfiguration == configuration)
        return;
    m_activeDeployConfiguration = configuration;
    emit activeDeployConfigurationChanged(configuration);
}

void Target::updateDefaultDeployConfigurations()
{
    for (DeployConfigurationFactory *factory : DeployConfigurationFactory::find(this)) {
        const bool isThere = std::ranges::any_of(
            m_deployConfigurations, [factory](const DeployConfiguration *configuration) {
                return configuration->id() == factory->creationId();
            });
        if (!isThere)
            addDeployConfiguration(factory->create(this));
    }
}

Utils::Store Target::toMap() const
{
    QVariantList maps;
    for (const DeployConfiguration *configuration : m_deployConfigurations) {
        Utils::Store map;
        configuration->toMap(map);
        maps.append(Utils::mapFromStore(map));
    }
    return {{DEPLOY_CONFIGURATIONS_KEY, maps + m_unknownDeployConfigurationMaps},
            {ACTIVE_DEPLOY_CONFIGURATION_KEY,
             int(m_deployConfigurations.indexOf(m_activeDeployConfiguration))}};
}

void Target::fromMap(const Utils::Store &map)
{
    const QVariantList maps = map.value(DEPLOY_CONFIGURATIONS_KEY).toList();
    const int activeIndex = map.value(ACTIVE_DEPLOY_CONFIGURATION_KEY).toInt();
    for (int index = 0; index < maps.size(); ++index) {
        const Utils::Store configurationMap = Utils::storeFromMap(maps.at(index).toMap());
        DeployConfiguration *configuration =
            DeployConfigurationFactory::restore(this, configurationMap);
        if (!configuration) {
            m_unknownDeployConfigurationMaps.append(maps.at(index));
            continue;
        }
        addDeployConfiguration(configuration);
        if (index == activeIndex)
            setActiveDeployConfiguration(configuration, SetActive::Cascade);
    }
}

} // namespace ProjectExplorer
