#pragma once

#include <QByteArray>

/// What the fuzzer calls for each input.
extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size);

/// Ends the program unless \a condition holds; the fuzzer then keeps the input.
inline void expect(bool condition, const char *what)
{
    if (!condition)
        qFatal("Not so: %s", what);
}
