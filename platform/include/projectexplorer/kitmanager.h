#pragma once

#include <utils/id.h>

#include <QObject>

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

    static Kit *registerKit(std::unique_ptr<Kit> kit);
    static QList<Kit *> kits();
    /// Null when there is none.
    static Kit *kit(Utils::Id id);
    /// No target may use these kits any more.
    static void deregisterAllKits();

private:
    KitManager();
    ~KitManager() override;

    std::vector<std::unique_ptr<Kit>> m_kits;
};

} // namespace ProjectExplorer
