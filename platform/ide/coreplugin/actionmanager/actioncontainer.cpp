#include <coreplugin/actionmanager/actioncontainer.h>

#include <coreplugin/actionmanager/command.h>

#include <utils/qtcassert.h>

#include <QMenu>

namespace Core {

ActionContainer::ActionContainer(Utils::Id id)
    : m_id(id)
    , m_menu(std::make_unique<QMenu>())
{
    m_menu->setObjectName(id.toString());
}

ActionContainer::~ActionContainer() = default;

void ActionContainer::addAction(Command *command)
{
    QTC_ASSERT(command, return );
    m_menu->addAction(command->action());
}

void ActionContainer::addMenu(ActionContainer *menu)
{
    QTC_ASSERT(menu, return );
    m_menu->addMenu(menu->menu());
}

} // namespace Core
