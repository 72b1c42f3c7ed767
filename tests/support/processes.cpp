#include "processes.h"

#include "files.h"

#include <QDir>

bool isAlive(qint64 pid)
{
    // "7 (name) S ..."
    const QByteArray state = readFile(QStringLiteral("/proc/%1/stat").arg(pid));
    return !state.isEmpty() && !state.contains(") Z ");
}

QStringList processesOf(const QString &folder)
{
    QStringList commandLines;
    const QStringList pids = QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs);
    for (const QString &pid : pids) {
        QByteArray commandLine = readFile("/proc/" + pid + "/cmdline");
        if (commandLine.contains(folder.toUtf8()))
            commandLines << QString::fromUtf8(commandLine.replace('\0', ' '));
    }
    return commandLines;
}
