#pragma once

#include <QByteArray>
#include <QStringList>

/// Not so for a zombie.
bool isAlive(qint64 pid);
/// The command lines of the processes that name \a folder in them.
QStringList processesOf(const QString &folder);
/// What a process and each of its children have in their memories; nothing is what nobody but root
/// may look into.
QByteArrayList memoriesOf(qint64 pid);
