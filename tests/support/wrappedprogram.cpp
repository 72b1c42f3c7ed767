#include "wrappedprogram.h"

#include "files.h"

#include <QFile>

WrappedProgram::WrappedProgram(const QString &program,
                               const QByteArray &words,
                               const QByteArray &script)
    : m_program(program)
{
    if (!QFile::rename(program, program + ".real"))
        qFatal("%s cannot be wrapped", qPrintable(program));
    writeScript(program,
                "case \"$*\" in \"" + words + "\"*)\n" + script
                    + ";;\nesac\nexec \"$0.real\" \"$@\"\n");
}

WrappedProgram::~WrappedProgram()
{
    QFile::remove(m_program);
    QFile::rename(m_program + ".real", m_program);
}

HeldProgram::HeldProgram(const QString &program, const QByteArray &words)
    : WrappedProgram(
        program,
        words,
        ": > \"$0.held\"\nwhile [ ! -e \"$0.go\" ]; do PATH=/usr/bin:/bin sleep 0.02; done")
{
}

HeldProgram::~HeldProgram()
{
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
