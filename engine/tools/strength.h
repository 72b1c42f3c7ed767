#pragma once

#include "handles.h"

// What is refused, whoever trusts it: in signing as in verifying.

/// Whether the key has at least 2048 bits (RSA, DSA) or 224 bits (EC).
bool isStrong(EVP_PKEY *key);
/// Whether the digest is none of those for which collisions can be made.
bool isStrongDigest(int digest);
/// Whether the issuer's signature in the certificate uses a strong digest. What has issued itself
/// is not believed for its signature.
bool isSignedStrongly(X509 *certificate);
/// Whether the certificate's key usages, where it has some, allow signatures, and the extended ones
/// those of code or mail.
bool isForSigning(X509 *certificate);
