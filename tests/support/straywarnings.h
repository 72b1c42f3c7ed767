#pragma once

#include <QRegularExpression>
#include <QTest>

/// From now on any warning fails the test function, but for those about what the offscreen platform
/// cannot do.
inline void failOnStrayWarnings()
{
    static const QRegularExpression stray(QStringLiteral("^(?!This plugin does not support )"));
    QTest::failOnWarning(stray);
}
