#include "veyraosplugin.h"

#include <veyraos/kilnconstants.h>

#include <brisk/sdk.h>

#include <coreplugin/actionmanager/actioncontainer.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/coreconstants.h>

#include <QMenu>

namespace Kiln::Internal {

bool VeyraOSPlugin::initialize(const QStringList &, QString *)
{
    using Core::ActionManager;
    Core::ActionContainer *menu = ActionManager::createMenu(Constants::KILN_TOOLS_MENU);
    menu->menu()->setTitle(Brisk::Sdk::osVariant());
    if (Core::ActionContainer *tools = ActionManager::actionContainer(Core::Constants::M_TOOLS))
        tools->addMenu(menu);
    return true;
}

} // namespace Kiln::Internal
