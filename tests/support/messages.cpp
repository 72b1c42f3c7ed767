#include "messages.h"

#include <coreplugin/messagemanager.h>

Messages::Messages()
{
    connect(Core::MessageManager::instance(),
            &Core::MessageManager::messageWritten,
            this,
            [this](const QString &message, bool disrupting) {
                m_messages << (disrupting ? u'!' + message : message);
            });
}

QStringList Messages::take()
{
    return std::exchange(m_messages, {});
}
