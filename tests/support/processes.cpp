#include "processes.h"

#include "files.h"

#include <QDir>
#include <QFile>

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

static QByteArray memoryOf(const QString &pid)
{
    constexpr qint64 LARGEST = 0x4000000; // what a sanitizer reserves is larger
    QByteArray bytes;
    QFile memory("/proc/" + pid + "/mem");
    if (!memory.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return bytes;
    // "7f1200000000-7f1200021000 rw-p ..."
    for (const QByteArray &line : readFile("/proc/" + pid + "/maps").split('\n')) {
        const QByteArrayList range = line.left(line.indexOf(' ')).split('-');
        const qint64 start = range.first().toLongLong(nullptr, 16);
        const qint64 end = range.last().toLongLong(nullptr, 16);
        if (line.contains(" rw") && end - start <= LARGEST && memory.seek(start))
            bytes += memory.read(end - start);
    }
    return bytes;
}

QByteArrayList memoriesOf(qint64 pid)
{
    const QString own = QString::number(pid);
    QByteArrayList memories{memoryOf(own)};
    const QByteArray children = readFile("/proc/" + own + "/task/" + own + "/children").trimmed();
    for (const QByteArray &child : children.split(' '))
        memories << memoryOf(QString::fromLatin1(child));
    return memories;
}
