#pragma once

#include <QString>

/// A program with a script of the shell around it. The script runs first, and alone if it ends,
/// when the program's arguments begin with certain words. Put back as it was with this object.
class WrappedProgram
{
public:
    WrappedProgram(const QString &program, const QByteArray &words, const QByteArray &script);
    ~WrappedProgram();
    Q_DISABLE_COPY_MOVE(WrappedProgram)

protected:
    const QString m_program;
};

/// A program that waits, before it does anything, until it is released.
class HeldProgram : public WrappedProgram
{
public:
    HeldProgram(const QString &program, const QByteArray &words);
    ~HeldProgram();

    bool isWaiting() const;
    /// Also for all who come later.
    void release() const;
};
