#pragma once

#include <utils/storekey.h>

#include <QMap>
#include <QVariant>

namespace Utils {

/// What a step, a configuration or a project keeps between two sessions.
using Store = QMap<Key, QVariant>;

QVariantMap mapFromStore(const Store &store);
Store storeFromMap(const QVariantMap &map);

} // namespace Utils

Q_DECLARE_METATYPE(Utils::Store)
