#include "user.h"

#include <QApplication>
#include <QProcess>
#include <QWidget>

// Started, and not waited for: the IDE must be able to get the events.
static void runTool(const QStringList &arguments)
{
    QProcess::startDetached("xdotool", arguments);
}

void pressKeys(const QString &keys)
{
    runTool({"key", keys});
}

void typeText(const QString &text)
{
    runTool({"type", "--delay", "30", text});
}

void typeLine(const QString &text)
{
    runTool({"type", "--args", "1", text, "key", "Return"});
}

void clickOn(const QWidget *widget)
{
    const QPoint position = widget->mapToGlobal(widget->rect().center());
    runTool(
        {"mousemove", QString::number(position.x()), QString::number(position.y()), "click", "1"});
}

Once::Once(const std::function<bool()> &isTime, const std::function<void()> &act)
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, isTime, act] {
        if (!isTime())
            return;
        m_timer.stop();
        act();
    });
    m_timer.start(50);
}

Answers::Answers(const std::function<void(QWidget *)> &answer)
{
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [answer] {
        QWidget *window = QApplication::activeModalWidget();
        if (window && window->isVisible())
            answer(window);
    });
    m_timer.start(400);
}
