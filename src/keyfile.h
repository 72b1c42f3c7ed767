#pragma once

#include <QString>

namespace Sealkit::Internal {

/// Whether the file at \a path holds a private key, encrypted or not: as text (PEM) or binary (DER,
/// PKCS #12 containers included).
bool holdsPrivateKey(const QString &path);

} // namespace Sealkit::Internal
