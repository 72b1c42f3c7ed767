#pragma once

#include "command.h"
#include "signdata.h"

#include <solutions/tasking/tasktree.h>

#include <functional>
#include <optional>

namespace Brisk {
class BuildEngine;
}

namespace ProjectExplorer {
class BuildStep;
}

namespace Sealkit::Internal {

class SignTool;

/// How a sign step runs: what it checks before it signs packages, and what the user sees and reads
/// meanwhile. A step owns its run beside its back end, and says in a Plan what it signs. The step,
/// and the run with it, can be gone whenever a tool has run.
class SignRun
{
public:
    /// What one step does in its run; the texts are in the step's own words and language context.
    struct Plan
    {
        QString startText;
        QString noBuildStepText; ///< with a place for the name of the RPM build step
        QString noPackagesText;
        QString successText;
        const Brisk::BuildEngine *buildEngine; ///< of the step's kit; null when it is gone
        SignData data;
        bool (SignData::*isValid)(const Utils::FilePath &workspace, QString *error) const;
        std::function<std::optional<QStringList>()> findPackages; ///< none: no RPM build step
        /// Called after the packages have been signed.
        std::function<void(const QString &targetName, const QStringList &packages)> report =
            nullptr;
    };

    SignRun(ProjectExplorer::BuildStep *step, SignTool *tool);

    /// Shows what the tool prints in the output of the step, line by line.
    void forwardOutput() const;

    /// The recipe of the step: \a run does all the work when the group is set up. \a cancel is
    /// called after a run that was cancelled, or whose tool was stopped by the user. Only such a
    /// run ends as failed: any other failure has been told by the step.
    Tasking::Group recipe(const std::function<Tasking::SetupResult()> &run,
                          const std::function<void()> &cancel) const;

    /// Carries out \a plan in the target of the step's kit.
    Tasking::SetupResult carryOut(const Plan &plan) const;

private:
    Tasking::SetupResult fail(const QString &reason, const QString &details = {}) const;
    bool
    runSign(const QString &targetName, const QStringList &packages, const SignData &data) const;
    void reportFailedRun(const Command::Result &result) const;

    ProjectExplorer::BuildStep *const m_step;
    SignTool *const m_tool;
};

} // namespace Sealkit::Internal
