#pragma once

#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

/// What a user reads who lets the mouse rest on \a widget.
inline QString shownToolTip(QWidget *widget)
{
    QToolTip::hideText();
    const QPoint center = widget->rect().center();
    QHelpEvent rest(QEvent::ToolTip, center, widget->mapToGlobal(center));
    QApplication::sendEvent(widget, &rest);
    return QToolTip::text();
}
