#include "heldinput.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QWindow>

#include <memory>

namespace Sealkit::Internal {

static QList<QPointer<QWindow>> openWindows()
{
    QList<QPointer<QWindow>> windows;
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible())
            windows << window;
    }
    return windows;
}

HeldInput::HeldInput()
    : m_windowsBefore(openWindows())
{
    qGuiApp->installEventFilter(this);
}

HeldInput::~HeldInput()
{
    qGuiApp->removeEventFilter(this);
    for (const std::function<void()> &deliver : m_deliveries)
        QMetaObject::invokeMethod(qGuiApp, deliver, Qt::QueuedConnection);
}

bool HeldInput::isModalWindowOpen() const
{
    QWindow *modalWindow = QGuiApplication::modalWindow();
    return modalWindow && !m_windowsBefore.contains(modalWindow);
}

enum class Treatment { Deliver, Hold, Drop };

/// Windows get the input first and hand it to their widgets. A shortcut is the exception: it goes
/// to its action without passing a window.
static Treatment treatmentOf(const QObject *receiver, const QEvent *event)
{
    if (event->type() == QEvent::Shortcut)
        return Treatment::Hold;
    if (!receiver->isWindowType())
        return Treatment::Deliver;
    switch (event->type()) {
    case QEvent::MouseMove:
        // Without a button it only follows the pointer.
        return static_cast<const QMouseEvent *>(event)->buttons() ? Treatment::Hold
                                                                  : Treatment::Drop;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return Treatment::Hold;
    case QEvent::Close:
        // A dialog that has been answered closes in this way, too.
        return static_cast<const QWindow *>(receiver)->type() == Qt::Dialog ? Treatment::Deliver
                                                                            : Treatment::Hold;
    case QEvent::TabletPress: // who does not take these gets them as those of a mouse
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::NativeGesture:
    case QEvent::DragEnter: // whose data does not live long enough; refused, nothing is dropped
        return Treatment::Drop;
    default:
        return Treatment::Deliver;
    }
}

/// Sends what \a event is now, when called.
static std::function<void()> deliveryOf(QObject *receiver, const QEvent *event)
{
    const QPointer<QObject> target(receiver);
    if (const auto *mouse = dynamic_cast<const QMouseEvent *>(event)) {
        // A clone would share its point with the device, and move on with the pointer.
        const auto send = [target,
                           type = mouse->type(),
                           position = mouse->position(),
                           scenePosition = mouse->scenePosition(),
                           globalPosition = mouse->globalPosition(),
                           button = mouse->button(),
                           buttons = mouse->buttons(),
                           modifiers = mouse->modifiers(),
                           device = mouse->pointingDevice()] {
            QMouseEvent again(
                type, position, scenePosition, globalPosition, button, buttons, modifiers, device);
            if (target)
                QCoreApplication::sendEvent(target, &again);
        };
        return send;
    }
    return [target, again = std::shared_ptr<QEvent>(event->clone())] {
        if (target)
            QCoreApplication::sendEvent(target, again.get());
    };
}

bool HeldInput::eventFilter(QObject *receiver, QEvent *event)
{
    if (isModalWindowOpen())
        return false;
    const Treatment treatment = treatmentOf(receiver, event);
    if (treatment == Treatment::Deliver)
        return false;
    if (treatment == Treatment::Hold)
        m_deliveries.push_back(deliveryOf(receiver, event));
    // A window stays open whose closing is held.
    event->ignore();
    return true;
}

} // namespace Sealkit::Internal
