#pragma once

#include <QTest>

/// QTest::newRow() with its values in one line.
template<typename... Values>
void addRow(const char *name, const Values &...values)
{
    (QTest::newRow(name) << ... << values);
}
