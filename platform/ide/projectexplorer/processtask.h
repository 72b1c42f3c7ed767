#pragma once

#include <projectexplorer/abstractprocessstep.h>

#include <solutions/tasking/tasktree.h>

#include <QPointer>
#include <QProcess>
#include <QStringDecoder>

namespace ProjectExplorer {

/// Runs one program without input and hands what it prints to a step, line by line. Cancelled or
/// deleted, it leaves no process of the program's group behind.
class ProcessTask : public Tasking::TaskInterface
{
    Q_OBJECT

public:
    ProcessTask(BuildStep *step,
                const Utils::CommandLine &commandLine,
                const Utils::FilePath &workingDirectory);
    ~ProcessTask() override;

    void start() override;
    void cancel() override;

private:
    struct Channel
    {
        BuildStep::OutputFormat format;
        QStringDecoder decoder{QStringDecoder::System};
        QString unfinishedLine = {};
    };

    void readOutput(Channel *channel, const QByteArray &output);
    // These are false when this was deleted by those who got the output.
    bool flush(Channel *channel);
    bool addOutput(const QString &line, BuildStep::OutputFormat format);
    bool reportEnd(int exitCode, QProcess::ExitStatus status);

    void processFailed(QProcess::ProcessError error);
    void processFinished(int exitCode, QProcess::ExitStatus status);
    void signalGroup(int signal);

    const QPointer<BuildStep> m_step;
    const Utils::CommandLine m_commandLine;
    QProcess *const m_process; // outlives this while one of its signals is on the stack
    qint64 m_processId = 0;
    Channel m_stdout{BuildStep::OutputFormat::Stdout};
    Channel m_stderr{BuildStep::OutputFormat::Stderr};
    bool m_isCanceled = false;
};

} // namespace ProjectExplorer
