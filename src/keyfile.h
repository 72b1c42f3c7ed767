#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace Sealkit::Internal {

// What is in the files that a user chooses as key, certificate or request. A path may be one that
// is being typed: only regular files of a likely size are read, so that nothing here waits.

/// The content of the file at \a path; empty when it is no regular file or larger than any key.
QByteArray readKeyFile(const QString &path);

/// Whether a private key is in the file, PEM or DER, encrypted or not.
bool holdsPrivateKey(const QString &path);
/// Whether a certificate signing request is in the file, as openssl writes it.
bool holdsRequest(const QString &path);
bool holdsCertificate(const QString &path);

/// Of which kind the key is that the certificate signing request at \a path was made with; empty
/// when that cannot be told.
QString keyKindOfRequest(const QString &path);

/// Whether the first certificate in one file is about the private key in the other. Nothing when
/// that cannot be told, as of an encrypted key or of an algorithm that Qt does not know.
std::optional<bool> belongTogether(const QString &keyPath, const QString &certificatePath);

} // namespace Sealkit::Internal
