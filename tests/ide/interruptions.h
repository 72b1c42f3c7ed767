#pragma once

#include <QTest>

/// How somebody stops a deploy while its sign step is at work; a row for each. The IDE and the
/// stand-ins run the same rows.
inline void addInterruptions(std::initializer_list<const char *> events)
{
    QTest::addColumn<QString>("event");
    QTest::addColumn<QString>("moment");
    QTest::addColumn<QString>("way");

    for (const char *event : events) {
        const auto row = [event](const char *moment, const char *way) {
            QTest::addRow("%s %s %s", event, moment, way)
                << QString::fromLatin1(event) << QString::fromLatin1(moment)
                << QString::fromLatin1(way);
        };
        for (const char *moment : {"at once", "while the tool starts", "while the tool runs"}) {
            for (const char *way : {"by shortcut", "from an open menu", "by another plugin"})
                row(moment, way);
        }
        // Below the window that asks, nobody reaches menus and shortcuts.
        row("at the prompt", "by another plugin");
    }
}
