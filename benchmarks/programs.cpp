#include "programs.h"

#include "comparison.h"

#include <QProcess>

#include <algorithm>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Benchmarks {

void spawnAndWait(const std::vector<std::string> &words)
{
    int input[2];
    require(pipe2(input, O_CLOEXEC) == 0, "cannot make a pipe");
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input[0], STDIN_FILENO);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);

    std::vector<char *> arguments(words.size() + 1);
    std::transform(words.begin(), words.end(), arguments.begin(), [](const std::string &word) {
        return const_cast<char *>(word.c_str());
    });

    pid_t pid = -1;
    const int error =
        posix_spawn(&pid, arguments.front(), &files, nullptr, arguments.data(), environ);
    int status = -1;
    if (error == 0)
        waitpid(pid, &status, 0);
    posix_spawn_file_actions_destroy(&files);
    close(input[0]);
    close(input[1]);
    require(error == 0 && status == 0, words.front() + " failed");
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
