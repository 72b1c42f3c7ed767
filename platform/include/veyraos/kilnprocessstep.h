#pragma once

#include <veyraos/veyraos_global.h>

#include <projectexplorer/abstractprocessstep.h>

namespace Kiln::Internal {

/// Base of the host plugin's steps, and of other plugins' steps that work on its packages.
class VEYRAOS_EXPORT KilnProcessStep : public ProjectExplorer::AbstractProcessStep
{
    Q_OBJECT

public:
    enum InitOption {
        NoInitOptions = 0x0,
        /// The step starts no program of its own through the base class.
        WithoutCommandLine = 0x1,
    };
    Q_DECLARE_FLAGS(InitOptions, InitOption)

    using ProjectExplorer::AbstractProcessStep::setSummaryText;

protected:
    KilnProcessStep(ProjectExplorer::BuildStepList *stepList, Utils::Id id);

    bool init() override;
    bool init(InitOptions options);
    /// Stops what the step has going on.
    virtual void doCancel() = 0;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(KilnProcessStep::InitOptions)

} // namespace Kiln::Internal
