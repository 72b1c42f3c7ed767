#pragma once

/// While it exists, a signal that asks the tool to end does so where check() is called, so that
/// what the tool has begun can be put away. Calls that wait return with EINTR.
class Interruption
{
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

    /// Throws the Interrupted that is due.
    static void check();
    static bool isDue();
};

/// The end by a signal.
struct Interrupted
{
    int signalNumber = 0;
};
