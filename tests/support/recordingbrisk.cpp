#include "recordingbrisk.h"

#include <QFile>
#include <QSettings>

static void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s", qPrintable(file.errorString()));
}

RecordingBrisk::RecordingBrisk()
{
    const QString script = m_folder.filePath("brisk");
    write(script,
          "#!/bin/sh\n"
          "cd \"${0%/*}\" || exit\n"
          "[ \"$2\" = start ] || shift 6\n"
          "{ printf '%s|' \"$@\"; echo; } >> calls\n"
          "[ ! -e left ] || cp left \"$(cat left-at)\"\n"
          "read -r code < codes || code=0\n"
          "sed -i 1d codes\n"
          "exit \"$code\"\n");
    QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QSettings().setValue("Kiln.BriskPath", script);
    endWith({});
}

void RecordingBrisk::endWith(const QByteArray &codes) const
{
    write(m_folder.filePath("codes"), codes);
}

void RecordingBrisk::leaveBehind(const QString &path, const QByteArray &content) const
{
    write(m_folder.filePath("left-at"), path.toUtf8());
    write(m_folder.filePath("left"), content);
}

QStringList RecordingBrisk::takeCalls() const
{
    QFile file(m_folder.filePath("calls"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString calls = QString::fromUtf8(file.readAll());
    file.remove();
    return calls.split("|\n", Qt::SkipEmptyParts);
}
