#include <projectexplorer/project.h>

#include "projectexplorertr.h"
#include <host/buildmanager.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/target.h>

#include <utils/qtcassert.h>

#include <algorithm>
#include <utility>

namespace ProjectExplorer {

constexpr char TARGETS_KEY[] = "ProjectExplorer.Project.Targets";
constexpr char ACTIVE_TARGET_KEY[] = "ProjectExplorer.Project.ActiveTarget";

Project::Project(const Utils::FilePath &projectFilePath)
    : m_projectFilePath(projectFilePath.absoluteFilePath())
{
}

Project::~Project()
{
    m_activeTarget = nullptr;
    qDeleteAll(std::exchange(m_targets, {}));
}

QString Project::displayName() const
{
    return m_projectFilePath.toFileInfo().completeBaseName();
}

Utils::FilePath Project::projectDirectory() const
{
    const Utils::FilePath folder = m_projectFilePath.parentDir();
    return folder.fileName() == QLatin1String("rpm") ? folder.parentDir() : folder;
}

Target *Project::target(Kit *kit) const
{
    const auto target = std::ranges::find(m_targets, kit, &Target::kit);
    return target == m_targets.end() ? nullptr : *target;
}

Target *Project::addTargetForKit(Kit *kit)
{
    if (Target *existing = target(kit))
        return existing;
    std::unique_ptr<Target> added(new Target(this, kit));
    Target *result = added.get();
    const QVariantMap savedMap = m_unusedTargetMaps.take(kit->id().toString()).toMap();
    result->fromMap(Utils::storeFromMap(savedMap));
    result->updateDefaultDeployConfigurations();
    addTarget(std::move(added));
    return result;
}

void Project::addTarget(std::unique_ptr<Target> target)
{
    Target *added = target.release();
    m_targets.append(added);
    emit addedTarget(added);
    if (!m_activeTarget)
        makeActive(added);
}

void Project::setActiveTarget(Target *target, SetActive)
{
    QTC_ASSERT(!target || m_targets.contains(target), return );
    if (m_activeTarget == target)
        return;
    m_chosenTargetId = target ? target->id().toString() : QString();
    makeActive(target);
}

void Project::makeActive(Target *target)
{
    m_activeTarget = target;
    emit activeTargetChanged(target);
}

void Project::restoreTargets(const QVariantMap &settings)
{
    m_unusedTargetMaps = settings.value(QLatin1String(TARGETS_KEY)).toMap();
    m_chosenTargetId = settings.value(QLatin1String(ACTIVE_TARGET_KEY)).toString();
    for (Kit *kit : KitManager::kits()) {
        if (!m_unusedTargetMaps.contains(kit->id().toString()))
            continue;
        Target *target = addTargetForKit(kit);
        if (kit->id().toString() == m_chosenTargetId)
            setActiveTarget(target, SetActive::Cascade);
    }
}

QVariantMap Project::targetSettings() const
{
    QVariantMap targetMaps = m_unusedTargetMaps;
    for (const Target *target : m_targets)
        targetMaps.insert(target->id().toString(), Utils::mapFromStore(target->toMap()));
    QVariantMap settings{{QLatin1String(TARGETS_KEY), targetMaps}};
    if (!m_chosenTargetId.isEmpty())
        settings.insert(QLatin1String(ACTIVE_TARGET_KEY), m_chosenTargetId);
    else if (m_activeTarget)
        settings.insert(QLatin1String(ACTIVE_TARGET_KEY), m_activeTarget->id().toString());
    return settings;
}

} // namespace ProjectExplorer
