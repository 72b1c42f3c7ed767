#include "commands.h"

#include "failure.h"
#include "filesignatures.h"
#include "interruption.h"
#include "packagefolder.h"
#include "replacement.h"
#include "sidebyside.h"
#include "signature.h"
#include "signaturetext.h"
#include "text.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <memory>

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

/// A signature that belongs to a package, and what it is called.
struct StoredSignature
{
    std::string bytes; ///< empty when they cannot be read
    std::string name;
};

using StoredSignatures = std::vector<StoredSignature>;

// Those in the package, then those that lie beside it. One that a run, which was killed then, has
// taken into the package already counts once.
static StoredSignatures signaturesOf(const Package &package, const PackagePlace &place)
{
    StoredSignatures all;
    for (const std::string &bytes : package.signatureHeader().signatures())
        all.push_back({bytes, "signature " + std::to_string(all.size() + 1) + " of " + place.path});
    for (const std::string &name : place.folder->signaturesBeside(place.name)) {
        const std::string bytes = place.folder->signature(name).value_or(std::string());
        const bool isKnown = std::any_of(
            all.begin(), all.end(), [&](const StoredSignature &one) { return one.bytes == bytes; });
        if (!isKnown || bytes.empty())
            all.push_back({bytes, place.path + name.substr(place.name.size())});
    }
    return all;
}

static void removeSignaturesBeside(const PackagePlace &place)
{
    const std::vector<std::string> names = place.folder->signaturesBeside(place.name);
    std::for_each(
        names.rbegin(), names.rend(), [&](const std::string &name) { place.folder->remove(name); });
}

/// Null when a package stays as it is.
using Staged = std::unique_ptr<Replacement>;

// What lies there is looked at, whatever libcrypto and the file system have said.
static bool
isWritten(const std::string &file, const SignatureHeader &header, const PackageDigests &digests)
{
    try {
        const Package package(file);
        return package.signatureHeader().bytes() == header.bytes()
               && PackageDigests(package, header, digests.kinds()).isOfSame(digests);
    } catch (const Failure &) {
        return false;
    }
}

static Staged stage(const PackagePlace &place,
                    const Package &package,
                    const SignatureHeader &header,
                    const PackageDigests &digests)
{
    auto replacement = std::make_unique<Replacement>(place, package, header);
    const Descriptor file = replacement->write(package);
    std::future<void> onDisk =
        std::async(std::launch::async, [&] { replacement->synchronize(file); });
    const bool isRight = isWritten(replacement->stagedFile(), header, digests);
    package.requireUnchanged();
    if (!isRight)
        throw Failure("the new package is not what was written: " + printable(place.path));
    onDisk.get();
    return replacement;
}

/// What packages are signed with.
struct Signing
{
    const Key &key;
    const std::vector<CertificateChain> &signers;
    const Key &binariesKey; ///< may be null
};

static Staged stageSigned(const PackagePlace &place, const Signing &signing)
{
    place.folder->removeLeftovers(place.name);
    const Package package(place.path);
    SignatureHeader header = package.signatureHeader();
    if (signing.binariesKey)
        signBinaries(signing.binariesKey, package, header);
    const PackageDigests digests(
        package, header, {{Coverage::Contents, {Signature::digestFor(signing.key)}}});
    std::vector<std::string> signatures;
    for (const StoredSignature &stored : signaturesOf(package, place)) {
        if (!Signature(stored.bytes).isReadable())
            throw Failure("cannot read the signature: " + printable(stored.name));
        signatures.push_back(stored.bytes);
    }
    for (const CertificateChain &certificates : signing.signers) {
        signatures.push_back(Signature::make(signing.key, certificates, digests));
        if (!Signature(signatures.back()).hasSigned(digests))
            throw Failure("the new signature is not one of the package: " + printable(place.path));
    }
    header.setSignatures(signatures);
    return stage(place, package, header, digests);
}

static void install(const std::vector<Staged> &replacements, const PackagePlaces &places)
{
    Interruption::check();
    for (const Staged &replacement : replacements)
        replacement->requireUnchanged();
    for (const Staged &replacement : replacements)
        replacement->exchange();
    for (const Staged &replacement : replacements)
        replacement->requireUnchanged();
    places.synchronize();
    for (const Staged &replacement : replacements)
        replacement->keep();
}

// All or none: whatever throws leaves each package as it was.
static void replace(const PackagePlaces &places,
                    const std::function<Staged(const PackagePlace &)> &stage)
{
    const std::vector<PackagePlace> distinct = places.distinct();
    std::vector<Staged> replacements;
    places.requireSpace();
    sideBySide<Staged>(
        distinct.size(),
        [&](std::size_t i) { return stage(distinct[i]); },
        [&](std::size_t, Staged staged) {
            if (staged)
                replacements.push_back(std::move(staged));
        });
    install(replacements, places);
}

void signPackages(const Key &key,
                  const std::vector<CertificateChain> &signers,
                  const Key &binariesKey,
                  const Paths &packages)
{
    const PackagePlaces places(packages, PackagePlaces::Access::Locked);
    const Signing signing{key, signers, binariesKey};
    replace(places, [&](const PackagePlace &place) { return stageSigned(place, signing); });
    for (const PackagePlace &place : places.distinct()) {
        try {
            removeSignaturesBeside(place);
        } catch (const Failure &) {
            // It is in the package by now, and counts once.
        }
    }
    std::string lines;
    for (const std::string &package : packages)
        lines += "Signed: " + printable(package) + '\n';
    writeAll(STDOUT_FILENO, lines); // What is signed is signed, whoever hears of it.
}

static Staged stageWithoutSignatures(const PackagePlace &place)
{
    place.folder->removeLeftovers(place.name);
    const Package package(place.path);
    if (package.signatureHeader().signatures().empty())
        return nullptr;
    const PackageDigests digests(
        package, package.signatureHeader(), {{Coverage::Contents, {NID_sha256}}});
    SignatureHeader header = package.signatureHeader();
    if (!header.canBeHadBack())
        throw Failure(
            "rpmsign has removed its signature from the package, which cannot be had back "
            "as it was: "
            + printable(place.path));
    header.setSignatures({});
    return stage(place, package, header, digests);
}

void deleteSignatures(const Paths &packages)
{
    requirePackages(packages);
    const PackagePlaces places(packages, PackagePlaces::Access::Locked);
    std::string lines;
    for (const PackagePlace &place : places.all())
        lines += printable(place.path) + ": "
                 + std::to_string(signaturesOf(Package(place.path), place).size())
                 + " signatures removed\n";
    replace(places, stageWithoutSignatures);
    for (const PackagePlace &place : places.distinct())
        removeSignaturesBeside(place);
    writeAll(STDOUT_FILENO, lines);
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

static std::vector<Signature> readSignatures(const StoredSignatures &stored)
{
    std::vector<Signature> signatures;
    for (const StoredSignature &one : stored)
        signatures.emplace_back(one.bytes);
    return signatures;
}

/// All signatures of a package, read, and the digests that they need.
struct SignaturesOfPackage
{
    explicit SignaturesOfPackage(const PackagePlace &place)
        : package(place.path)
        , stored(signaturesOf(package, place))
        , signatures(readSignatures(stored))
        , digests(package, package.signatureHeader(), digestsOf(signatures))
    {
    }

    Package package;
    StoredSignatures stored;
    std::vector<Signature> signatures;
    PackageDigests digests;
};

static Report dump(const PackagePlace &place)
{
    Report report;
    const SignaturesOfPackage all(place);
    for (std::size_t i = 0; i < all.signatures.size(); ++i) {
        if (!all.signatures[i].isReadable()) {
            report.failure = "cannot read the signature: " + printable(all.stored[i].name);
            return report;
        }
        for (const Signer &signer : all.signatures[i].signers())
            report.text += describe(signer, all.digests);
    }
    const std::string files = describeFileSignatures(all.package.signatureHeader());
    report.text += files.empty() ? files : "Files: " + files + '\n';
    return report;
}

// Of several packages, each one's path comes before its signatures. Of a single one it comes last:
// the dump then begins with its first signature.
void dumpSignatures(const Paths &packages)
{
    requirePackages(packages);
    const PackagePlaces all(packages, PackagePlaces::Access::ReadOnly);
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

static Report verify(const PackagePlace &place, const Verifier &verifier)
{
    const SignaturesOfPackage all(place);
    const std::string path = printable(place.path);
    if (all.signatures.empty())
        return {path + ": not signed\n", "verification failed"};
    Report report;
    for (std::size_t i = 0; i < all.signatures.size(); ++i) {
        const std::string fault = verifier.faultOf(all.signatures[i], all.digests);
        report.text += path + ": signature " + std::to_string(i + 1)
                       + (fault.empty() ? " is valid" : " is NOT valid: " + fault) + '\n';
        if (!fault.empty())
            report.failure = "verification failed";
    }
    const std::string files = describeFileSignatures(all.package.signatureHeader());
    report.text += files.empty() ? files : path + ": files: " + files + '\n';
    return report;
}

void verifySignatures(const std::string &roots, const Paths &packages)
{
    const std::string rootsFile = roots.empty() ? targetFile("etc/root.pem") : roots;
    requirePackages(packages);
    const PackagePlaces all(packages, PackagePlaces::Access::ReadOnly);
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
