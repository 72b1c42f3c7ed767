#pragma once

#include <utils/id.h>

#include <QList>

namespace Core {

/// The places in which an action answers.
class Context
{
public:
    Context() = default;
    explicit Context(Utils::Id id)
        : m_ids{id}
    {
    }

    bool contains(Utils::Id id) const { return m_ids.contains(id); }

private:
    QList<Utils::Id> m_ids;
};

} // namespace Core
