#pragma once

#include "settingsscope.h"
#include "temporarysdk.h"

#include <solutions/tasking/tasktree.h>
#include <utils/filepath.h>

#include <QStringList>

#include <memory>

namespace ProjectExplorer {
class BuildStep;
class BuildStepList;
class Kit;
class Project;
class Target;
} // namespace ProjectExplorer

namespace Kiln::Internal {
class VeyraOSPlugin;
}

/// A demo SDK with one kit per target, and the host plugin, for tests that work with projects. What
/// is open goes with this object.
class Workplace
{
public:
    Workplace();
    ~Workplace();

    const TemporarySdk &sdk() const { return m_sdk; }
    Utils::FilePath workspace() const;
    ProjectExplorer::Kit *kit(const QString &targetName) const;

    /// Opens a new project in the workspace, with a target for one kit.
    ProjectExplorer::Project *openProject(const QString &targetName);
    void closeProjects();
    /// Makes \a names look like what the project's last build left; returns their paths.
    QStringList makePackages(const ProjectExplorer::Project *project, const QStringList &names);

private:
    void copyRegularKeys() const;

    SettingsScope m_settings;
    TemporarySdk m_sdk;
    std::unique_ptr<Kiln::Internal::VeyraOSPlugin> m_hostPlugin;
    int m_projectCount = 0;
};

/// The deploy steps of the project's active target.
ProjectExplorer::BuildStepList *deploySteps(const ProjectExplorer::Project *project);
QStringList stepIds(const ProjectExplorer::BuildStepList *stepList);

/// Runs one step alone to its end; returns what it wrote, each text behind its format's name.
QStringList runStep(ProjectExplorer::BuildStep *step, Tasking::DoneWith *result = nullptr);
