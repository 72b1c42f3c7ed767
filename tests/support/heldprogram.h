#pragma once

#include <QString>

/// A program that waits before it does anything, when its arguments begin with certain words, until
/// it is released. Put back as it was with this object.
class HeldProgram
{
public:
    HeldProgram(const QString &program, const QByteArray &words);
    ~HeldProgram();
    Q_DISABLE_COPY_MOVE(HeldProgram)

    bool isWaiting() const;
    /// Also for all who come later.
    void release() const;

private:
    const QString m_program;
};
