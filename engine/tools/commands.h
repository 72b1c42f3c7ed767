#pragma once

#include "keys.h"

#include <string>
#include <vector>

// What the tools do with packages. Each throws a Failure when it has not done all of it.

using Paths = std::vector<std::string>;

/// Adds to packages that requirePackages() has seen: a signature by the key for each of the
/// signers' certificates to each package, or none to any. A key for the binaries in the packages
/// signs those before; null is none.
void signPackages(const Key &key,
                  const std::vector<CertificateChain> &signers,
                  const Key &binariesKey,
                  const Paths &packages);
void deleteSignatures(const Paths &packages);
void dumpSignatures(const Paths &packages);
/// An empty \a roots stands for the target's own ones.
void verifySignatures(const std::string &roots, const Paths &packages);

/// Writes to standard output at once. Throws a Failure when that cannot take it.
void print(const std::string &text);
/// A file of the target that the running tool belongs to.
std::string targetFile(const std::string &path);
