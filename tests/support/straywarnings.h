#pragma once

#include <QRegularExpression>
#include <QTest>

/// From now on any soft assert ends the test program, and any warning fails the test function, but
/// for those about what the offscreen platform cannot do, and about the lack of file handles, which
/// Qt tells from 6.8 on.
inline void failOnStrayWarnings()
{
    static const QRegularExpression stray(
        QStringLiteral("^(?!This plugin does not support |QProcess: Cannot create pipe )"));
    QTest::failOnWarning(stray);
    qputenv("QTC_FATAL_ASSERTS", "1");
}
