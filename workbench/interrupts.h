#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace Workbench {

/// Turns SIGINT, SIGTERM and SIGHUP into a Qt signal. One object at a time.
class Interrupts : public QObject
{
    Q_OBJECT

public:
    Interrupts();
    ~Interrupts() override;

signals:
    void interrupted(int signalNumber);

private:
    QSocketNotifier m_notifier;
};

} // namespace Workbench
