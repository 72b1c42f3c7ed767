#include "coreplugin.h"

#include <coreplugin/actionmanager/actioncontainer.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <host/generalmessages.h>

#include <QMenu>

namespace Core::Internal {

CorePlugin::~CorePlugin()
{
    Host::GeneralMessages::instance()->setOpen(false);
}

void CorePlugin::initialize()
{
    Host::GeneralMessages::instance()->setOpen(true);
    ActionManager::createMenu(Constants::M_FILE)->menu()->setTitle(tr("&File"));
    ActionManager::createMenu(Constants::M_EDIT)->menu()->setTitle(tr("&Edit"));
    ActionManager::createMenu(Constants::M_TOOLS)->menu()->setTitle(tr("&Tools"));
    ActionManager::createMenu(Constants::M_HELP)->menu()->setTitle(tr("&Help"));
}

} // namespace Core::Internal
