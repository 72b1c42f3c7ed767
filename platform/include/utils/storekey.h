#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>

namespace Utils {

/// The name of a value in settings and in the maps that steps keep. Made of character arrays and
/// byte arrays, but not of a `const char *`, whose length nobody knows.
class Key
{
public:
    Key() = default;
    Key(const QByteArray &key)
        : m_data(key)
    {
    }
    template<int N>
    Key(const char (&key)[N])
        : m_data(key)
    {
    }
    Key(const char *key, std::size_t size)
        : m_data(key, qsizetype(size))
    {
    }

    const QByteArray &toByteArray() const { return m_data; }
    bool isEmpty() const { return m_data.isEmpty(); }

    friend bool operator<(const Key &a, const Key &b) { return a.m_data < b.m_data; }
    friend bool operator==(const Key &a, const Key &b) { return a.m_data == b.m_data; }
    friend Key operator+(const Key &a, const Key &b) { return Key(a.m_data + b.m_data); }

private:
    QByteArray m_data;
};

Key keyFromString(const QString &text);
QString stringFromKey(const Key &key);

} // namespace Utils
