#include "commands.h"
#include "failure.h"
#include "keys.h"
#include "package.h"
#include "text.h"
#include "tools.h"

#include <map>

static constexpr std::string_view USAGE =
    "usage: customer-sign --binaries-key KEY --packages-key KEY --packages-cert CERTIFICATE\n"
    "                     [--packages-client-cert CERTIFICATE] PACKAGE...\n"
    "       customer-sign --help\n";

static const std::string BINARIES_KEY = "--binaries-key";
static const std::string PACKAGES_KEY = "--packages-key";
static const std::string PACKAGES_CERTIFICATE = "--packages-cert";
static const std::string CLIENT_CERTIFICATE = "--packages-client-cert";

using Files = std::map<std::string, std::string>; // by their options

static Files takeFiles(Words &words)
{
    Files files{{BINARIES_KEY, {}},
                {PACKAGES_KEY, {}},
                {PACKAGES_CERTIFICATE, {}},
                {CLIENT_CERTIFICATE, {}}};
    for (std::string option = words.takeOption(); !option.empty(); option = words.takeOption()) {
        if (!files.contains(option))
            throw UsageError("unknown option: " + option);
        files[option] = words.takePath(option);
    }
    if (files[BINARIES_KEY].empty())
        throw UsageError("no binaries key given (--binaries-key)");
    if (files[PACKAGES_KEY].empty())
        throw UsageError("no packages key given (--packages-key)");
    if (files[PACKAGES_CERTIFICATE].empty())
        throw UsageError("no packages certificate given (--packages-cert)");
    return files;
}

// One key serves all signatures of a run; the client certificate, when there is one, is a second
// certificate for that same key.
static void sign(Words &words)
{
    const Files files = takeFiles(words);
    const Paths packages = words.takePackages();
    requirePackages(packages);
    const ClosedMemory closedMemory;
    const std::string &path = files.at(BINARIES_KEY);
    const Key binariesKey = readKey(
        "binaries key", path, "Enter passphrase for binaries key " + printable(path) + ": ");
    const Key key = readKey(files.at(PACKAGES_KEY));
    std::vector<CertificateChain> signers;
    for (const std::string &option : {PACKAGES_CERTIFICATE, CLIENT_CERTIFICATE})
        if (!files.at(option).empty())
            signers.push_back(readCertificates(files.at(option), key));
    signPackages(key, signers, binariesKey, packages);
}

static void run(Words &words)
{
    if (words.take("--help"))
        print(std::string(USAGE));
    else
        sign(words);
}

// Signs packages with a customer's keys.
const Tool CUSTOMER_SIGN{"customer-sign", USAGE, run};
