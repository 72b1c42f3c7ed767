#include "interrupts.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace Workbench {

constexpr std::array SIGNALS{SIGINT, SIGTERM, SIGHUP};

static int s_pipe[2] = {-1, -1};

// Only async-signal-safe calls here.
static void passOn(int signalNumber)
{
    const auto byte = static_cast<unsigned char>(signalNumber);
    [[maybe_unused]] const ssize_t written = write(s_pipe[1], &byte, 1);
}

static int openedPipe()
{
    if (pipe2(s_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("Cannot make a pipe");
    return s_pipe[0];
}

Interrupts::Interrupts()
    : m_notifier(openedPipe(), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        unsigned char byte = 0;
        if (read(s_pipe[0], &byte, 1) == 1)
            emit interrupted(byte);
    });
    for (const int number : SIGNALS) {
        // What the caller chose to ignore, as nohup does, stays ignored.
        if (std::signal(number, passOn) == SIG_IGN)
            std::signal(number, SIG_IGN);
    }
}

Interrupts::~Interrupts()
{
    for (const int number : SIGNALS)
        std::signal(number, SIG_DFL);
    m_notifier.setEnabled(false);
    close(s_pipe[0]);
    close(s_pipe[1]);
}

} // namespace Workbench
