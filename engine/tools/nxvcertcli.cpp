#include "commands.h"
#include "failure.h"
#include "tools.h"

static constexpr std::string_view USAGE =
    "usage: nxvcert-cli delete PACKAGE...\n"
    "       nxvcert-cli dump PACKAGE...\n"
    "       nxvcert-cli verify --root-cert-file-path ROOTS PACKAGE...   (an empty ROOTS: the "
    "default)\n"
    "       nxvcert-cli --help\n";

static void verify(Words &words)
{
    const std::string rootsOption = "--root-cert-file-path";
    if (!words.take(rootsOption))
        throw UsageError("no root certificate given");
    const std::string roots = words.takePathOrNothing(rootsOption);
    verifySignatures(roots, words.takePackages());
}

static void run(Words &words)
{
    const std::string command = words.takeCommand();
    if (command == "delete")
        deleteSignatures(words.takePackages());
    else if (command == "dump")
        dumpSignatures(words.takePackages());
    else if (command == "verify")
        verify(words);
    else if (command == "--help")
        print(std::string(USAGE));
    else
        throw UsageError("unknown command: " + command);
}

// Shows, checks and removes signatures of packages.
const Tool NXVCERT_CLI{"nxvcert-cli", USAGE, run};
