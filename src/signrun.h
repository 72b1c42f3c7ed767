#pragma once

#include "command.h"
#include "signdata.h"

#include <solutions/tasking/tasktree.h>

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace Brisk {
class BuildEngine;
}

namespace ProjectExplorer {
class BuildStep;
}

namespace Sealkit::Internal {

class SignTool;

/// Shows what \a tool prints in the output of \a step, line by line.
void forwardOutput(const SignTool *tool, ProjectExplorer::BuildStep *step);

/// One run of a sign step. A tool keeps the event loop turning, and the IDE may meanwhile delete
/// its task tree, the step and the step's tool. So a run does not stand in a handler of that tree:
/// the tree has one task that waits, and the run is called from the event loop and owns itself
/// until it returns. When the task is deleted before the run has ended, the run is given up.
class SignRun : public QObject, public std::enable_shared_from_this<SignRun>
{
    Q_OBJECT

public:
    /// What a step does in its runs. Called only while the step exists and the run is wanted.
    struct Work
    {
        /// Does it all, and returns Continue when it is done.
        std::function<Tasking::SetupResult(SignRun &run)> doRun;
        /// Says that the run was stopped.
        std::function<void()> doCancel;
    };

    /// What is to be signed; the texts are in the step's own words and language context.
    struct Plan
    {
        QString startText;
        QString noBuildStepText; ///< with a place for the name of the RPM build step
        QString noPackagesText;
        QString successText;
        const Brisk::BuildEngine *buildEngine; ///< of the step's kit; null when it is gone
        SignData data;
        bool (SignData::*isValid)(const Utils::FilePath &workspace, QString *error) const;
        std::optional<QStringList> packages; ///< none: no RPM build step
    };

    /// The recipe of \a step for the IDE: a task that makes a run and waits for its end. It fails
    /// only when the run was stopped: any other failure has been told by the step.
    static Tasking::Group
    recipe(ProjectExplorer::BuildStep *step, SignTool *tool, const Work &work);

    SignRun(ProjectExplorer::BuildStep *step, SignTool *tool, const Work &work);

    /// Runs to the end. Not to be called from a handler of the IDE.
    void exec();
    /// Kills the tool, closes its prompt and says that the run was stopped; once.
    void giveUp();

    /// For doRun(): carries out \a plan in the target of the step's kit. Continue means that the
    /// packages are signed and the step still exists.
    Tasking::SetupResult sign(const Plan &plan);
    /// For doRun(), after sign(): what the tool dumps of \a packages. Nothing when the run was
    /// given up meanwhile; the step may be gone then.
    std::optional<Command::Result> dump(const QStringList &packages);

signals:
    void done(Tasking::DoneResult result);

private:
    Tasking::Group innerRecipe();
    std::optional<Command::Result> ifWanted(const Command::Result &result) const;
    Tasking::SetupResult fail(const QString &reason, const QString &details = {}) const;
    Tasking::SetupResult failAfter(const Command::Result &result) const;

    const QPointer<ProjectExplorer::BuildStep> m_step;
    const QPointer<SignTool> m_tool;
    const Work m_work;
    std::stop_source m_stop;
    QString m_targetName;
};

} // namespace Sealkit::Internal
