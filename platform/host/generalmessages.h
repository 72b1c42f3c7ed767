#pragma once

#include <QObject>

namespace Core::Host {

/// What plugins write to the General Messages, for the pane or stream that shows it.
class GeneralMessages : public QObject
{
    Q_OBJECT

public:
    static GeneralMessages *instance();

signals:
    void messageWritten(const QString &message, bool disrupting);

private:
    GeneralMessages() = default;
};

} // namespace Core::Host
