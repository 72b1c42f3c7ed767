#pragma once

#include <stdexcept>
#include <string>

/// What ends a tool with a line for its user and the exit code 1.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A command line that the tool does not understand: its usage is shown and the exit code is 2.
class UsageError : public Failure
{
public:
    using Failure::Failure;
};
