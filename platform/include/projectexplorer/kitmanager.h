#pragma once

#include <utils/id.h>

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace ProjectExplorer {

class Kit;

/// All kits, in the order in which they were registered.
class KitManager : public QObject
{
    Q_OBJECT

public:
    static KitManager *instance();

    /// A new kit, which \a init fills before the others learn of it.
    static Kit *registerKit(const std::function<void(Kit *)> &init, Utils::Id id);
    static const QList<Kit *> kits();
    /// Null when there is none.
    static Kit *kit(Utils::Id id);
    /// No target may use these kits any more.
    static void deregisterKits(const QList<Kit *> kits);

signals:
    /// All plugins are initialized: kits can be registered from now on.
    void kitsLoaded();

private:
    KitManager();
    ~KitManager() override;

    std::vector<std::unique_ptr<Kit>> m_kits;
};

} // namespace ProjectExplorer
