#pragma once

#include <utils/aspects.h>
#include <utils/id.h>

#include <QPointer>
#include <QString>

namespace ProjectExplorer {

class Kit;
class Project;
class Target;

/// Base of the steps and configurations of a target.
class ProjectConfiguration : public Utils::AspectContainer
{
    Q_OBJECT

public:
    Utils::Id id() const { return m_id; }
    Target *target() const;
    Project *project() const;
    Kit *kit() const;

    /// The name given by setDisplayName(), otherwise the default one.
    QString displayName() const;
    void setDisplayName(const QString &name);
    void setDefaultDisplayName(const QString &name);
    bool usesDefaultDisplayName() const { return m_displayName.isEmpty(); }

    /// To be called from fromMap() when the map makes no sense.
    void reportError() { m_hasError = true; }
    bool hasError() const { return m_hasError; }

    void fromMap(const Utils::Store &map) override;
    void toMap(Utils::Store &map) const override;

signals:
    void displayNameChanged();

protected:
    explicit ProjectConfiguration(Target *target, Utils::Id id);

private:
    QPointer<Target> m_target;
    Utils::Id m_id;
    QString m_displayName;
    QString m_defaultDisplayName;
    bool m_hasError = false;
};

Utils::Id idFromMap(const Utils::Store &map);

} // namespace ProjectExplorer
