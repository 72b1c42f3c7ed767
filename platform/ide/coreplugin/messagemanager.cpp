#include "messagemanager.h"

namespace Core {

MessageManager *MessageManager::instance()
{
    static MessageManager theInstance;
    return &theInstance;
}

void MessageManager::writeSilently(const QString &message)
{
    emit instance()->messageWritten(message, false);
}

void MessageManager::writeDisrupting(const QString &message)
{
    emit instance()->messageWritten(message, true);
}

} // namespace Core
