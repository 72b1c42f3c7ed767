#include "files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly)
        || file.write(contents) != contents.size())
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
}

void writeScript(const QString &path, const QByteArray &script)
{
    writeFile(path, "#!/bin/sh\n" + script);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
