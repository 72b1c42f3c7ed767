#pragma once

#include <projectexplorer/buildstep.h>

#include <QProcess>
#include <QStringList>

namespace ProjectExplorer {
class BuildStepList;
class Task;
} // namespace ProjectExplorer

namespace Workbench {

/// Watches one deploy run and says at its end what was signed by whom, or why nothing was: in the
/// same words on the terminal and in the window.
class DeployVerdict : public QObject
{
    Q_OBJECT

public:
    /// Of the run of \a stepList that begins now.
    explicit DeployVerdict(const ProjectExplorer::BuildStepList *stepList);
    ~DeployVerdict() override;

    enum Ending { Finished, Interrupted, Stopped };
    /// After a run that has finished it looks at the packages, whatever the steps have said, while
    /// the event loop turns.
    void setEnding(Ending ending);

    // To be asked when the verdict is known.

    /// Whether every step did its work and the packages are signed.
    bool isGood() const;
    QString text() const;

    void readOutput(const QString &text, ProjectExplorer::BuildStep::OutputFormat format);
    void readIssue(const ProjectExplorer::Task &issue);

signals:
    void known();

private:
    QString whatWasSigned() const;
    QString whyNothingWasSigned() const;

    QStringList packagesToBeSigned() const;
    void startDump();
    void readDump();

    const ProjectExplorer::BuildStepList *const m_stepList;
    Ending m_ending = Finished;
    QStringList m_signSteps;
    QStringList m_packages; ///< what the tools say that they have signed
    QStringList m_toBeSigned;
    QStringList m_unsigned; ///< what is not signed in the end
    QStringList m_signers;
    QString m_error;
    QProcess m_dump;
};

} // namespace Workbench
