#pragma once

#include "handles.h"

#include <set>
#include <string>
#include <sys/stat.h>
#include <vector>

/// Throws a Failure unless each path is that of an RPM package that can be read.
void requirePackages(const std::vector<std::string> &paths);

/// Digests of all bytes of a package, made in one read that never holds more than a piece of it.
class PackageDigests
{
public:
    /// \a kinds are the digests' NIDs. Throws a Failure when the package cannot be read or changes
    /// meanwhile.
    PackageDigests(const std::string &path, const std::set<int> &kinds);

    const std::string &path() const { return m_path; }
    /// What libcrypto makes and checks signatures with: a chain with a BIO for each digest.
    BIO *chain() const { return m_chain.get(); }

    /// Throws a Failure when the package is not what was read any more.
    void requireUnchanged() const;

private:
    void read(int package);

    std::string m_path;
    BioChain m_chain;
    struct stat m_status = {};
};
