#pragma once

#include <string>
#include <vector>

/// A program to run: \a words are its path and its arguments.
struct Command
{
    std::vector<std::string> words;
    std::string searchPath; ///< what PATH holds for the program
};

/// Runs \a command on a pseudo-terminal of its own, whose echo is off, until it ends.
///
/// Standard input is typed into the terminal; its end becomes the terminal's end-of-file
/// character. What the terminal shows goes to standard output. Nothing that the command started
/// on the terminal is left when the function returns or when this program is killed.
///
/// Returns the command's exit code, or 128 + N when signal N ended the command or was sent to
/// this program. Throws std::system_error when the command cannot be started.
int runOnTerminal(const Command &command);
