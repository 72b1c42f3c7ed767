#pragma once

#include <QString>
#include <QTimer>

#include <functional>

class QWidget;

/// Presses keys as a person does, through the window system, e.g. "alt+BackSpace".
void pressKeys(const QString &keys);
void typeText(const QString &text);
void typeLine(const QString &text);
/// Clicks into the middle of it, through the window system.
void clickOn(const QWidget *widget);

/// Looks, in whatever event loop turns, whether it is time to act, and does so once.
class Once
{
public:
    Once(const std::function<bool()> &isTime, const std::function<void()> &act);

private:
    QTimer m_timer;
};

/// Answers windows that keep the rest of the application waiting, as long as this lives.
class Answers
{
public:
    /// \a answer gets the window, again and again until it is gone.
    explicit Answers(const std::function<void(QWidget *window)> &answer);

private:
    QTimer m_timer;
};
