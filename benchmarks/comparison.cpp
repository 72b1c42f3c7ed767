#include "comparison.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace Benchmarks {

static std::map<std::string, Comparison> &comparisons()
{
    static std::map<std::string, Comparison> all;
    return all;
}

static std::string formatted(const char *format, double value)
{
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

Aim atMostTimes(double factor)
{
    return {"<= " + formatted("%.2f", factor) + " times",
            [factor](double ours, double yardstick) { return ours <= factor * yardstick; }};
}

Aim atLeastTimes(double factor)
{
    return {">= " + formatted("%.2f", factor) + " times",
            [factor](double ours, double yardstick) { return ours >= factor * yardstick; }};
}

Aim atMost(double value, const std::string &unit)
{
    return {"<= " + formatted("%g ", value) + unit,
            [value](double ours, double) { return ours <= value; }};
}

Aim atMostMore(double value, const std::string &unit)
{
    return {"<= " + formatted("%g ", value) + unit + " more",
            [value](double ours, double yardstick) { return ours <= yardstick + value; }};
}

Aim operator&&(const Aim &left, const Aim &right)
{
    return {left.text + ", " + right.text, [left, right](double ours, double yardstick) {
                return left.isMet(ours, yardstick) && right.isMet(ours, yardstick);
            }};
}

Aim operator||(const Aim &left, const Aim &right)
{
    return {left.text + " or " + right.text, [left, right](double ours, double yardstick) {
                return left.isMet(ours, yardstick) || right.isMet(ours, yardstick);
            }};
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

static void measure(benchmark::State &state, const Comparison &comparison)
{
    std::vector<double> ours;
    std::vector<double> yardstick;
    const auto measureOurs = [&] { ours.push_back(comparison.ours()); };
    const auto measureYardstick = [&] {
        if (comparison.yardstick)
            yardstick.push_back(comparison.yardstick());
    };
    try {
        for ([[maybe_unused]] auto _ : state) {
            // Nobody always has the other's caches to warm up in.
            const bool oursFirst = ours.size() % 2 == 0;
            oursFirst ? measureOurs() : measureYardstick();
            oursFirst ? measureYardstick() : measureOurs();
        }
    } catch (const Failure &failure) {
        state.SkipWithError(failure.what());
        return;
    }
    state.SetLabel(comparison.unit + ", aim: " + comparison.aim.text);
    state.counters["ours"] = median(ours);
    if (comparison.yardstick) {
        state.counters["yardstick"] = median(yardstick);
        state.counters["ratio"] = median(ours) / median(yardstick);
    }
    if (comparison.aim.isMet) {
        state.counters["met"] =
            comparison.aim.isMet(median(ours), comparison.yardstick ? median(yardstick) : 0);
    }
}

void add(const Comparison &comparison)
{
    comparisons()[comparison.name()] = comparison;
    benchmark::RegisterBenchmark(
        comparison.name().c_str(),
        [comparison](benchmark::State &state) { measure(state, comparison); })
        ->Iterations(comparison.rounds)
        ->Unit(benchmark::kMillisecond);
}

/// Prints a row as soon as its benchmark has run.
class Table : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;

    int failures() const { return m_failures; }

private:
    void printRow(const Comparison &comparison, const Run &run);

    int m_failures = 0;
};

static constexpr char ROW[] = "%-46s  %17s  %13s  %13s  %6s  %-36s  %s\n";

bool Table::ReportContext(const Context & /*context*/)
{
    std::printf(ROW, "what", "size", "ours", "yardstick", "ratio", "aim", "met");
    std::fflush(stdout);
    return true;
}

/// Three digits that count, as "1234 ms", "12.3 ms" or "0.012 ms".
static std::string withUnit(double value, const std::string &unit)
{
    const int integerDigits = value >= 1 ? int(std::log10(value)) + 1 : 0;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f ", std::max(0, 3 - integerDigits), value);
    return text + unit;
}

void Table::ReportRuns(const std::vector<Run> &runs)
{
    for (const Run &run : runs) {
        const Comparison &comparison = comparisons().at(run.run_name.function_name);
        if (run.error_occurred) {
            ++m_failures;
            std::fprintf(stderr, "%s: %s\n", comparison.name().c_str(), run.error_message.c_str());
        } else {
            printRow(comparison, run);
        }
    }
}

void Table::printRow(const Comparison &comparison, const Run &run)
{
    const auto cell = [&run](const char *counter, const auto &format) {
        const auto value = run.counters.find(counter);
        return value == run.counters.end() ? std::string("-") : format(double(value->second));
    };
    const auto inUnit = [&](double value) { return withUnit(value, comparison.unit); };
    std::printf(
        ROW,
        comparison.what.c_str(),
        comparison.size.c_str(),
        cell("ours", inUnit).c_str(),
        cell("yardstick", inUnit).c_str(),
        cell("ratio", [](double value) { return formatted("%.2f", value); }).c_str(),
        comparison.aim.text.c_str(),
        cell("met", [](double met) { return std::string(met > 0 ? "yes" : "NO"); }).c_str());
    std::fflush(stdout);
}

int runAll()
{
    Table table;
    benchmark::RunSpecifiedBenchmarks(&table);
    // What they hold has to go before main() ends.
    benchmark::ClearRegisteredBenchmarks();
    comparisons().clear();
    return table.failures();
}

} // namespace Benchmarks
