#include "fuzzing.h"

#include "utils.h"

#include <algorithm>

/// What stands behind each "Group: " up to the end of its line, if the line has one.
static QStringList groups(const QString &dump)
{
    const QString keyword = QStringLiteral("Group: ");
    QStringList names;
    qsizetype at = 0;
    while ((at = dump.indexOf(keyword, at)) >= 0) {
        at += keyword.size();
        const auto end = std::find_if(dump.begin() + at, dump.end(), [](QChar character) {
            return character == u'\n' || character == u'\r';
        });
        if (end == dump.end())
            break;
        names << dump.sliced(at, end - dump.begin() - at);
        at = end - dump.begin();
    }
    return names;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString dump = text(data, size);
    const QStringList names = groups(dump);
    const auto found = Sealkit::Internal::signGroups(dump);
    expectEqual(found.developer, names.contains("developer"), "a developer's signature");
    expectEqual(found.client, names.contains("client"), "a client's signature");
    return 0;
}
