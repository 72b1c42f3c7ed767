#include "processtask.h"

#include "projectexplorertr.h"

#include <QTimer>

#include <chrono>
#include <csignal>

#include <unistd.h>

namespace ProjectExplorer {

using OutputFormat = BuildStep::OutputFormat;

constexpr std::chrono::seconds TERMINATE_TIMEOUT{3};
constexpr std::chrono::milliseconds KILL_TIMEOUT{1'000};

ProcessTask::ProcessTask(BuildStep *step,
                         const Utils::CommandLine &commandLine,
                         const Utils::FilePath &workingDirectory)
    : m_step(step)
    , m_commandLine(commandLine)
    , m_process(new QProcess)
{
    m_process->setProgram(commandLine.executable().toFSPathString());
    m_process->setArguments(commandLine.splitArguments());
    m_process->setWorkingDirectory(workingDirectory.toFSPathString());
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setChildProcessModifier([] { ::setsid(); });

    connect(m_process, &QProcess::readyReadStandardOutput, this, [this] {
        readOutput(&m_stdout, m_process->readAllStandardOutput());
    });
    connect(m_process, &QProcess::readyReadStandardError, this, [this] {
        readOutput(&m_stderr, m_process->readAllStandardError());
    });
    connect(m_process, &QProcess::errorOccurred, this, &ProcessTask::processFailed);
    connect(m_process, &QProcess::finished, this, &ProcessTask::processFinished);
}

ProcessTask::~ProcessTask()
{
    m_process->disconnect(this);
    if (m_process->state() != QProcess::NotRunning) {
        signalGroup(SIGKILL);
        m_process->waitForFinished(KILL_TIMEOUT.count());
    }
    m_process->deleteLater();
}

void ProcessTask::start()
{
    const QString headline = Tr::tr("Starting: %1").arg(m_commandLine.toUserOutput());
    if (!addOutput(headline, OutputFormat::NormalMessage))
        return;
    if (m_isCanceled) {
        emit done(Tasking::DoneResult::Error);
        return;
    }
    const QPointer<ProcessTask> self(this);
    m_process->start();
    if (self)
        m_processId = m_process->processId();
}

void ProcessTask::cancel()
{
    m_isCanceled = true;
    signalGroup(SIGTERM);
    QTimer::singleShot(TERMINATE_TIMEOUT, this, [this] { signalGroup(SIGKILL); });
}

void ProcessTask::readOutput(Channel *channel, const QByteArray &output)
{
    channel->unfinishedLine += QString(channel->decoder(output));
    QStringList lines = channel->unfinishedLine.split(QLatin1Char('\n'));
    channel->unfinishedLine = lines.takeLast();
    for (const QString &line : std::as_const(lines)) {
        if (!addOutput(line, channel->format))
            return;
    }
}

bool ProcessTask::flush(Channel *channel)
{
    const QString line = std::exchange(channel->unfinishedLine, {});
    return line.isEmpty() || addOutput(line, channel->format);
}

bool ProcessTask::addOutput(const QString &line, OutputFormat format)
{
    const QPointer<ProcessTask> self(this);
    const bool endsWithReturn = line.endsWith(QLatin1Char('\r'));
    if (m_step)
        emit m_step->addOutput(endsWithReturn ? line.chopped(1) : line, format);
    return !self.isNull();
}

void ProcessTask::processFailed(QProcess::ProcessError error)
{
    if (error != QProcess::FailedToStart)
        return; // finished() follows
    const QString line =
        Tr::tr("The process \"%1\" could not be started: %2.")
            .arg(m_commandLine.executable().toUserOutput(), m_process->errorString());
    if (addOutput(line, OutputFormat::ErrorMessage))
        emit done(Tasking::DoneResult::Error);
}

void ProcessTask::processFinished(int exitCode, QProcess::ExitStatus status)
{
    if (m_isCanceled)
        signalGroup(SIGKILL); // those that the program started may still run
    if (!flush(&m_stdout) || !flush(&m_stderr))
        return;
    const bool success = status == QProcess::NormalExit && exitCode == 0;
    if (m_isCanceled || reportEnd(exitCode, status))
        emit done(Tasking::toDoneResult(success));
}

bool ProcessTask::reportEnd(int exitCode, QProcess::ExitStatus status)
{
    const QString program = m_commandLine.executable().toUserOutput();
    if (status == QProcess::CrashExit) {
        return addOutput(Tr::tr("The process \"%1\" crashed.").arg(program),
                         OutputFormat::ErrorMessage);
    }
    if (exitCode == 0) {
        return addOutput(Tr::tr("The process \"%1\" exited normally.").arg(program),
                         OutputFormat::NormalMessage);
    }
    return addOutput(Tr::tr("The process \"%1\" exited with code %2.").arg(program).arg(exitCode),
                     OutputFormat::ErrorMessage);
}

void ProcessTask::signalGroup(int signal)
{
    if (m_processId <= 0)
        return;
    const auto pid = pid_t(m_processId);
    // A program that was started just now may not lead its group yet.
    if (::kill(-pid, signal) != 0 && m_process->state() != QProcess::NotRunning)
        ::kill(pid, signal);
}

} // namespace ProjectExplorer
