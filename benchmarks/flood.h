#pragma once

#include <QString>
#include <QTemporaryDir>

namespace Benchmarks {

constexpr qint64 MIB = 0x100000;

/// A tool that prints very much, and this project's way of reading it. While it lives it is the
/// brisk of the settings.
class Flood
{
public:
    /// The tool prints about \a bytes, in lines of 80 characters.
    explicit Flood(qint64 bytes);
    ~Flood();
    Flood(const Flood &) = delete;
    Flood &operator=(const Flood &) = delete;

    /// The program that prints.
    QString tool() const { return m_folder.filePath(QStringLiteral("brisk")); }
    /// How many bytes it prints.
    qint64 size() const { return m_lineCount * LINE_LENGTH; }

    /// Runs it as a back end does, its lines signalled and written to the General Messages, where
    /// they are counted. Throws Failure if any of them gets lost.
    void capture() const;

private:
    static constexpr int LINE_LENGTH = 80;

    const qint64 m_lineCount;
    QTemporaryDir m_folder;
};

} // namespace Benchmarks
