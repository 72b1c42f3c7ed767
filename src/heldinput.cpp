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
        // A move without a button only says where the pointer is, which the next event does, too.
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
        // When the user answers a dialog, its window gets a close event, too.
        return static_cast<const QWindow *>(receiver)->type() == Qt::Dialog ? Treatment::Deliver
                                                                            : Treatment::Hold;
    case QEvent::TabletPress: // Qt sends mouse events instead to a window that takes none of these
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::NativeGesture:
    case QEvent::DragEnter: // refused, because its data cannot be kept; so no drop follows
        return Treatment::Drop;
    default:
        return Treatment::Deliver;
    }
}

/// A function that sends \a event again, as it is now.
static std::function<void()> deliveryOf(QObject *receiver, const QEvent *event)
{
    const QPointer<QObject> target(receiver);
    if (const auto *mouse = dynamic_cast<const QMouseEvent *>(event)) {
        // A cloned mouse event shares its point with the device, so its position would change.
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
    // An ignored close event leaves its window open.
    event->ignore();
    return true;
}

} // namespace Sealkit::Internal
