#pragma once

#include <array>
#include <string>
#include <sys/types.h>

/// The signals that brisk acts on, blocked and kept for reading while the object exists.
class SignalQueue
{
public:
    /// Throws std::system_error when the signals cannot be read.
    SignalQueue();
    ~SignalQueue();
    SignalQueue(const SignalQueue &) = delete;
    SignalQueue &operator=(const SignalQueue &) = delete;

    /// A descriptor that can be read when a signal is there.
    int descriptor() const { return m_descriptor; }
    /// The next signal's number, or 0 when there is none.
    int take() const;

private:
    int m_descriptor = -1;
};

/// Carries bytes between standard input and output and a terminal while a process runs on it.
///
/// Both directions are buffered and neither waits for the other: a process that floods the
/// terminal without reading, or whose output nobody collects, blocks nothing but itself.
class Relay
{
public:
    /// \a terminal is a non-blocking master, \a process the child whose end is the relay's end.
    Relay(int terminal, pid_t process, const SignalQueue &signals);

    /// Returns 0 when the process has ended and its output is delivered, otherwise the signal
    /// that ends this program: one that it was sent, or SIGPIPE when nobody reads its output.
    int run();

private:
    enum Channel { Signals, Input, Terminal, Output, ChannelCount };
    using Readiness = std::array<short, ChannelCount>;

    Readiness wait() const;
    int takeSignals();
    void readInput();
    void readTerminal();
    void drainTerminal();
    void writeTerminal();
    bool writeOutput();
    void repeatEndOfInput();
    bool isEndOfInputDue() const;

    const int m_terminal;
    const pid_t m_process;
    const SignalQueue &m_signals;
    std::string m_toTerminal;
    std::string m_toOutput;
    bool m_inputOpen = true;
    bool m_terminalOpen = true;
    bool m_processEnded = false;
};
