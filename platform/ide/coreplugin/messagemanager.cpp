#include <coreplugin/messagemanager.h>

#include <host/generalmessages.h>
#include <utils/qtcassert.h>

namespace Core {

Host::GeneralMessages *Host::GeneralMessages::instance()
{
    static GeneralMessages theInstance;
    return &theInstance;
}

void Host::GeneralMessages::write(const QString &message, bool disrupting)
{
    QTC_ASSERT(m_isOpen, return );
    emit messageWritten(message, disrupting);
}

void MessageManager::writeSilently(const QString &message)
{
    Host::GeneralMessages::instance()->write(message, false);
}

void MessageManager::writeDisrupting(const QString &message)
{
    Host::GeneralMessages::instance()->write(message, true);
}

} // namespace Core
