#pragma once

#include <utils/filepath.h>

#include <QStringList>

namespace Utils {

/// A program and its arguments.
class CommandLine
{
public:
    CommandLine() = default;
    CommandLine(const FilePath &executable, const QStringList &arguments)
        : m_executable(executable)
        , m_arguments(arguments)
    {
    }

    FilePath executable() const { return m_executable; }
    QStringList splitArguments() const { return m_arguments; }
    /// The form that people are shown.
    QString toUserOutput() const
    {
        return (QStringList(m_executable.toUserOutput()) + m_arguments).join(QLatin1Char(' '));
    }

private:
    FilePath m_executable;
    QStringList m_arguments;
};

} // namespace Utils
