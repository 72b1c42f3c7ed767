#pragma once

#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/projectconfiguration.h>

namespace ProjectExplorer {

/// A way of bringing a project's output to a device.
class DeployConfiguration final : public ProjectConfiguration
{
    Q_OBJECT

public:
    /// Never null.
    BuildStepList *stepList() { return &m_stepList; }
    const BuildStepList *stepList() const { return &m_stepList; }
    bool isActive() const;

    void fromMap(const Utils::Store &map) override;
    void toMap(Utils::Store &map) const override;

private:
    friend class DeployConfigurationFactory;
    DeployConfiguration(Target *target, Utils::Id id);

    BuildStepList m_stepList;
};

/// Makes the deploy configurations of one kind.
class DeployConfigurationFactory
{
public:
    DeployConfigurationFactory();
    virtual ~DeployConfigurationFactory();
    DeployConfigurationFactory(const DeployConfigurationFactory &) = delete;
    DeployConfigurationFactory &operator=(const DeployConfigurationFactory &) = delete;

    /// The factories that fit the device of the target's kit.
    static const QList<DeployConfigurationFactory *> find(Target *target);
    /// The configuration that \a map describes; null when no factory knows it.
    static DeployConfiguration *restore(Target *target, const Utils::Store &map);

    Utils::Id creationId() const { return m_configBaseId; }
    /// A new configuration with its initial steps, which does not join the target yet.
    DeployConfiguration *create(Target *target);

protected:
    void setConfigBaseId(Utils::Id id) { m_configBaseId = id; }
    void addSupportedTargetDeviceType(Utils::Id id) { m_supportedDeviceTypes.append(id); }
    void setDefaultDisplayName(const QString &name) { m_defaultDisplayName = name; }
    void addInitialStep(Utils::Id stepId) { m_initialSteps.append(stepId); }

private:
    DeployConfiguration *createEmpty(Target *target) const;

    Utils::Id m_configBaseId;
    QString m_defaultDisplayName;
    QList<Utils::Id> m_supportedDeviceTypes;
    QList<Utils::Id> m_initialSteps;
};

} // namespace ProjectExplorer
