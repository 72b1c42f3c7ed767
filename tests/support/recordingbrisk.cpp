#include "recordingbrisk.h"

#include "files.h"

#include <QFile>
#include <QSettings>

RecordingBrisk::RecordingBrisk()
{
    const QString script = m_folder.filePath("brisk");
    writeScript(script,
                "folder=$(pwd)\ncd \"${0%/*}\" || exit\necho \"$folder\" > folder\n"
                "[ \"$2\" = start ] || shift 6\n"
                "{ printf '%s|' \"$@\"; echo; } >> calls\n"
                "[ ! -e left ] || cp left \"$(cat left-at)\"\n"
                "read -r code < codes || code=0\n"
                "sed -i 1d codes\n"
                "exit \"$code\"\n");
    QSettings().setValue("Kiln.BriskPath", script);
    endWith({});
}

void RecordingBrisk::endWith(const QByteArray &codes) const
{
    writeFile(m_folder.filePath("codes"), codes);
}

void RecordingBrisk::leaveBehind(const QString &path, const QByteArray &content) const
{
    writeFile(m_folder.filePath("left-at"), path.toUtf8());
    writeFile(m_folder.filePath("left"), content);
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

QString RecordingBrisk::folderOfLastCall() const
{
    return QString::fromUtf8(readFile(m_folder.filePath("folder")).trimmed());
}
