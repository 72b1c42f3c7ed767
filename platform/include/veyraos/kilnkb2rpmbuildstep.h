#pragma once

#include <veyraos/kilnprocessstep.h>
#include <veyraos/veyraos_global.h>

#include <QStringList>

namespace Kiln::Internal {

/// Builds the packages of the project's description with `rpmbuild` in the workspace.
class VEYRAOS_EXPORT KilnKb2RpmBuildStep : public KilnProcessStep
{
    Q_OBJECT

public:
    explicit KilnKb2RpmBuildStep(ProjectExplorer::BuildStepList *stepList, Utils::Id id);

    static Utils::Id stepId();
    static QString displayName();

    /// The absolute paths of the packages that the project's last build left, sorted by name.
    QStringList packages() const;
    /// The packages that can be installed on a device: all of packages() but source packages.
    QStringList deployablePackagesFileNames() const;

private:
    bool init() override;
    Tasking::GroupItem runRecipe() override;
    void doCancel() override;
};

} // namespace Kiln::Internal
