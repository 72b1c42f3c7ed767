#include "terminal.h"

#include "relay.h"
#include "session.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

static std::system_error systemError(const char *what)
{
    return {errno, std::generic_category(), what};
}

// What the user types at a real terminal must not show there either: it may be a pass phrase.
class QuietStandardInput
{
public:
    QuietStandardInput()
    {
        termios quiet;
        if (tcgetattr(STDIN_FILENO, &quiet) != 0)
            return;
        m_original = quiet;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
    }
    ~QuietStandardInput()
    {
        if (m_original)
            tcsetattr(STDIN_FILENO, TCSANOW, &*m_original);
    }
    QuietStandardInput(const QuietStandardInput &) = delete;
    QuietStandardInput &operator=(const QuietStandardInput &) = delete;

private:
    std::optional<termios> m_original;
};

// Pass phrases come through here: no core dump is written meanwhile, and nobody else may look into
// the memory.
class ClosedMemory
{
public:
    ClosedMemory() { prctl(PR_SET_DUMPABLE, 0); }
    ~ClosedMemory() { prctl(PR_SET_DUMPABLE, 1); }
    ClosedMemory(const ClosedMemory &) = delete;
    ClosedMemory &operator=(const ClosedMemory &) = delete;
};

// Echo is off before the command starts, so that an answer that arrives before the command asks
// is not shown. Flow control is off, too: a stray Ctrl+S would stop the output for good.
static void prepareTerminal(int terminal)
{
    termios settings;
    if (tcgetattr(terminal, &settings) != 0)
        throw systemError("cannot read the terminal's settings");
    settings.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
    settings.c_iflag &= ~static_cast<tcflag_t>(IXON);
    if (tcsetattr(terminal, TCSANOW, &settings) != 0)
        throw systemError("cannot change the terminal's settings");

    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        size = {.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
    ioctl(terminal, TIOCSWINSZ, &size);
}

static void resetSignals()
{
    for (int number = 1; number < NSIG; ++number)
        std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

[[noreturn]] static void becomeCommand(const Command &command)
{
    close_range(STDERR_FILENO + 1, ~0U, 0);
    resetSignals();
    // The command may have keys and pass phrases in its memory.
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    setenv("PATH", command.searchPath.c_str(), 1);
    std::vector<char *> arguments;
    for (const std::string &word : command.words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    execv(arguments.front(), arguments.data());
    std::fprintf(stderr, "brisk: %s: %s\n", arguments.front(), std::strerror(errno));
    _exit(126);
}

// The command's process. It runs nothing before release(), so that there is a moment to set up
// what ends it, and it vanishes when this program goes before that.
class CommandProcess
{
public:
    CommandProcess(const Command &command, int master, int terminal)
    {
        if (pipe2(m_gate, O_CLOEXEC) != 0)
            throw systemError("cannot make a pipe");
        m_pid = fork();
        if (m_pid < 0)
            throw systemError("cannot start a process");
        if (m_pid > 0) {
            close(m_gate[0]);
            return;
        }
        close(master);
        close(m_gate[1]);
        char go = 0;
        if (login_tty(terminal) != 0 || read(m_gate[0], &go, 1) != 1)
            _exit(126);
        becomeCommand(command);
    }
    ~CommandProcess() { close(m_gate[1]); }
    CommandProcess(const CommandProcess &) = delete;
    CommandProcess &operator=(const CommandProcess &) = delete;

    pid_t pid() const { return m_pid; }

    void release()
    {
        const char go = 1;
        if (write(m_gate[1], &go, 1) != 1)
            throw systemError("cannot start the command");
    }

    // Collects the ended process and gives its exit code as a shell would.
    int exitCode()
    {
        int status = 0;
        waitpid(m_pid, &status, 0);
        return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }

private:
    int m_gate[2] = {-1, -1};
    pid_t m_pid = -1;
};

int runOnTerminal(const Command &command)
{
    const ClosedMemory closedMemory;
    // Blocked before the command exists, or its end could be missed.
    const SignalQueue signals;
    int master = -1;
    int terminal = -1;
    if (openpty(&master, &terminal, nullptr, nullptr, nullptr) != 0)
        throw systemError("cannot open a terminal");
    prepareTerminal(terminal);
    fcntl(master, F_SETFD, FD_CLOEXEC);
    fcntl(master, F_SETFL, O_NONBLOCK);

    const QuietStandardInput quietInput;
    CommandProcess process(command, master, terminal);
    close(terminal);
    const SessionGuard guard(process.pid());
    process.release();

    const int interruption = Relay(master, process.pid(), signals).run();
    close(master);
    endSession(process.pid());
    return interruption != 0 ? 128 + interruption : process.exitCode();
}
