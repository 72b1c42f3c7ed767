#include "values.h"

#include <QStringList>
#include <QVariantMap>

static QVariant valueFrom(const QByteArray &line)
{
    const QByteArray value = line.mid(1);
    const QString text = QString::fromUtf8(value);
    switch (line.isEmpty() ? '\0' : line.at(0)) {
    case 's':
        return text;
    case 'b':
        return !value.isEmpty();
    case 'i':
        return value.toLongLong();
    case 'd':
        return value.toDouble();
    case 'l':
        return text.split(u',');
    case 'm':
        return QVariantMap{{text, text}};
    case 'y':
        return value;
    case 'n':
        return QVariant::fromValue(nullptr);
    default:
        return {};
    }
}

QList<QVariant> valuesFrom(const QByteArray &input)
{
    QList<QVariant> values;
    for (const QByteArray &line : input.split('\n'))
        values << valueFrom(line);
    return values;
}
