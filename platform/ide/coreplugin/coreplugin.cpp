#include "coreplugin.h"

#include <coreplugin/actionmanager/actioncontainer.h>
#include <coreplugin/actionmanager/actionmanager.h>

#include <QMenu>

namespace Core::Internal {

void CorePlugin::initialize()
{
    ActionManager::createMenu(Constants::M_FILE)->menu()->setTitle(tr("&File"));
    ActionManager::createMenu(Constants::M_EDIT)->menu()->setTitle(tr("&Edit"));
    ActionManager::createMenu(Constants::M_TOOLS)->menu()->setTitle(tr("&Tools"));
    ActionManager::createMenu(Constants::M_HELP)->menu()->setTitle(tr("&Help"));
}

} // namespace Core::Internal
