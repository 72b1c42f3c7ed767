#pragma once

#include <QByteArray>

namespace Utils {

using Key = QByteArray;

Key keyFromString(const QString &text);
QString stringFromKey(const Key &key);

} // namespace Utils
