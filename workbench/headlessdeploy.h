#pragma once

#include "commandline.h"
#include "interrupts.h"
#include "promptanswerer.h"
#include "session.h"

#include <QObject>

namespace ProjectExplorer {
class BuildStepList;
class Task;
} // namespace ProjectExplorer

namespace Workbench {

/// A deploy run on the terminal: the transcript goes to standard output, what is wrong with the
/// run as a whole to standard error.
class HeadlessDeploy : public QObject
{
    Q_OBJECT

public:
    explicit HeadlessDeploy(const CommandLine &commandLine);

    /// The exit code: 0 when every package was signed, 1 when not, 128 and the number of the
    /// signal after an interrupt.
    int run();

private:
    bool open();
    void deploy();
    void interrupt(int signalNumber);
    void printMessage(const QString &message);
    /// A tool's line comes twice, as a message and then as its step's output: it is printed once.
    void printOutput(const QString &text);
    void printIssue(const ProjectExplorer::Task &issue);

    const CommandLine m_commandLine;
    PromptAnswerer m_answerer;
    Interrupts m_interrupts;
    Session m_session;
    ProjectExplorer::BuildStepList *m_stepList = nullptr;
    int m_signalNumber = 0;
    QString m_lastToolLine;
};

} // namespace Workbench
