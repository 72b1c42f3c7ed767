#pragma once

#include "handles.h"
#include "package.h"

#include <string>

// Signatures of single files in a package, which the kernel can check when it runs them: IMA
// signatures of version 2, over the digests that the package's header has of the files.

/// Signs the ELF files of a package, into \a header; leaves them when \a key has signed them
/// already. Throws a Failure when they are signed by another key, or when signatures of the package
/// would break.
void signBinaries(const Key &key, const Package &package, SignatureHeader &header);

/// How many files are signed, and by which keys; empty when none is.
std::string describeFileSignatures(const SignatureHeader &header);
