#pragma once

#include <utils/id.h>

#include <QHash>
#include <QString>
#include <QVariant>

namespace ProjectExplorer {

/// What a project is built for: a named set of values that kit aspects read.
class Kit
{
public:
    explicit Kit(Utils::Id id);

    Utils::Id id() const { return m_id; }
    QString displayName() const { return m_displayName; }
    void setUnexpandedDisplayName(const QString &name) { m_displayName = name; }

    QVariant value(Utils::Id key, const QVariant &unset = {}) const;
    void setValue(Utils::Id key, const QVariant &value);

private:
    Utils::Id m_id;
    QString m_displayName;
    QHash<Utils::Id, QVariant> m_values;
};

} // namespace ProjectExplorer
