#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QMetaType>
#include <QVariant>

namespace Utils {

/// The name of a thing that is registered with the IDE.
class Id
{
public:
    Id() = default;
    template<int N>
    Id(const char (&name)[N])
        : m_name(name)
    {
    }
    Id(const QLatin1String &) = delete;

    static Id fromSetting(const QVariant &variant);
    static Id fromString(QStringView name);

    bool isValid() const { return !m_name.isEmpty(); }
    QByteArrayView name() const { return m_name; }
    QString toString() const { return QString::fromUtf8(m_name); }
    QVariant toSetting() const { return toString(); }

    friend bool operator==(const Id &, const Id &) = default;
    friend bool operator<(const Id &a, const Id &b) { return a.m_name < b.m_name; }
    friend size_t qHash(const Id &id, size_t seed = 0) { return qHash(id.m_name, seed); }

private:
    QByteArray m_name;
};

} // namespace Utils

Q_DECLARE_METATYPE(Utils::Id)
