#pragma once

#include <utils/filepath.h>
#include <utils/store.h>

#include <QList>
#include <QObject>

#include <memory>

namespace ProjectExplorer {

class Kit;
class Target;

/// An open project with one target per kit; owns its targets. What the user configured is kept in
/// a file beside the project file.
class Project : public QObject
{
    Q_OBJECT

public:
    /// \a projectFilePath is the package description (`<folder>/rpm/<name>.spec`).
    explicit Project(const Utils::FilePath &projectFilePath);
    ~Project() override;

    QString displayName() const;
    Utils::FilePath projectFilePath() const { return m_projectFilePath; }
    /// The folder whose sources the project builds.
    Utils::FilePath projectDirectory() const;

    const QList<Target *> targets() const { return m_targets; }
    Target *activeTarget() const { return m_activeTarget; }
    /// Null when the project has none for this kit.
    Target *target(Kit *kit) const;

    /// A target with its default deploy configurations, announced when it is complete.
    Target *addTargetForKit(Kit *kit);
    /// Deletes it; false, and nothing done, while one of its steps runs.
    bool removeTarget(Target *target);
    void setActiveTarget(Target *target);

    /// Reads the user's settings; without a file there are simply none. False, with the reason,
    /// when there is one that cannot be understood; it is then kept aside and not overwritten.
    /// What is there for kits that are unknown now is kept for the next saving, also that one of
    /// them is the active one, until another target is chosen by setActiveTarget().
    bool restoreSettings(QString *errorMessage);
    /// False, with the reason, when the file cannot be written.
    bool saveSettings(QString *errorMessage);
    Utils::FilePath settingsFilePath() const;

signals:
    void addedTarget(ProjectExplorer::Target *target);
    void aboutToRemoveTarget(ProjectExplorer::Target *target);
    void removedTarget(ProjectExplorer::Target *target);
    void activeTargetChanged(ProjectExplorer::Target *target);

private:
    void addTarget(std::unique_ptr<Target> target);
    void makeActive(Target *target);
    void restoreTargets(const QVariantMap &settings);

    Utils::FilePath m_projectFilePath;
    QList<Target *> m_targets;
    Target *m_activeTarget = nullptr;
    QString m_chosenTargetId;       // of a kit that need not be known
    QVariantMap m_unusedTargetMaps; // by the id of a kit that has no target
    QString m_savingForbiddenReason;
};

} // namespace ProjectExplorer
