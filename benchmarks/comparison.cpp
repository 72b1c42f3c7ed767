#include "comparison.h"

#include "files.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Benchmarks {

bool isSmoke = false;

static double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// Measures both in turns, so that a busy moment of the machine meets both.
static QJsonObject measured(const Comparison &row)
{
    QList<double> ours;
    QList<double> yardstick;
    const Measures measures = row.prepare();
    for (int round = 0; round < row.rounds; ++round) {
        // Nobody always has the other's caches to warm up in.
        for (const bool isOurs : {round % 2 == 0, round % 2 != 0}) {
            if (isOurs)
                ours << measures.ours();
            else if (measures.yardstick)
                yardstick << measures.yardstick();
        }
    }
    QJsonObject values{{"what", row.what}, {"size", row.size}, {"ours", median(ours)}};
    if (measures.yardstick) {
        values["yardstick"] = median(yardstick);
        values["ratio"] = median(ours) / median(yardstick);
    }
    if (row.atMostMore) {
        values["limit"] = values.value("yardstick").toDouble() + *row.atMostMore;
        values["met"] = median(ours) <= values.value("limit").toDouble();
    }
    return values;
}

static void print(const QStringList &cells)
{
    static constexpr int WIDTHS[] = {-44, 13, 10, 10, 10, 10, 6};
    for (qsizetype i = 0; i < cells.size(); ++i)
        std::printf("%*s", WIDTHS[i], qPrintable(cells.at(i)));
    std::puts("");
    std::fflush(stdout);
}

/// Three digits that count.
static QString text(const QJsonValue &value)
{
    const int integerDigits = int(std::log10(std::max(1.0, value.toDouble()))) + 1;
    if (value.isDouble())
        return QString::number(value.toDouble(), 'f', std::max(0, 3 - integerDigits));
    return value.isUndefined() ? "-" : value.toBool() ? "yes" : "NO";
}

bool run(const QList<Comparison> &rows, const QString &filter, const QString &jsonFile)
{
    QJsonArray table;
    bool hasFailures = false;
    print({"milliseconds", "size", "ours", "yardstick", "ratio", "limit", "met"});
    for (const Comparison &row : rows) {
        const QString name = row.what + " / " + row.size;
        if (!name.contains(QRegularExpression(filter)))
            continue;
        try {
            const QJsonObject values = measured(row);
            table << values;
            QStringList cells{row.what, row.size};
            for (const char *column : {"ours", "yardstick", "ratio", "limit", "met"})
                cells << text(values.value(column));
            print(cells);
        } catch (const std::runtime_error &failure) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(name), failure.what());
            hasFailures = true;
        }
    }
    if (!jsonFile.isEmpty())
        writeFile(jsonFile, QJsonDocument(table).toJson());
    return !hasFailures;
}

} // namespace Benchmarks
