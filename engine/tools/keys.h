#pragma once

#include "handles.h"

#include <string>

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

/// The first certificate in a file. Throws a Failure unless it is valid today and that of \a key.
Certificate readCertificate(const std::string &path, const Key &key);
