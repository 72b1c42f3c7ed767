#include <projectexplorer/deployconfiguration.h>

#include <projectexplorer/buildstep.h>
#include <projectexplorer/devicesupport/devicekitaspects.h>
#include <projectexplorer/projectexplorerconstants.h>
#include <projectexplorer/target.h>

#include <memory>

namespace ProjectExplorer {

constexpr char STEP_LIST_KEY[] = "ProjectExplorer.DeployConfiguration.StepList";

DeployConfiguration::DeployConfiguration(Target *target, Utils::Id id)
    : ProjectConfiguration(target, id)
    , m_stepList(this, Constants::BUILDSTEPS_DEPLOY)
{
}

bool DeployConfiguration::isActive() const
{
    return target()->activeDeployConfiguration() == this;
}

void DeployConfiguration::fromMap(const Utils::Store &map)
{
    ProjectConfiguration::fromMap(map);
    m_stepList.fromMap(map.value(STEP_LIST_KEY).value<Utils::Store>());
}

void DeployConfiguration::toMap(Utils::Store &map) const
{
    ProjectConfiguration::toMap(map);
    map.insert(STEP_LIST_KEY, QVariant::fromValue(m_stepList.toMap()));
}

static QList<DeployConfigurationFactory *> &deployConfigurationFactories()
{
    static QList<DeployConfigurationFactory *> factories;
    return factories;
}

DeployConfigurationFactory::DeployConfigurationFactory()
{
    deployConfigurationFactories().append(this);
}

DeployConfigurationFactory::~DeployConfigurationFactory()
{
    deployConfigurationFactories().removeOne(this);
}

const QList<DeployConfigurationFactory *> DeployConfigurationFactory::find(Target *target)
{
    const Utils::Id deviceType = RunDeviceTypeKitAspect::deviceTypeId(target->kit());
    QList<DeployConfigurationFactory *> fitting = deployConfigurationFactories();
    erase_if(fitting, [deviceType](const DeployConfigurationFactory *factory) {
        return !factory->m_supportedDeviceTypes.contains(deviceType);
    });
    return fitting;
}

DeployConfiguration *DeployConfigurationFactory::restore(Target *target, const Utils::Store &map)
{
    for (const DeployConfigurationFactory *factory : find(target)) {
        if (factory->m_configBaseId != idFromMap(map))
            continue;
        std::unique_ptr<DeployConfiguration> configuration(factory->createEmpty(target));
        configuration->fromMap(map);
        return configuration->hasError() ? nullptr : configuration.release();
    }
    return nullptr;
}

DeployConfiguration *DeployConfigurationFactory::createEmpty(Target *target) const
{
    auto *configuration = new DeployConfiguration(target, m_configBaseId);
    configuration->setDefaultDisplayName(m_defaultDisplayName);
    return configuration;
}

DeployConfiguration *DeployConfigurationFactory::create(Target *target)
{
    DeployConfiguration *configuration = createEmpty(target);
    for (const Utils::Id &stepId : m_initialSteps)
        configuration->stepList()->appendStep(stepId);
    return configuration;
}

} // namespace ProjectExplorer
