#include "privatekey.h"

#include <QFile>

namespace Sealkit::Internal {

/// Key files are much smaller; a package or an image is not read whole.
constexpr qint64 LARGEST_KEY_FILE = 1 << 20;

enum DerTag : char { INTEGER = 0x02, OBJECT_IDENTIFIER = 0x06, SEQUENCE = 0x30 };

/// The content of the sequence at the start of \a der; empty when there is no sequence.
static QByteArrayView contentOfSequence(QByteArrayView der)
{
    if (der.size() < 2 || der.front() != SEQUENCE)
        return {};
    // A length of 128 bytes or more is written in as many bytes as the lower bits say.
    const auto length = uchar(der.at(1));
    const qsizetype headerSize = length < 0x80 ? 2 : 2 + (length & 0x7f);
    return der.sliced(qMin(headerSize, der.size()));
}

/// A private key is a sequence that begins with a version. An encrypted one begins with a sequence
/// that names the algorithm. Certificates and requests begin with a sequence that has the version.
static bool isDerKey(QByteArrayView der)
{
    const QByteArrayView content = contentOfSequence(der);
    if (content.isEmpty())
        return false;
    const QByteArrayView algorithm = contentOfSequence(content);
    return content.front() == INTEGER
           || (!algorithm.isEmpty() && algorithm.front() == OBJECT_IDENTIFIER);
}

bool holdsPrivateKey(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray content = file.read(LARGEST_KEY_FILE);
    return content.contains("PRIVATE KEY-----") || isDerKey(content);
}

} // namespace Sealkit::Internal
