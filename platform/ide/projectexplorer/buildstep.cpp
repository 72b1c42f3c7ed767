#include <projectexplorer/buildstep.h>

#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/devicesupport/devicekitaspects.h>
#include <projectexplorer/projectexplorerconstants.h>
#include <projectexplorer/target.h>

#include <utils/qtcassert.h>

namespace ProjectExplorer {

constexpr char ENABLED_KEY[] = "ProjectExplorer.BuildStep.Enabled";

BuildStep::BuildStep(BuildStepList *stepList, Utils::Id id)
    : ProjectConfiguration(stepList->target(), id)
    , m_stepList(stepList)
{
}

void BuildStep::fromMap(const Utils::Store &map)
{
    m_stepEnabled = map.value(ENABLED_KEY, true).toBool();
    ProjectConfiguration::fromMap(map);
}

void BuildStep::toMap(Utils::Store &map) const
{
    ProjectConfiguration::toMap(map);
    map.insert(ENABLED_KEY, m_stepEnabled);
}

void BuildStep::setStepEnabled(bool enabled)
{
    if (m_stepEnabled == enabled)
        return;
    m_stepEnabled = enabled;
    emit stepEnabledChanged();
}

void BuildStep::setSummaryText(const QString &text)
{
    if (m_summaryText == text)
        return;
    m_summaryText = text;
    emit updateSummary();
}

DeployConfiguration *BuildStep::deployConfiguration() const
{
    if (m_stepList->id() != Constants::BUILDSTEPS_DEPLOY)
        return nullptr;
    return qobject_cast<DeployConfiguration *>(m_stepList->projectConfiguration());
}

static QList<BuildStepFactory *> &stepFactories()
{
    static QList<BuildStepFactory *> factories;
    return factories;
}

BuildStepFactory::BuildStepFactory()
{
    stepFactories().append(this);
}

BuildStepFactory::~BuildStepFactory()
{
    stepFactories().removeOne(this);
}

const QList<BuildStepFactory *> BuildStepFactory::allBuildStepFactories()
{
    return stepFactories();
}

bool BuildStepFactory::canHandle(BuildStepList *stepList) const
{
    if (m_supportedStepList.isValid() && m_supportedStepList != stepList->id())
        return false;
    return !m_supportedDeviceType.isValid()
           || m_supportedDeviceType
                  == RunDeviceTypeKitAspect::deviceTypeId(stepList->target()->kit());
}

BuildStep *BuildStepFactory::create(BuildStepList *stepList)
{
    QTC_ASSERT(m_creator, return nullptr);
    BuildStep *step = m_creator(stepList);
    step->setDefaultDisplayName(m_displayName);
    return step;
}

BuildStep *BuildStepFactory::restore(BuildStepList *stepList, const Utils::Store &map)
{
    std::unique_ptr<BuildStep> step(create(stepList));
    if (!step)
        return nullptr;
    step->fromMap(map);
    return step->hasError() ? nullptr : step.release();
}

} // namespace ProjectExplorer
