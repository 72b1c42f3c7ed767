#include "programs.h"

#include "comparison.h"

#include <QProcess>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Benchmarks {

namespace {

/// A program with next to nothing between it and the kernel.
class Child
{
public:
    explicit Child(const std::vector<std::string> &words)
        : m_program(words.front())
    {
        require(pipe2(m_input, O_CLOEXEC) == 0, "cannot make a pipe");
        posix_spawn_file_actions_t files;
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_adddup2(&files, m_input[0], STDIN_FILENO);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        std::vector<char *> arguments(words.size() + 1);
        std::transform(words.begin(), words.end(), arguments.begin(), [](const auto &word) {
            return const_cast<char *>(word.c_str());
        });
        if (posix_spawn(&m_pid, arguments.front(), &files, nullptr, arguments.data(), environ) != 0)
            m_pid = -1;
        posix_spawn_file_actions_destroy(&files);
    }
    ~Child()
    {
        close(m_input[0]);
        close(m_input[1]);
    }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    pid_t pid() const { return m_pid; }
    /// Whether it has ended. \a options are those of waitpid().
    bool wait(int options = 0) const
    {
        int status = -1;
        const pid_t ended = m_pid > 0 ? waitpid(m_pid, &status, options) : m_pid;
        require(ended == 0 || (ended > 0 && status == 0), m_program + " failed");
        return ended > 0;
    }

private:
    const std::string m_program;
    int m_input[2] = {-1, -1};
    pid_t m_pid = -1;
};

} // namespace

void spawnAndWait(const std::vector<std::string> &words)
{
    Child(words).wait();
}

// The kernel's peak of a process that has ended includes its parent's memory before exec().
double peakMemoryOf(const std::vector<std::string> &words)
{
    static const std::string PEAK = "VmHWM:";
    double kibibytes = 0;
    const Child child(words);
    while (!child.wait(WNOHANG)) {
        std::ifstream status("/proc/" + std::to_string(child.pid()) + "/status");
        for (std::string word; status >> word && word != PEAK;) {
        }
        status >> kibibytes;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return kibibytes / 1024;
}

QByteArray
outputOf(const QString &program, const QStringList &arguments, const QString &workingDirectory)
{
    QProcess process;
    process.setWorkingDirectory(workingDirectory);
    process.start(program, arguments);
    const bool hasSucceeded = process.waitForFinished(-1)
                              && process.exitStatus() == QProcess::NormalExit
                              && process.exitCode() == 0;
    require(hasSucceeded,
            program.toStdString() + " failed: " + process.readAllStandardError().toStdString());
    return process.readAllStandardOutput();
}

} // namespace Benchmarks
