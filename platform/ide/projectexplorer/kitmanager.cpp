#include <projectexplorer/kitmanager.h>

#include <projectexplorer/kit.h>

#include <utils/qtcassert.h>

namespace ProjectExplorer {

KitManager::KitManager() = default;
KitManager::~KitManager() = default;

KitManager *KitManager::instance()
{
    static KitManager manager;
    return &manager;
}

Kit *KitManager::registerKit(const std::function<void(Kit *)> &init, Utils::Id id)
{
    QTC_ASSERT(!KitManager::kit(id), return nullptr);
    auto kit = std::make_unique<Kit>(id);
    init(kit.get());
    return instance()->m_kits.emplace_back(std::move(kit)).get();
}

const QList<Kit *> KitManager::kits()
{
    QList<Kit *> kits;
    for (const std::unique_ptr<Kit> &kit : instance()->m_kits)
        kits.append(kit.get());
    return kits;
}

Kit *KitManager::kit(Utils::Id id)
{
    for (const std::unique_ptr<Kit> &kit : instance()->m_kits) {
        if (kit->id() == id)
            return kit.get();
    }
    return nullptr;
}

void KitManager::deregisterKits(const QList<Kit *> kits)
{
    std::erase_if(instance()->m_kits,
                  [&kits](const std::unique_ptr<Kit> &kit) { return kits.contains(kit.get()); });
}

} // namespace ProjectExplorer
