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

/// Bytes that are typed into a terminal, and may be a pass phrase: there is one copy of them, which
/// is wiped out as soon as the terminal has it.
class TypedBytes
{
public:
    TypedBytes() = default;
    ~TypedBytes();
    TypedBytes(const TypedBytes &) = delete;
    TypedBytes &operator=(const TypedBytes &) = delete;

    bool isEmpty() const { return m_size == 0; }
    bool isFull() const { return m_size == m_bytes.size(); }
    void append(char byte) { m_bytes[m_size++] = byte; }
    /// Fills up from \a descriptor; returns what read() does.
    ssize_t readFrom(int descriptor);
    /// Takes out what \a descriptor takes in.
    void writeTo(int descriptor);

private:
    std::array<char, 0x10000> m_bytes;
    std::size_t m_size = 0;
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
    std::size_t readTerminal();
    void drainTerminal();
    bool writeOutput();
    void repeatEndOfInput();
    bool isEndOfInputDue() const;

    const int m_terminal;
    const pid_t m_process;
    const SignalQueue &m_signals;
    TypedBytes m_toTerminal;
    std::string m_toOutput;
    bool m_inputOpen = true;
    bool m_terminalOpen = true;
    bool m_processEnded = false;
};
