#include <utils/store.h>

namespace Utils {

Key keyFromString(const QString &text)
{
    return text.toUtf8();
}

QString stringFromKey(const Key &key)
{
    return QString::fromUtf8(key.toByteArray());
}

static QVariant mapValueFromStoreValue(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<Store>())
        return mapFromStore(value.value<Store>());
    return value;
}

static QVariant storeValueFromMapValue(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QVariantMap>())
        return QVariant::fromValue(storeFromMap(value.toMap()));
    return value;
}

QVariantMap mapFromStore(const Store &store)
{
    QVariantMap map;
    for (auto it = store.begin(); it != store.end(); ++it)
        map.insert(stringFromKey(it.key()), mapValueFromStoreValue(it.value()));
    return map;
}

Store storeFromMap(const QVariantMap &map)
{
    Store store;
    for (auto it = map.begin(); it != map.end(); ++it)
        store.insert(keyFromString(it.key()), storeValueFromMapValue(it.value()));
    return store;
}

} // namespace Utils
