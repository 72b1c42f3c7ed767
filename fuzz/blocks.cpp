#include "fuzzing.h"

#include "utils.h"

/// The first subject of each line.
static QList<qsizetype> subjects(const QString &dump)
{
    QList<qsizetype> starts;
    qsizetype lineStart = 0;
    for (const QString &line : dump.split(u'\n')) {
        if (const qsizetype at = line.indexOf("Subject"); at >= 0)
            starts << lineStart + at;
        lineStart += line.size() + 1;
    }
    return starts;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString dump = text(data, size);
    const QList<qsizetype> starts = subjects(dump);
    const QStringList blocks = Sealkit::Internal::midDumpOutput(dump);

    expectEqual(blocks.size(), starts.size(), "a block for each subject");
    for (qsizetype i = 0; i < blocks.size(); ++i) {
        const qsizetype start = starts.at(i);
        const qsizetype length = i + 1 < starts.size() ? starts.at(i + 1) : dump.size();
        expectEqual(blocks.at(i),
                    dump.sliced(start, qMin(length, dump.size() - start)),
                    "a block is as long as the next one's place");
    }
    return 0;
}
