#pragma once

#include <utils/filepath.h>
#include <utils/store.h>

#include <QList>
#include <QObject>

#include <memory>

namespace ProjectExplorer {

class Kit;
class Target;
enum class SetActive : int;

namespace Host {
class UserProject;
}

/// An open project with one target per kit; owns its targets.
class Project : public QObject
{
    Q_OBJECT

public:
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
    void setActiveTarget(Target *target, SetActive cascade);

signals:
    void addedTarget(ProjectExplorer::Target *target);
    void activeTargetChanged(ProjectExplorer::Target *target);

private:
    friend class Host::UserProject;
    explicit Project(const Utils::FilePath &projectFilePath);

    void addTarget(std::unique_ptr<Target> target);
    void makeActive(Target *target);
    void restoreTargets(const QVariantMap &settings);
    QVariantMap targetSettings() const;

    Utils::FilePath m_projectFilePath;
    QList<Target *> m_targets;
    Target *m_activeTarget = nullptr;
    QString m_chosenTargetId;       // of a kit that need not be known
    QVariantMap m_unusedTargetMaps; // by the id of a kit that has no target
};

} // namespace ProjectExplorer
