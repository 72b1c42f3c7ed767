#pragma once

#include <utils/id.h>
#include <utils/store.h>

#include <QList>
#include <QObject>

namespace ProjectExplorer {

class DeployConfiguration;
class Kit;
class Project;

enum class SetActive : int { Cascade, NoCascade };

/// A project as it is built for one kit; owns its deploy configurations.
class Target : public QObject
{
    Q_OBJECT

public:
    ~Target() override;

    Project *project() const { return m_project; }
    Kit *kit() const { return m_kit; }
    Utils::Id id() const;
    QString displayName() const;

    const QList<DeployConfiguration *> deployConfigurations() const
    {
        return m_deployConfigurations;
    }
    DeployConfiguration *activeDeployConfiguration() const { return m_activeDeployConfiguration; }
    /// Takes ownership; the first one becomes the active one. Its name gets a number when another
    /// one has it already.
    void addDeployConfiguration(DeployConfiguration *configuration);
    void setActiveDeployConfiguration(DeployConfiguration *configuration, SetActive cascade);
    /// Adds a configuration of each kind that fits and that there is none of yet.
    void updateDefaultDeployConfigurations();

    Utils::Store toMap() const;
    /// Adds the configurations in \a map. A configuration that no factory knows is not added;
    /// toMap() gives it back as it was read, behind the others.
    void fromMap(const Utils::Store &map);

signals:
    void addedDeployConfiguration(ProjectExplorer::DeployConfiguration *configuration);
    void activeDeployConfigurationChanged(ProjectExplorer::DeployConfiguration *configuration);

private:
    friend class Project;
    Target(Project *project, Kit *kit);

    Project *m_project;
    Kit *m_kit;
    QList<DeployConfiguration *> m_deployConfigurations;
    DeployConfiguration *m_activeDeployConfiguration = nullptr;
    QVariantList m_unknownDeployConfigurationMaps;
};

} // namespace ProjectExplorer
