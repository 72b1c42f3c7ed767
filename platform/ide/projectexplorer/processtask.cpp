#include "processtask.h"

#include "projectexplorertr.h"

#include <chrono>
#include <csignal>

#include <unistd.h>

namespace ProjectExplorer {

using OutputFormat = BuildStep::OutputFormat;

constexpr std::chrono::milliseconds KILL_TIMEOUT{1'000};

ProcessTaskAdapter::ProcessTaskAdapter()
    : m_process(new QProcess)
{
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setChildProcessModifier([] { ::setsid(); });

    connect(m_process, &QProcess::readyReadStandardOutput, this, [this] {
        readOutput(&m_stdout, m_process->readAllStandardOutput());
    });
    connect(m_process, &QProcess::readyReadStandardError, this, [this] {
        readOutput(&m_stderr, m_process->readAllStandardError());
    });
    connect(m_process, &QProcess::errorOccurred, this, &ProcessTaskAdapter::processFailed);
    connect(m_process, &QProcess::finished, this, &ProcessTaskAdapter::processFinished);
}

ProcessTaskAdapter::~ProcessTaskAdapter()
{
    m_process->disconnect(this);
    if (m_process->state() != QProcess::NotRunning) {
        killGroup();
        m_process->waitForFinished(KILL_TIMEOUT.count());
    }
    m_process->deleteLater();
}

void ProcessTaskAdapter::start()
{
    const QPointer<ProcessTaskAdapter> self(this);
    const Utils::CommandLine &commandLine = task()->commandLine;
    const QString headline = Tr::tr("Starting: %1").arg(commandLine.toUserOutput());
    if (!addOutput(headline, OutputFormat::NormalMessage))
        return;
    m_process->setProgram(commandLine.executable().toFSPathString());
    m_process->setArguments(commandLine.splitArguments());
    m_process->setWorkingDirectory(task()->workingDirectory.toFSPathString());
    m_process->start();
    if (self)
        m_processId = m_process->processId();
}

void ProcessTaskAdapter::readOutput(Channel *channel, const QByteArray &output)
{
    channel->unfinishedLine += QString(channel->decoder(output));
    QStringList lines = channel->unfinishedLine.split(QLatin1Char('\n'));
    channel->unfinishedLine = lines.takeLast();
    for (const QString &line : std::as_const(lines)) {
        if (!addOutput(line, channel->format))
            return;
    }
}

bool ProcessTaskAdapter::flush(Channel *channel)
{
    const QString line = std::exchange(channel->unfinishedLine, {});
    return line.isEmpty() || addOutput(line, channel->format);
}

bool ProcessTaskAdapter::addOutput(const QString &line, OutputFormat format)
{
    const QPointer<ProcessTaskAdapter> self(this);
    const bool endsWithReturn = line.endsWith(QLatin1Char('\r'));
    if (BuildStep *step = task()->step)
        emit step->addOutput(endsWithReturn ? line.chopped(1) : line, format);
    return !self.isNull();
}

void ProcessTaskAdapter::processFailed(QProcess::ProcessError error)
{
    if (error != QProcess::FailedToStart)
        return; // finished() follows
    const QString line =
        Tr::tr("The process \"%1\" could not be started: %2.")
            .arg(task()->commandLine.executable().toUserOutput(), m_process->errorString());
    if (addOutput(line, OutputFormat::ErrorMessage))
        emit done(Tasking::DoneResult::Error);
}

void ProcessTaskAdapter::processFinished(int exitCode, QProcess::ExitStatus status)
{
    if (!flush(&m_stdout) || !flush(&m_stderr))
        return;
    const bool success = status == QProcess::NormalExit && exitCode == 0;
    if (reportEnd(exitCode, status))
        emit done(Tasking::toDoneResult(success));
}

bool ProcessTaskAdapter::reportEnd(int exitCode, QProcess::ExitStatus status)
{
    const QString program = task()->commandLine.executable().toUserOutput();
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

void ProcessTaskAdapter::killGroup()
{
    if (m_processId <= 0)
        return;
    const auto pid = pid_t(m_processId);
    // A program that was started just now may not lead its group yet.
    if (::kill(-pid, SIGKILL) != 0 && m_process->state() != QProcess::NotRunning)
        ::kill(pid, SIGKILL);
}

} // namespace ProjectExplorer
