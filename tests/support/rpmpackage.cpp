#include "rpmpackage.h"

#include "files.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QtEndian>

constexpr quint32 INT32 = 4;
constexpr quint32 STRING = 6;
constexpr quint32 BINARY = 7;

struct Entry
{
    quint32 tag = 0;
    quint32 type = 0;
    QByteArray data;
};

static QByteArray number(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

/// Each entry has one value, or as many bytes as it is long.
static QByteArray header(quint32 regionTag, const QList<Entry> &entries)
{
    QByteArray index;
    QByteArray store;
    for (const Entry &entry : entries) {
        while (entry.type == INT32 && store.size() % 4 != 0)
            store += '\0';
        const quint32 count = entry.type == BINARY ? quint32(entry.data.size()) : 1;
        index +=
            number(entry.tag) + number(entry.type) + number(quint32(store.size())) + number(count);
        store += entry.data;
        store += QByteArray(entry.type == STRING ? 1 : 0, '\0');
    }
    const quint32 count = quint32(entries.size()) + 1;
    const QByteArray region = number(regionTag) + number(BINARY);
    index.prepend(region + number(quint32(store.size())) + number(16));
    store += region + number(0 - 16 * count) + number(16);
    return QByteArray::fromHex("8eade80100000000") + number(count) + number(quint32(store.size()))
           + index + store;
}

QByteArray rpmPackage(const QByteArray &payload)
{
    const QByteArray main = header(63,
                                   {{1000, STRING, "test"},
                                    {1001, STRING, "1"},
                                    {1002, STRING, "1"},
                                    {1021, STRING, "linux"},
                                    {1022, STRING, "noarch"}});
    const QByteArray digest = QCryptographicHash::hash(main, QCryptographicHash::Sha256).toHex();
    QByteArray signatures = header(
        62, {{273, STRING, digest}, {1000, INT32, number(quint32(main.size() + payload.size()))}});
    signatures.append((8 - signatures.size() % 8) % 8, '\0');
    QByteArray lead = QByteArray::fromHex("edabeedb030000000001") + "test-1-1";
    lead.resize(96, '\0');
    qToBigEndian<quint16>(1, lead.data() + 76); // Linux
    qToBigEndian<quint16>(5, lead.data() + 78); // with a signature header
    return lead + signatures + main + payload;
}

bool isSigned(const QString &path)
{
    return readFile(path).left(1000).contains("Seal"); // the tag, as a number
}

void writePackage(const QString &path)
{
    writeFile(path, rpmPackage(QFileInfo(path).fileName().toUtf8()));
}
