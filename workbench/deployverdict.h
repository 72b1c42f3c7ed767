#pragma once

#include <projectexplorer/buildstep.h>

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

    enum Ending { Finished, Interrupted, Stopped };
    /// After a run that has finished it looks at the packages, whatever the steps have said.
    void setEnding(Ending ending);

    /// Whether every step did its work and the packages are signed.
    bool isGood() const;
    QString text() const;

    void readOutput(const QString &text, ProjectExplorer::BuildStep::OutputFormat format);
    void readIssue(const ProjectExplorer::Task &issue);

private:
    QString whatWasSigned() const;
    QString whyNothingWasSigned() const;

    QStringList packagesToBeSigned() const;
    QStringList unsignedOnes(const QStringList &packages) const;

    const ProjectExplorer::BuildStepList *const m_stepList;
    Ending m_ending = Finished;
    QStringList m_signSteps;
    QStringList m_packages; ///< what the tools say that they have signed
    QStringList m_unsigned; ///< what is not signed in the end
    QStringList m_signers;
    QString m_error;
};

} // namespace Workbench
