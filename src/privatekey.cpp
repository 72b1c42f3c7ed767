#include "privatekey.h"

#include <QFile>

namespace Sealkit::Internal {

/// A file of keys is much smaller; a package or an image need not be read whole.
constexpr qint64 LARGEST_KEY_FILE = 1 << 20;

enum DerTag : char { INTEGER = 0x02, OBJECT_IDENTIFIER = 0x06, SEQUENCE = 0x30 };

/// What is in the sequence that \a der begins with; nothing when it begins with something else.
static QByteArrayView contentOfSequence(QByteArrayView der)
{
    if (der.size() < 2 || der.front() != SEQUENCE)
        return {};
    // A length of 128 bytes or more is written in as many bytes as the lower bits say.
    const auto length = uchar(der.at(1));
    const qsizetype headerSize = length < 0x80 ? 2 : 2 + (length & 0x7f);
    return der.sliced(qMin(headerSize, der.size()));
}

/// A private key begins with its version. Encrypted, it begins with how. A certificate or a request
/// begins with a sequence, and the version in that.
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
