#include "fuzzing.h"

#include "signdialog.h"

#include <algorithm>

/// From the first keyword of each line on, if it is one of those that are kept.
static QString summary(const QString &dump)
{
    QString result;
    for (const QString &line : dump.split(u'\n')) {
        qsizetype first = line.size();
        for (const char *keyword : {"Subject:", "Group:", "Subgroup:", "Key ID:", "Signature:"}) {
            if (const qsizetype at = line.indexOf(QLatin1String(keyword)); at >= 0)
                first = std::min(first, at);
        }
        const QString match = line.mid(first);
        if (match.startsWith("Subject") || match.startsWith("Group"))
            result += match + u'\n';
    }
    return result;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString dump = text(data, size);
    const QString lines = Sealkit::Internal::parseDumpForSort(dump);
    expectEqual(lines, summary(dump), "the summary");
    expectEqual(Sealkit::Internal::parseDumpForSort(lines), lines, "a summary's summary");
    return 0;
}
