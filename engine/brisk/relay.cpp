#include "relay.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

// A full buffer makes its source wait.
static constexpr std::size_t BUFFER_LIMIT = 0x10000;
// What may still come out of a terminal after its process ended. Processes that were left behind
// may write for ever, and nobody waits for those.
static constexpr std::size_t DRAIN_LIMIT = 0x100000;
static constexpr int END_OF_INPUT_INTERVAL_MS = 100;

static sigset_t handledSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGCHLD, SIGHUP, SIGINT, SIGQUIT, SIGTERM})
        sigaddset(&signals, number);
    return signals;
}

SignalQueue::SignalQueue()
{
    // Dispositions are inherited: an ignored SIGCHLD would lose the exit code.
    std::signal(SIGCHLD, SIG_DFL);
    std::signal(SIGPIPE, SIG_IGN);
    const sigset_t signals = handledSignals();
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    m_descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot read signals");
}

SignalQueue::~SignalQueue()
{
    close(m_descriptor);
}

int SignalQueue::take() const
{
    signalfd_siginfo info;
    return read(m_descriptor, &info, sizeof info) == sizeof info ? static_cast<int>(info.ssi_signo)
                                                                 : 0;
}

TypedBytes::~TypedBytes()
{
    explicit_bzero(m_bytes.data(), m_size);
}

ssize_t TypedBytes::readFrom(int descriptor)
{
    const ssize_t count = read(descriptor, m_bytes.data() + m_size, m_bytes.size() - m_size);
    m_size += count > 0 ? static_cast<std::size_t>(count) : 0;
    return count;
}

void TypedBytes::writeTo(int descriptor)
{
    const ssize_t count = write(descriptor, m_bytes.data(), m_size);
    if (count <= 0)
        return;
    m_size -= static_cast<std::size_t>(count);
    std::memmove(m_bytes.data(), m_bytes.data() + count, m_size);
    explicit_bzero(m_bytes.data() + m_size, static_cast<std::size_t>(count));
}

// What read() returned says whether there can be more.
static bool isOpenAfter(ssize_t count)
{
    return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
}

Relay::Relay(int terminal, pid_t process, const SignalQueue &signals)
    : m_terminal(terminal)
    , m_process(process)
    , m_signals(signals)
{
}

int Relay::run()
{
    while (!m_processEnded || !m_toOutput.empty()) {
        const Readiness ready = wait();
        if (ready[Signals] != 0) {
            if (const int interruption = takeSignals())
                return interruption;
        }
        if (ready[Input] != 0)
            readInput();
        if (ready[Terminal] & POLLOUT)
            m_toTerminal.writeTo(m_terminal);
        if (ready[Terminal] & ~POLLOUT)
            readTerminal();
        if ((ready[Output] & POLLERR) || ((ready[Output] & POLLOUT) && !writeOutput()))
            return SIGPIPE;
        repeatEndOfInput();
    }
    return 0;
}

Relay::Readiness Relay::wait() const
{
    // A negative descriptor is not looked at, not even for its errors.
    const auto watched = [](int descriptor, bool wanted) { return wanted ? descriptor : -1; };
    const bool fits = m_toOutput.size() < BUFFER_LIMIT;
    const bool hasInput = !m_toTerminal.isEmpty();
    const bool terminalUsable = m_terminalOpen && !m_processEnded;
    const short terminalEvents = static_cast<short>((fits ? POLLIN : 0) | (hasInput ? POLLOUT : 0));

    std::array<pollfd, ChannelCount> channels{{
        {m_signals.descriptor(), POLLIN, 0},
        {watched(STDIN_FILENO, m_inputOpen && !m_toTerminal.isFull()), POLLIN, 0},
        {watched(m_terminal, terminalUsable && terminalEvents != 0), terminalEvents, 0},
        // Always, for a reader that has gone: a silent tool would go on for nobody.
        {STDOUT_FILENO, static_cast<short>(m_toOutput.empty() ? 0 : POLLOUT), 0},
    }};
    Readiness ready{};
    if (poll(channels.data(), channels.size(), isEndOfInputDue() ? END_OF_INPUT_INTERVAL_MS : -1)
        > 0)
        std::transform(channels.begin(), channels.end(), ready.begin(), [](const pollfd &channel) {
            return channel.revents;
        });
    return ready;
}

int Relay::takeSignals()
{
    while (const int number = m_signals.take()) {
        if (number != SIGCHLD)
            return number;
        siginfo_t info{};
        // The ended process is not collected here: as long as it is there, nobody else gets its id.
        if (waitid(P_PID, static_cast<id_t>(m_process), &info, WEXITED | WNOHANG | WNOWAIT) == 0
            && info.si_pid == m_process) {
            drainTerminal();
            m_processEnded = true;
        }
    }
    return 0;
}

void Relay::readInput()
{
    m_inputOpen = isOpenAfter(m_toTerminal.readFrom(STDIN_FILENO));
}

// Returns how many bytes came.
std::size_t Relay::readTerminal()
{
    char chunk[4096];
    const ssize_t count = read(m_terminal, chunk, sizeof chunk);
    m_terminalOpen = isOpenAfter(count);
    if (count <= 0)
        return 0;
    m_toOutput.append(chunk, static_cast<std::size_t>(count));
    return static_cast<std::size_t>(count);
}

void Relay::drainTerminal()
{
    std::size_t drained = 0;
    while (m_terminalOpen && drained < DRAIN_LIMIT) {
        const std::size_t count = readTerminal();
        if (count == 0)
            break;
        drained += count;
    }
}

bool Relay::writeOutput()
{
    // A pipe that is ready takes this much without blocking, so its reader cannot stall the relay.
    const std::size_t size = std::min<std::size_t>(m_toOutput.size(), PIPE_BUF);
    const ssize_t count = write(STDOUT_FILENO, m_toOutput.data(), size);
    if (count > 0)
        m_toOutput.erase(0, static_cast<std::size_t>(count));
    return count >= 0 || errno == EAGAIN || errno == EINTR;
}

bool Relay::isEndOfInputDue() const
{
    return !m_inputOpen && m_terminalOpen && !m_processEnded && m_toTerminal.isEmpty();
}

// A terminal forgets an end of file once it was read, but input that has ended stays ended: who
// asks a second time, or throws away what was typed before it asked, meets the end again.
void Relay::repeatEndOfInput()
{
    termios settings;
    if (!isEndOfInputDue() || tcgetattr(m_terminal, &settings) != 0)
        return;
    if (settings.c_lflag & ICANON)
        m_toTerminal.append(static_cast<char>(settings.c_cc[VEOF]));
}
