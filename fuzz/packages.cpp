#include "fuzzing.h"

#include "utils.h"

/// The shortest paths that a line has, one after the other, and where they stand in the dump.
static QList<std::pair<qsizetype, QString>> paths(const QString &dump)
{
    QList<std::pair<qsizetype, QString>> found;
    qsizetype lineStart = 0;
    for (const QString &line : dump.split(u'\n')) {
        qsizetype from = 0;
        for (;;) {
            const qsizetype begin = line.indexOf(u'/', from);
            const qsizetype end = begin < 0 ? -1 : line.indexOf("rpm", begin + 2);
            if (end < 0)
                break;
            from = end + 3;
            found.append({lineStart + begin, line.sliced(begin, from - begin)});
        }
        lineStart += line.size() + 1;
    }
    return found;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString dump = text(data, size);
    const auto expected = paths(dump);
    const auto packages = Sealkit::Internal::splitDumpByPackage(dump);

    expectEqual(packages.size(), expected.size(), "a section for each path");
    QString sections;
    for (qsizetype i = 0; i < packages.size(); ++i) {
        expectEqual(packages.at(i).packagePath, expected.at(i).second, "the path of a section");
        expectEqual(dump.indexOf(packages.at(i).dump, expected.at(i).first),
                    expected.at(i).first,
                    "a section begins with its path");
        sections += packages.at(i).dump;
    }
    expectEqual(sections,
                expected.isEmpty() ? QString() : dump.mid(expected.first().first),
                "sections follow each other without a gap");
    return 0;
}
