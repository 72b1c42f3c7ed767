#pragma once

#include <QStringList>

/// Not so for a zombie.
bool isAlive(qint64 pid);
/// The command lines of the processes that name \a folder in them.
QStringList processesOf(const QString &folder);
