#include <coreplugin/actionmanager/command.h>

#include <QAction>

namespace Core {

Command::Command(Utils::Id id, QAction *action)
    : QObject(action)
    , m_id(id)
    , m_action(action)
{
}

} // namespace Core
