#include "heldprogram.h"

#include "files.h"

#include <QFile>

HeldProgram::HeldProgram(const QString &program, const QByteArray &words)
    : m_program(program)
{
    if (!QFile::rename(program, program + ".real"))
        qFatal("%s cannot be held", qPrintable(program));
    writeScript(program,
                "case \"$*\" in \"" + words
                    + "\"*)\n: > \"$0.held\"\nwhile [ ! -e \"$0.go\" ]; do "
                      "PATH=/usr/bin:/bin sleep 0.02; done;;\nesac\nexec \"$0.real\" \"$@\"\n");
}

HeldProgram::~HeldProgram()
{
    QFile::remove(m_program);
    QFile::rename(m_program + ".real", m_program);
    QFile::remove(m_program + ".held");
    QFile::remove(m_program + ".go");
}

bool HeldProgram::isWaiting() const
{
    return QFile::exists(m_program + ".held");
}

void HeldProgram::release() const
{
    writeFile(m_program + ".go", {});
}
