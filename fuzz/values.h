#pragma once

#include <QByteArray>
#include <QList>
#include <QVariant>

/// Each line of \a input is a value as settings can hold it: a letter for its type, then its text.
/// An invalid value stands for a line without a type that is known.
QList<QVariant> valuesFrom(const QByteArray &input);
