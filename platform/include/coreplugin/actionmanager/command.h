#pragma once

#include <utils/id.h>

#include <QObject>

class QAction;

namespace Core {

/// A registered action as menus show it.
class Command : public QObject
{
    Q_OBJECT

public:
    Command(Utils::Id id, QAction *action);

    Utils::Id id() const { return m_id; }
    QAction *action() const { return m_action; }

private:
    Utils::Id m_id;
    QAction *m_action;
};

} // namespace Core
