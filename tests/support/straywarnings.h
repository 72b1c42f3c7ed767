#pragma once

#include <QRegularExpression>
#include <QTest>

/// From now on any warning fails the test function, but for the one that the offscreen platform
/// gives for every window.
inline void failOnStrayWarnings()
{
    static const QRegularExpression stray(
        QStringLiteral("^(?!This plugin does not support propagateSizeHints\\(\\))"));
    QTest::failOnWarning(stray);
}
