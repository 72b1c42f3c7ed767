#include "headlessdeploy.h"

#include "deployverdict.h"

#include <coreplugin/icore.h>
#include <host/buildmanager.h>
#include <host/generalmessages.h>
#include <host/issues.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/project.h>
#include <projectexplorer/target.h>

#include <QCoreApplication>
#include <QTimer>

#include <cstdio>

using namespace ProjectExplorer;

namespace Workbench {

constexpr int FAILURE = 1;
constexpr int SIGNAL_BASE = 128;

static void print(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    std::fflush(stream);
}

static void printLine(const QString &line)
{
    print(stdout, line + '\n');
}

static void printError(const QString &error)
{
    print(stderr, "workbench: " + error + '\n');
}

HeadlessDeploy::HeadlessDeploy(const CommandLine &commandLine)
    : m_commandLine(commandLine)
    , m_answerer(commandLine.passphrase)
{
    connect(&m_answerer, &PromptAnswerer::declined, this, &printLine);
    connect(&m_interrupts, &Interrupts::interrupted, this, &HeadlessDeploy::interrupt);
    connect(&m_session, &Session::problemFound, this, &printError);
    connect(Core::Host::GeneralMessages::instance(),
            &Core::Host::GeneralMessages::messageWritten,
            this,
            &HeadlessDeploy::printMessage);
    connect(
        BuildManager::instance(), &BuildManager::outputAdded, this, &HeadlessDeploy::printOutput);
    connect(Host::Issues::instance(), &Host::Issues::added, this, &HeadlessDeploy::printIssue);
}

void HeadlessDeploy::printMessage(const QString &message)
{
    printLine(message);
    // "[I]" and "[E]" mark what a tool printed.
    const bool isToolLine = message.startsWith("[I]\t") || message.startsWith("[E]\t");
    m_lastToolLine = isToolLine ? message.mid(4) + '\n' : QString();
}

void HeadlessDeploy::printOutput(const QString &text)
{
    if (text != m_lastToolLine)
        print(stdout, text);
    m_lastToolLine.clear();
}

void HeadlessDeploy::printIssue(const Task &issue)
{
    const QStringList lines = QStringList(issue.summary) + issue.details;
    printLine(tr("Issue: %1").arg(lines.join('\n')));
}

int HeadlessDeploy::run()
{
    int exitCode = FAILURE;
    if (open()) {
        QTimer::singleShot(0, this, &HeadlessDeploy::deploy);
        exitCode = QCoreApplication::exec();
    }
    // Nothing is saved: what the project and the window remember is not ours to change.
    m_session.shutdown();
    return m_signalNumber ? SIGNAL_BASE + m_signalNumber : exitCode;
}

bool HeadlessDeploy::open()
{
    QString error;
    if (!m_session.openSdk(m_commandLine.sdk, &error)) {
        printError(error);
        return false;
    }
    m_session.loadPlugins();
    const Project *project =
        m_session.openProject(m_commandLine.project, m_commandLine.target, &error);
    if (!project) {
        printError(error);
        return false;
    }
    const Target *target = project->activeTarget();
    if (!target || !target->activeDeployConfiguration()) {
        printError(tr("The project \"%1\" has nothing to deploy: the SDK offers no target for it.")
                       .arg(project->displayName()));
        return false;
    }
    m_stepList = target->activeDeployConfiguration()->stepList();
    return true;
}

void HeadlessDeploy::deploy()
{
    if (m_signalNumber) {
        QCoreApplication::exit(FAILURE);
        return;
    }
    const auto verdict = std::make_shared<DeployVerdict>(m_stepList);
    connect(verdict.get(), &DeployVerdict::known, this, [this, verdict = verdict.get()] {
        if (verdict->isGood())
            printLine(verdict->text());
        else
            printError(verdict->text());
        QCoreApplication::exit(verdict->isGood() ? 0 : FAILURE);
    });
    const auto end = [this, verdict](bool finished) {
        verdict->setEnding(m_signalNumber ? DeployVerdict::Interrupted
                           : finished     ? DeployVerdict::Finished
                                          : DeployVerdict::Stopped);
    };
    connect(BuildManager::instance(), &BuildManager::buildQueueFinished, this, end);
    BuildManager::buildList(m_stepList);
}

void HeadlessDeploy::interrupt(int signalNumber)
{
    m_signalNumber = signalNumber;
    emit Core::ICore::instance()->coreAboutToClose();
    m_answerer.declineAll();
    QCoreApplication::exit(FAILURE); // what runs is cancelled at the shutdown
}

} // namespace Workbench
