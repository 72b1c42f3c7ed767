#pragma once

#include <QByteArray>
#include <QDebug>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// What a fuzzer calls: once before all else, and for each input.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

inline QByteArray bytes(const std::uint8_t *data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), qsizetype(size));
}

inline QString text(const std::uint8_t *data, std::size_t size)
{
    return QString::fromUtf8(bytes(data, size));
}

/// Ends the program unless \a condition holds; the fuzzer then keeps the input.
inline void expect(bool condition, const char *what)
{
    if (condition)
        return;
    qCritical("Not so: %s", what);
    std::abort();
}

template<typename T>
void expectEqual(const T &actual, const T &expected, const char *what)
{
    if (actual != expected)
        qCritical() << "actual:  " << actual << "\nexpected:" << expected;
    expect(actual == expected, what);
}
