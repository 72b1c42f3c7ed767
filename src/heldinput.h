#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>
#include <vector>

class QEvent;
class QWindow;

namespace Sealkit::Internal {

/// While an object of this class lives, it holds back keys, clicks and requests to close a window,
/// for all windows of the IDE. Then the windows get them in the order in which they came. Drags are
/// refused. A modal window that is opened meanwhile is usable; Qt then blocks the other windows and
/// drops their input, as under any modal window.
class HeldInput : public QObject
{
    Q_OBJECT

public:
    HeldInput();
    /// The windows get the held input from the event loop.
    ~HeldInput() override;

    /// Whether a modal window is open that was not open when this object was made.
    bool isModalWindowOpen() const;

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    const QList<QPointer<QWindow>> m_windowsBefore;
    std::vector<std::function<void()>> m_deliveries;
};

} // namespace Sealkit::Internal
