#include "commands.h"
#include "failure.h"
#include "keys.h"
#include "package.h"
#include "tools.h"

static constexpr std::string_view USAGE =
    "usage: rpmsign-external sign -k KEY -c CERTIFICATE PACKAGE...\n"
    "       rpmsign-external delete PACKAGE...\n"
    "       rpmsign-external dump PACKAGE...\n"
    "       rpmsign-external verify [--root-cert ROOTS] PACKAGE...\n"
    "       rpmsign-external --version\n";

static void sign(Words &words)
{
    std::string keyFile;
    std::string certificateFile;
    for (std::string option = words.takeOption(); !option.empty(); option = words.takeOption()) {
        if (option == "-k")
            keyFile = words.takePath(option);
        else if (option == "-c")
            certificateFile = words.takePath(option);
        else
            throw UsageError("unknown option: " + option);
    }
    if (keyFile.empty())
        throw UsageError("no key given (-k)");
    if (certificateFile.empty())
        throw UsageError("no certificate given (-c)");
    const Paths packages = words.takePackages();
    requirePackages(packages);
    const ClosedMemory closedMemory;
    const Key key = readKey(keyFile);
    std::vector<CertificateChain> signers;
    signers.push_back(readCertificates(certificateFile, key));
    signPackages(key, signers, nullptr, packages);
}

static void verify(Words &words)
{
    const std::string rootsOption = "--root-cert";
    const std::string roots = words.take(rootsOption) ? words.takePath(rootsOption) : "";
    verifySignatures(roots, words.takePackages());
}

static void run(Words &words)
{
    const std::string command = words.takeCommand();
    if (command == "sign")
        sign(words);
    else if (command == "delete")
        deleteSignatures(words.takePackages());
    else if (command == "dump")
        dumpSignatures(words.takePackages());
    else if (command == "verify")
        verify(words);
    else if (command == "--version")
        print("rpmsign-external 1.0.0\n");
    else
        throw UsageError("unknown command: " + command);
}

// Signs packages as a developer or a client does, and shows, checks and removes signatures.
const Tool RPMSIGN_EXTERNAL{"rpmsign-external", USAGE, run};
