#include <coreplugin/messagemanager.h>

#include <host/generalmessages.h>

namespace Core {

Host::GeneralMessages *Host::GeneralMessages::instance()
{
    static GeneralMessages theInstance;
    return &theInstance;
}

void MessageManager::writeSilently(const QString &message)
{
    emit Host::GeneralMessages::instance()->messageWritten(message, false);
}

void MessageManager::writeDisrupting(const QString &message)
{
    emit Host::GeneralMessages::instance()->messageWritten(message, true);
}

} // namespace Core
