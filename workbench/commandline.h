#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace Workbench {

/// What the program was asked to do.
struct CommandLine
{
    /// A deploy run without a window; there is a project then.
    bool deploy = false;
    /// Only whether a window can be opened.
    bool checkDisplay = false;
    /// Empty means the one that was open last.
    QString project;
    /// Folder of the SDK; empty means the one used last.
    QString sdk;
    /// Name of the target to build for; empty means the one the project used last.
    QString target;
    /// Answers every pass-phrase prompt.
    std::optional<QString> passphrase;
    /// Where settings are kept; empty means the user's own place.
    QString settingsFolder;
};

/// The reason to end before anything was done; \a exitCode is 0 for help that was asked for.
struct EarlyExit
{
    int exitCode;
    QString message;
};

/// Reads \a arguments (element 0 is the program) and the pass-phrase file that they name.
std::variant<CommandLine, EarlyExit> parseCommandLine(const QStringList &arguments);

} // namespace Workbench
