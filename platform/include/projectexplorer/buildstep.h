#pragma once

#include <projectexplorer/projectconfiguration.h>

#include <functional>

namespace Tasking {
class GroupItem;
}

namespace ProjectExplorer {

class BuildStepFactory;
class BuildStepList;
class DeployConfiguration;
class Task;

/// One thing that is done in a build or a deploy run. Runs leave out steps by stepEnabled();
/// isEnabled(), which every aspect has, makes no difference to them.
class BuildStep : public ProjectConfiguration
{
    Q_OBJECT

public:
    enum class OutputFormat { Stdout, Stderr, NormalMessage, ErrorMessage };
    enum OutputNewlineSetting { DoAppendNewline, DontAppendNewline };

    /// Called for every step before the first one runs; false stops the run.
    virtual bool init() = 0;

    void fromMap(const Utils::Store &map) override;
    void toMap(Utils::Store &map) const override;

    bool stepEnabled() const { return m_stepEnabled; }
    void setStepEnabled(bool enabled);

    BuildStepList *stepList() const { return m_stepList; }
    QString summaryText() const { return m_summaryText; }

    /// The widget that configures this step, or null; a new one for each call.
    QWidget *doCreateConfigWidget() { return createConfigWidget(); }

signals:
    void updateSummary();
    /// Adds \a task to the issues of the run.
    void addTask(const ProjectExplorer::Task &task, int linkedOutputLines = 0, int skipLines = 0);
    void
    addOutput(const QString &output,
              ProjectExplorer::BuildStep::OutputFormat format,
              ProjectExplorer::BuildStep::OutputNewlineSetting newlineSetting = DoAppendNewline);
    void stepEnabledChanged();

protected:
    explicit BuildStep(BuildStepList *stepList, Utils::Id id);

    virtual QWidget *createConfigWidget() { return nullptr; }
    void setSummaryText(const QString &text);
    /// Null for a step of another kind of list.
    DeployConfiguration *deployConfiguration() const;

private:
    friend class BuildManager;
    virtual Tasking::GroupItem runRecipe() = 0;

    BuildStepList *m_stepList;
    bool m_stepEnabled = true;
    QString m_summaryText;
};

/// Makes the steps of one kind, by hand or from what was saved.
class BuildStepFactory
{
public:
    BuildStepFactory();
    virtual ~BuildStepFactory();
    BuildStepFactory(const BuildStepFactory &) = delete;
    BuildStepFactory &operator=(const BuildStepFactory &) = delete;

    static const QList<BuildStepFactory *> allBuildStepFactories();

    Utils::Id stepId() const { return m_stepId; }
    QString displayName() const { return m_displayName; }

    /// Whether the list's kind and its kit's device type are supported.
    bool canHandle(BuildStepList *stepList) const;
    /// A new step for this list, which it does not join yet.
    BuildStep *create(BuildStepList *stepList);
    /// As create(), filled from \a map; null when the step finds an error in it.
    BuildStep *restore(BuildStepList *stepList, const Utils::Store &map);

protected:
    template<class StepType>
    void registerStep(Utils::Id id)
    {
        m_stepId = id;
        m_creator = [id](BuildStepList *stepList) { return new StepType(stepList, id); };
    }
    void setDisplayName(const QString &name) { m_displayName = name; }
    void setSupportedStepList(Utils::Id id) { m_supportedStepList = id; }
    void setSupportedDeviceType(Utils::Id id) { m_supportedDeviceType = id; }

private:
    Utils::Id m_stepId;
    QString m_displayName;
    Utils::Id m_supportedStepList;
    Utils::Id m_supportedDeviceType;
    std::function<BuildStep *(BuildStepList *)> m_creator;
};

} // namespace ProjectExplorer
