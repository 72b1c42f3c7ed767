#include "messages.h"

#include <host/generalmessages.h>

Messages::Messages()
{
    connect(Core::Host::GeneralMessages::instance(),
            &Core::Host::GeneralMessages::messageWritten,
            this,
            [this](const QString &message, bool disrupting) {
                m_messages << (disrupting ? u'!' + message : message);
            });
}

QStringList Messages::take()
{
    return std::exchange(m_messages, {});
}
