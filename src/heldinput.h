#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>
#include <vector>

class QEvent;
class QWindow;

namespace Sealkit::Internal {

/// Keeps the user's keys and clicks from all windows of the IDE while it lives, and its main
/// windows open. Keys, clicks and the closing are not lost: afterwards they reach their windows, in
/// the order in which they came. Drags are refused. A modal window that is opened meanwhile is
/// usable; Qt then blocks the others, whose input is dropped as under any modal window.
class HeldInput : public QObject
{
    Q_OBJECT

public:
    HeldInput();
    /// What was held is on its way to the windows, and gets there from the event loop.
    ~HeldInput() override;

    /// Whether a modal window has been opened meanwhile, and is still there.
    bool isModalWindowOpen() const;

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    const QList<QPointer<QWindow>> m_windowsBefore;
    std::vector<std::function<void()>> m_deliveries;
};

} // namespace Sealkit::Internal
