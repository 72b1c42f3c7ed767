#pragma once

#include "failure.h"
#include "files.h"
#include "handles.h"
#include "signatureheader.h"

#include <map>
#include <set>
#include <string>
#include <sys/stat.h>
#include <vector>

/// An RPM package, open for reading: what is looked at is what is read afterwards, whatever takes
/// its place meanwhile.
class Package
{
public:
    /// Throws a Failure when the file cannot be read or is no package in order.
    explicit Package(const std::string &path);

    const std::string &path() const { return m_path; }
    int descriptor() const { return m_file.number(); }
    const struct stat &status() const { return m_status; }
    const std::string &lead() const { return m_lead; }
    const SignatureHeader &signatureHeader() const { return m_signatureHeader; }
    /// Where the part behind the signature header begins, and how many bytes it has.
    off_t restStart() const { return m_restStart; }
    off_t restSize() const { return m_status.st_size - m_restStart; }

    /// What the package's builder wrote into its header. Throws a Failure when it is not in order.
    std::vector<HeaderEntry> header() const;

    /// Throws a Failure when another file is at the path, or this one has changed.
    void requireUnchanged() const;

private:
    SignatureHeader readSignatureHeader();

    const std::string m_path;
    const Descriptor m_file;
    struct stat m_status = {};
    const std::string m_lead;
    off_t m_restStart = 0;
    const SignatureHeader m_signatureHeader; // behind what reading it sets
};

/// Throws a Failure unless each path is that of a package.
void requirePackages(const std::vector<std::string> &paths);

/// Whether two looks at a file saw the same one with the same contents.
bool isSameFile(const struct stat &one, const struct stat &other);

/// What a signature is of.
enum class Coverage {
    Contents, ///< all but the signature header; that one's file signatures are looked at apart
    Whole     ///< all bytes of the package as it is without signatures of ours
};

/// The digests that are wanted of a package, by what they cover.
using DigestKinds = std::map<Coverage, std::set<int>>; // NIDs

/// Digests of a package, made in one read that never holds more than a piece of it.
class PackageDigests
{
public:
    /// \a header is the package's signature header or will be it. Throws a Failure when the package
    /// cannot be read or changes meanwhile.
    PackageDigests(const Package &package, const SignatureHeader &header, const DigestKinds &kinds);

    /// What libcrypto makes and checks signatures with: a chain with a BIO for each digest.
    BIO *chain(Coverage coverage) const { return m_chains.at(coverage).get(); }
    const DigestKinds &kinds() const { return m_kinds; }
    /// Whether the contents have the same digest; there must be one.
    bool isOfSame(const PackageDigests &other) const;
    /// SHA-256 of the file signatures in the signature header.
    const std::string &ofFileSignatures() const { return m_ofFileSignatures; }

private:
    void add(std::string_view bytes, const std::string &path) const;
    void read(const Package &package);
    std::string ofContents() const;

    const DigestKinds m_kinds;
    std::map<Coverage, BioChain> m_chains;
    std::string m_ofFileSignatures;
};
