#pragma once

#include "handles.h"

#include <string>
#include <vector>

using CertificateChain = std::vector<Certificate>;

/// From now on, libcrypto wipes out all that it frees. To be called before it is used.
void wipeFreedMemory();

/// While it exists, no core dump is written of this program, and no other one may look into its
/// memory. Who has keys has this for longer.
class ClosedMemory
{
public:
    ClosedMemory();
    ~ClosedMemory();
    ClosedMemory(const ClosedMemory &) = delete;
    ClosedMemory &operator=(const ClosedMemory &) = delete;
};

/// The private key in a file of any format that libcrypto reads. A pass phrase that it needs is
/// asked for on the terminal with \a prompt, up to three times. \a what names the key to the user.
/// Throws a Failure when there is no key in the end.
Key readKey(const std::string &what, const std::string &path, const std::string &prompt);
Key readKey(const std::string &path);

/// The certificates in a file: the signer's own one, then those that lead from it to a root. Throws
/// a Failure unless the first one is valid today, for signatures, and that of \a key.
CertificateChain readCertificates(const std::string &path, const Key &key);
