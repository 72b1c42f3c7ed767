#include "commands.h"

#include "failure.h"
#include "interruption.h"
#include "sidebyside.h"
#include "signature.h"
#include "signaturefolder.h"
#include "signaturetext.h"
#include "text.h"

#include <cstdlib>
#include <filesystem>

void print(const std::string &text)
{
    if (!writeAll(STDOUT_FILENO, text))
        throw Failure("cannot write the output");
}

std::string targetFile(const std::string &path)
{
    const std::filesystem::path tool = std::filesystem::read_symlink("/proc/self/exe");
    return tool.parent_path().parent_path() / path;
}

using StagedSignatures = std::vector<StagedSignature>;

/// New signatures of a package, none of them in its place.
struct SigningResult
{
    PackageDigests digests;
    StagedSignatures staged;
};

static SigningResult stageSignatures(const SignedPackage &package,
                                     const Key &key,
                                     const std::vector<CertificateChain> &signers)
{
    package.folder->removeLeftovers(package.name);
    const std::vector<std::uint64_t> numbers = package.numbers();
    std::uint64_t number = numbers.empty() ? 0 : numbers.back();
    SigningResult result{PackageDigests(package.path, {Signature::digestFor(key)}), {}};
    for (const CertificateChain &certificates : signers) {
        StagedSignature &staged = result.staged.emplace_back(package, ++number);
        staged.write(Signature::make(key, certificates, result.digests));
        // What lies there is looked at, whatever libcrypto and the file system have said.
        if (!Signature(staged.written()).hasSigned(result.digests))
            throw Failure("the new signature is not one of the package: "
                          + printable(package.path));
    }
    return result;
}

static void requireUnchanged(const std::vector<SigningResult> &results)
{
    for (const SigningResult &result : results)
        result.digests.requireUnchanged();
}

static void install(std::vector<SigningResult> &results, const SignedPackages &packages)
{
    requireUnchanged(results);
    for (SigningResult &result : results)
        for (StagedSignature &staged : result.staged)
            staged.install();
    requireUnchanged(results);
    packages.synchronize();
    for (SigningResult &result : results)
        for (StagedSignature &staged : result.staged)
            staged.keep();
}

void signPackages(const Key &key,
                  const std::vector<CertificateChain> &signers,
                  const Paths &packages)
{
    const SignedPackages all(packages, SignedPackages::Access::Locked);
    const std::vector<SignedPackage> distinct = all.distinct();
    std::vector<SigningResult> results;
    sideBySide<SigningResult>(
        distinct.size(),
        [&](std::size_t i) { return stageSignatures(distinct[i], key, signers); },
        [&](std::size_t, SigningResult result) { results.push_back(std::move(result)); });
    Interruption::check();
    install(results, all);

    std::string lines;
    for (const std::string &package : packages)
        lines += "Signed: " + printable(package) + '\n';
    writeAll(STDOUT_FILENO, lines); // What is signed is signed, whoever hears of it.
}

void deleteSignatures(const Paths &packages)
{
    requirePackages(packages);
    const SignedPackages all(packages, SignedPackages::Access::Locked);
    std::string lines;
    for (const SignedPackage &package : all.all()) {
        package.folder->removeLeftovers(package.name);
        const std::vector<std::uint64_t> numbers = package.numbers();
        for (auto number = numbers.rbegin(); number != numbers.rend(); ++number)
            package.folder->remove(signatureName(package.name, *number));
        lines += printable(package.path) + ": " + std::to_string(numbers.size())
                 + " signatures removed\n";
    }
    all.synchronize();
    writeAll(STDOUT_FILENO, lines);
}

static std::vector<Signature> signaturesOf(const SignedPackage &package)
{
    std::vector<Signature> signatures;
    for (const std::uint64_t number : package.numbers())
        signatures.emplace_back(
            package.folder->signature(signatureName(package.name, number)).value_or(std::string()));
    return signatures;
}

// For people and programs that are in another folder.
static std::string absolute(const std::string &path)
{
    char *folder = path.starts_with('/') ? nullptr : get_current_dir_name();
    const std::string result = folder ? folder + ('/' + path) : path;
    std::free(folder);
    return result;
}

/// What is to be printed about a package, and what ends the run behind that.
struct Report
{
    std::string text;
    std::string failure;
};

static Report dump(const SignedPackage &package)
{
    Report report;
    const std::vector<std::uint64_t> numbers = package.numbers();
    if (numbers.empty())
        return report;
    const std::vector<Signature> signatures = signaturesOf(package);
    const PackageDigests digests(package.path, digestsOf(signatures));
    for (std::size_t i = 0; i < signatures.size(); ++i) {
        if (!signatures[i].isReadable()) {
            report.failure =
                "cannot read the signature: " + printable(package.signaturePath(numbers[i]));
            return report;
        }
        for (const Signer &signer : signatures[i].signers())
            report.text += describe(signer, digests);
    }
    return report;
}

// Of several packages, each one's path comes before its signatures. Of a single one it comes last:
// the dump then begins with its first signature.
void dumpSignatures(const Paths &packages)
{
    requirePackages(packages);
    const SignedPackages all(packages, SignedPackages::Access::ReadOnly);
    const bool isSingle = packages.size() == 1;
    sideBySide<Report>(
        packages.size(),
        [&](std::size_t i) { return dump(all.all()[i]); },
        [&](std::size_t i, const Report &report) {
            print((isSingle ? "" : printable(absolute(packages[i])) + '\n') + report.text);
            if (!report.failure.empty())
                throw Failure(report.failure);
        });
    if (isSingle)
        print(printable(absolute(packages.front())) + '\n');
}

static Report verify(const SignedPackage &package, const Verifier &verifier)
{
    const std::vector<std::uint64_t> numbers = package.numbers();
    if (numbers.empty())
        return {printable(package.path) + ": not signed\n", "verification failed"};
    const std::vector<Signature> signatures = signaturesOf(package);
    const PackageDigests digests(package.path, digestsOf(signatures));
    Report report;
    for (std::size_t i = 0; i < signatures.size(); ++i) {
        const std::string fault = verifier.faultOf(signatures[i], digests);
        report.text += printable(package.path) + ": signature " + std::to_string(numbers[i])
                       + (fault.empty() ? " is valid" : " is NOT valid: " + fault) + '\n';
        if (!fault.empty())
            report.failure = "verification failed";
    }
    return report;
}

void verifySignatures(const std::string &roots, const Paths &packages)
{
    const std::string rootsFile = roots.empty() ? targetFile("etc/root.pem") : roots;
    requirePackages(packages);
    const SignedPackages all(packages, SignedPackages::Access::ReadOnly);
    const Verifier verifier(rootsFile);
    std::string failure;
    sideBySide<Report>(
        packages.size(),
        [&](std::size_t i) { return verify(all.all()[i], verifier); },
        [&](std::size_t, const Report &report) {
            print(report.text);
            failure += failure.empty() ? report.failure : "";
        });
    if (!failure.empty())
        throw Failure(failure);
}
