#pragma once

#include "signature.h"

#include <string>

/// What a dump says of a signer: lines with subject, group, subgroup, key id, algorithms and time,
/// or with subject and a warning when it is no signature of the package.
///
/// Whatever stands in a certificate stays within its line and passes for nothing else: line ends,
/// control characters, marks of direction and the like, markup, colons and slashes are written as
/// \XX, the number of each byte in UTF-8.
std::string describe(const Signer &signer, const PackageDigests &package);
