#include "session.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Enough for a script's traps to remove its temporary files.
static constexpr auto GRACE_TIME = 300ms;
// A process that not even SIGKILL ends within this time is stuck in the kernel.
static constexpr auto KILL_TIME = 2s;
static constexpr auto POLL_INTERVAL = 5ms;

// True for a process of the session that is not a zombie.
static bool isMember(const std::string &pid, pid_t session)
{
    std::ifstream stream("/proc/" + pid + "/stat");
    std::string line;
    std::getline(stream, line);
    // "7 (a name) S PPID PGRP SESSION ...", where the name may hold blanks and brackets itself
    const auto nameEnd = line.rfind(") ");
    if (nameEnd == std::string::npos)
        return false;
    char state = 'X';
    pid_t parent = 0;
    pid_t group = 0;
    pid_t processSession = 0;
    if (std::sscanf(
            line.c_str() + nameEnd, ") %c %d %d %d", &state, &parent, &group, &processSession)
        != 4)
        return false;
    return processSession == session && state != 'Z' && state != 'X';
}

static std::vector<pid_t> members(pid_t session)
{
    std::vector<pid_t> result;
    std::error_code error;
    for (std::filesystem::directory_iterator it("/proc", error), end; !error && it != end;
         it.increment(error)) {
        const std::string name = it->path().filename();
        if (name.find_first_not_of("0123456789") == std::string::npos && isMember(name, session))
            result.push_back(std::stoi(name));
    }
    return result;
}

void endSession(pid_t session)
{
    const auto graceEnd = Clock::now() + GRACE_TIME;
    while (Clock::now() < graceEnd) {
        if (members(session).empty())
            return;
        std::this_thread::sleep_for(POLL_INTERVAL);
    }
    // Again and again, because a process may have forked between the look and the kill.
    for (const auto killEnd = graceEnd + KILL_TIME; Clock::now() < killEnd;) {
        const std::vector<pid_t> left = members(session);
        if (left.empty())
            return;
        for (const pid_t pid : left)
            kill(pid, SIGKILL);
        std::this_thread::sleep_for(POLL_INTERVAL);
    }
}

static void keepOpenOnly(int fd)
{
    if (fd > 0)
        close_range(0, static_cast<unsigned>(fd) - 1, 0);
    close_range(static_cast<unsigned>(fd) + 1, ~0U, 0);
}

[[noreturn]] static void watch(int lifeline, pid_t session)
{
    // A session of its own, or Ctrl+C at the user's terminal would end the watcher, too.
    setsid();
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, nullptr);
    keepOpenOnly(lifeline);

    char released = 0;
    ssize_t count = 0;
    do {
        count = read(lifeline, &released, 1);
    } while (count < 0 && errno == EINTR);
    if (count == 0)
        endSession(session);
    _exit(0);
}

SessionGuard::SessionGuard(pid_t session)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    m_watcher = fork();
    if (m_watcher == 0) {
        close(ends[1]);
        watch(ends[0], session);
    }
    const int forkError = errno;
    close(ends[0]);
    m_lifeline = ends[1];
    if (m_watcher < 0) {
        close(m_lifeline);
        throw std::system_error(forkError, std::generic_category(), "cannot start the watcher");
    }
}

SessionGuard::~SessionGuard()
{
    const char released = 1;
    if (write(m_lifeline, &released, 1) == 1)
        waitpid(m_watcher, nullptr, 0);
    close(m_lifeline);
}
