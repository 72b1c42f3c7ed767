#pragma once

#include <utils/id.h>
#include <utils/store.h>

#include <QList>
#include <QObject>

namespace ProjectExplorer {

class BuildStep;
class ProjectConfiguration;
class Target;

/// The steps of one configuration in the order in which they run; owns them.
class BuildStepList : public QObject
{
    Q_OBJECT

public:
    explicit BuildStepList(ProjectConfiguration *configuration, Utils::Id id);
    ~BuildStepList() override;

    Utils::Id id() const { return m_id; }
    Target *target() const;
    ProjectConfiguration *projectConfiguration() const { return m_configuration; }

    QList<BuildStep *> steps() const { return m_steps; }
    bool contains(Utils::Id id) const;
    int count() const { return int(m_steps.size()); }
    bool isEmpty() const { return m_steps.isEmpty(); }
    BuildStep *at(int position) const { return m_steps.at(position); }

    void insertStep(int position, BuildStep *step);
    /// Uses the first factory with this id.
    void insertStep(int position, Utils::Id id);
    void appendStep(BuildStep *step) { insertStep(count(), step); }
    void appendStep(Utils::Id id) { insertStep(count(), id); }
    /// Deletes the step; false, and nothing done, while the list runs.
    bool removeStep(int position);
    /// Swaps the step with the one above it.
    void moveStepUp(int position);
    /// Removes all steps, or none while one of them runs.
    void clear();

    Utils::Store toMap() const;
    /// Replaces the steps by those in \a map; false, and nothing done, while one of them runs.
    /// Steps that no factory knows don't join the list, but come back from toMap() as they were
    /// read, behind the others.
    bool fromMap(const Utils::Store &map);

signals:
    void stepInserted(int position);
    void aboutToRemoveStep(int position);
    void stepRemoved(int position);
    void stepMoved(int from, int to);

private:
    ProjectConfiguration *m_configuration;
    Utils::Id m_id;
    QList<BuildStep *> m_steps;
    QVariantList m_unknownStepMaps;
};

} // namespace ProjectExplorer
