#include "keyfile.h"

#include <QFile>
#include <QFileInfo>
#include <QSslCertificate>
#include <QSslKey>

namespace Sealkit::Internal {

constexpr qint64 LARGEST_KEY_FILE = 1 << 20; // bytes; a bundle of root certificates fits

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

QByteArray readKeyFile(const QString &path)
{
    const QFileInfo info(path);
    QFile file(path);
    // To open a named pipe would wait for somebody who writes to it.
    if (!info.isFile() || info.size() > LARGEST_KEY_FILE || !file.open(QIODevice::ReadOnly))
        return {};
    return file.read(LARGEST_KEY_FILE);
}

bool holdsPrivateKey(const QString &path)
{
    const QByteArray content = readKeyFile(path);
    return content.contains("PRIVATE KEY-----") || isDerKey(content);
}

bool holdsRequest(const QString &path)
{
    const QByteArray content = readKeyFile(path);
    return !content.contains("PRIVATE KEY") && content.contains("CERTIFICATE REQUEST-----");
}

bool holdsCertificate(const QString &path)
{
    return !QSslCertificate::fromData(readKeyFile(path)).isEmpty();
}

/// The first block in \a pem, decoded.
static QByteArray derOf(const QByteArray &pem)
{
    QByteArray base64;
    for (const QByteArray &line : pem.mid(pem.indexOf("-----BEGIN")).split('\n').mid(1)) {
        if (line.startsWith("-----END"))
            break;
        base64 += line.trimmed();
    }
    return QByteArray::fromBase64(base64);
}

QString keyKindOfRequest(const QString &path)
{
    const struct
    {
        QByteArray algorithm; ///< the number by which certificates and requests name it
        const char *name;
    } kinds[] = {{QByteArray::fromHex("06092a864886f70d010101"), "RSA"},
                 {QByteArray::fromHex("06072a8648ce3d0201"), "EC"},
                 {QByteArray::fromHex("06082a85030701010101"), "GOST R 34.10-2012 (256)"},
                 {QByteArray::fromHex("06082a85030701010102"), "GOST R 34.10-2012 (512)"}};
    const QByteArray der = derOf(readKeyFile(path));
    for (const auto &kind : kinds) {
        if (der.contains(kind.algorithm))
            return QLatin1String(kind.name);
    }
    return {};
}

/// What is inside of the sequence's last element, a bit string: the modulus and the exponent of an
/// RSA key, the point of one on a curve. A private key has the same bytes in it.
static QByteArrayView publicPart(QByteArrayView subjectPublicKeyInfo)
{
    constexpr char BIT_STRING = 0x03;
    const QByteArrayView content = contentOfSequence(subjectPublicKeyInfo);
    // The sequence that names the algorithm comes first; its length fits into one byte.
    const qsizetype algorithmSize = content.size() < 2 ? 0 : 2 + qsizetype(uchar(content.at(1)));
    const QByteArrayView bitString = content.sliced(qMin(algorithmSize, content.size()));
    if (bitString.size() < 3 || bitString.front() != BIT_STRING)
        return {};
    const auto length = uchar(bitString.at(1));
    // The first byte of the content says how many bits of the last one are unused.
    const qsizetype headerSize = (length < 0x80 ? 2 : 2 + (length & 0x7f)) + 1;
    const QByteArrayView bits = bitString.sliced(qMin(headerSize, bitString.size()));
    const QByteArrayView sequence = contentOfSequence(bits);
    return sequence.isEmpty() ? bits : sequence;
}

std::optional<bool> belongTogether(const QString &keyPath, const QString &certificatePath)
{
    const QByteArray content = readKeyFile(keyPath);
    const QSslCertificate certificate =
        QSslCertificate::fromData(readKeyFile(certificatePath)).value(0);
    if (certificate.isNull() || content.contains("ENCRYPTED"))
        return {};
    const QByteArray publicKey = certificate.publicKey().toDer();
    if (publicKey.isEmpty())
        return {};
    for (const QSsl::KeyAlgorithm algorithm : {QSsl::Rsa, QSsl::Ec}) {
        const QSslKey key(content, algorithm, QSsl::Pem, QSsl::PrivateKey);
        if (!key.isNull())
            return key.toDer().contains(publicPart(publicKey));
    }
    return {};
}

} // namespace Sealkit::Internal
