#pragma once

#include <QTest>

/// QTest::addColumn() for each of \a names, with the type at its place.
template<typename... Types, typename... Names>
void addColumns(Names... names)
{
    static_assert(sizeof...(Types) == sizeof...(Names));
    (QTest::addColumn<Types>(names), ...);
}

/// QTest::newRow() with its values in one line.
template<typename... Values>
void addRow(const char *name, const Values &...values)
{
    (QTest::newRow(name) << ... << values);
}
