#pragma once

#include <QObject>

namespace Core::Host {

/// What plugins write to the General Messages, for the pane or stream that shows it.
class GeneralMessages : public QObject
{
    Q_OBJECT

public:
    static GeneralMessages *instance();

    /// Panes open with the core and go with it. While they are closed, writing is a soft assert.
    void setOpen(bool isOpen) { m_isOpen = isOpen; }
    void write(const QString &message, bool disrupting);

signals:
    void messageWritten(const QString &message, bool disrupting);

private:
    GeneralMessages() = default;

    bool m_isOpen = true;
};

} // namespace Core::Host
