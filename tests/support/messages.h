#pragma once

#include <QObject>
#include <QStringList>

/// What has been written to the General Messages since this object was made.
class Messages : public QObject
{
public:
    Messages();

    /// All messages; a message that disrupts begins with "!".
    QStringList take();

private:
    QStringList m_messages;
};
