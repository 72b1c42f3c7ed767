#include <projectexplorer/buildsteplist.h>

#include <host/buildmanager.h>
#include <projectexplorer/buildstep.h>
#include <projectexplorer/projectconfiguration.h>

#include <utils/qtcassert.h>

#include <algorithm>

namespace ProjectExplorer {

constexpr char STEPS_KEY[] = "ProjectExplorer.BuildStepList.Steps";

BuildStepList::BuildStepList(ProjectConfiguration *configuration, Utils::Id id)
    : m_configuration(configuration)
    , m_id(id)
{
}

BuildStepList::~BuildStepList()
{
    while (!m_steps.isEmpty())
        delete m_steps.takeLast();
}

Target *BuildStepList::target() const
{
    return m_configuration->target();
}

bool BuildStepList::contains(Utils::Id id) const
{
    return std::ranges::any_of(m_steps, [id](const BuildStep *step) { return step->id() == id; });
}

void BuildStepList::insertStep(int position, BuildStep *step)
{
    QTC_ASSERT(step && step->stepList() == this && !m_steps.contains(step), return );
    m_steps.insert(position, step);
    emit stepInserted(position);
}

void BuildStepList::insertStep(int position, Utils::Id id)
{
    const QList<BuildStepFactory *> factories = BuildStepFactory::allBuildStepFactories();
    const auto factory = std::ranges::find(factories, id, &BuildStepFactory::stepId);
    QTC_ASSERT(factory != factories.end(), return );
    insertStep(position, (*factory)->create(this));
}

bool BuildStepList::removeStep(int position)
{
    QTC_ASSERT(position >= 0 && position < count(), return false);
    if (BuildManager::isBuilding(at(position)))
        return false;
    emit aboutToRemoveStep(position);
    const std::unique_ptr<BuildStep> step(m_steps.takeAt(position));
    emit stepRemoved(position);
    return true;
}

void BuildStepList::moveStepUp(int position)
{
    QTC_ASSERT(position > 0 && position < count(), return );
    m_steps.swapItemsAt(position, position - 1);
    emit stepMoved(position, position - 1);
}

void BuildStepList::clear()
{
    while (!m_steps.isEmpty()) {
        if (!removeStep(count() - 1))
            return;
    }
}

Utils::Store BuildStepList::toMap() const
{
    QVariantList maps;
    for (const BuildStep *step : m_steps) {
        Utils::Store map;
        step->toMap(map);
        maps.append(Utils::mapFromStore(map));
    }
    return {{STEPS_KEY, maps + m_unknownStepMaps}};
}

static BuildStep *restoredStep(BuildStepList *stepList, const Utils::Store &map)
{
    for (BuildStepFactory *factory : BuildStepFactory::allBuildStepFactories()) {
        if (factory->stepId() == idFromMap(map) && factory->canHandle(stepList))
            return factory->restore(stepList, map);
    }
    return nullptr;
}

bool BuildStepList::fromMap(const Utils::Store &map)
{
    clear();
    if (!isEmpty())
        return false;
    m_unknownStepMaps.clear();
    const QVariantList maps = map.value(STEPS_KEY).toList();
    for (const QVariant &stepMap : maps) {
        if (BuildStep *step = restoredStep(this, Utils::storeFromMap(stepMap.toMap())))
            appendStep(step);
        else
            m_unknownStepMaps.append(stepMap);
    }
    return true;
}

} // namespace ProjectExplorer
