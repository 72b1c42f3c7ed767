#pragma once

#include <sys/types.h>

/// Ends every process of the session \a session. The caller has taken the session's terminal away
/// before, which asks the processes to leave; a process that stays beyond a short grace time is
/// killed.
void endSession(pid_t session);

/// Sees to it that no process of a session outlives this program, however this program ends.
///
/// A watcher process waits for the far end of a pipe to close, which the kernel does even for a
/// program that was killed. The watcher keeps nothing else open and ends with the guard.
class SessionGuard
{
public:
    /// Throws std::system_error when the watcher cannot be started.
    explicit SessionGuard(pid_t session);
    /// Lets the watcher go without ending the session.
    ~SessionGuard();
    SessionGuard(const SessionGuard &) = delete;
    SessionGuard &operator=(const SessionGuard &) = delete;

private:
    int m_lifeline = -1;
    pid_t m_watcher = -1;
};
