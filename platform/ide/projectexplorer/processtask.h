#pragma once

#include <projectexplorer/abstractprocessstep.h>

#include <solutions/tasking/tasktree.h>

#include <QPointer>
#include <QProcess>
#include <QStringDecoder>

namespace ProjectExplorer {

/// What to run, and for whom.
struct ProcessSetup
{
    QPointer<BuildStep> step;
    Utils::CommandLine commandLine;
    Utils::FilePath workingDirectory;
};

/// Runs one program without input and hands what it prints to a step, line by line. Deleted, it
/// leaves no process of the program's group behind.
class ProcessTaskAdapter : public Tasking::TaskAdapter<ProcessSetup>
{
public:
    ProcessTaskAdapter();
    ~ProcessTaskAdapter() override;

private:
    void start() override;

    struct Channel
    {
        BuildStep::OutputFormat format;
        QStringDecoder decoder{QStringDecoder::System};
        QString unfinishedLine = {};
    };

    void readOutput(Channel *channel, const QByteArray &output);
    // These are false when a receiver of the output has deleted this object.
    bool flush(Channel *channel);
    bool addOutput(const QString &line, BuildStep::OutputFormat format);
    bool reportEnd(int exitCode, QProcess::ExitStatus status);

    void processFailed(QProcess::ProcessError error);
    void processFinished(int exitCode, QProcess::ExitStatus status);
    void killGroup();

    QProcess *const m_process; // outlives this while one of its signals is on the stack
    qint64 m_processId = 0;
    Channel m_stdout{BuildStep::OutputFormat::Stdout};
    Channel m_stderr{BuildStep::OutputFormat::Stderr};
};

using ProcessTask = Tasking::CustomTask<ProcessTaskAdapter>;

} // namespace ProjectExplorer
