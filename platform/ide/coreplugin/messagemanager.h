#pragma once

#include <QObject>

namespace Core {

/// The General Messages of the application.
class MessageManager : public QObject
{
    Q_OBJECT

public:
    static MessageManager *instance();

    static void writeSilently(const QString &message);
    /// Also brings the messages to the user's eyes.
    static void writeDisrupting(const QString &message);

signals:
    /// Stand-in's own: for the pane or stream that shows the messages.
    void messageWritten(const QString &message, bool disrupting);

private:
    MessageManager() = default;
};

} // namespace Core
