#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Benchmarks {

/// How much is measured: all of it, or just enough to see that each benchmark works.
struct Extent
{
    bool isSmoke = false;

    template<typename Value>
    Value pick(Value full, Value tiny) const
    {
        return isSmoke ? tiny : full;
    }
};

/// A measurement that cannot be made; what() is for people.
struct Failure : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

inline void require(bool condition, const std::string &otherwise)
{
    if (!condition)
        throw Failure(otherwise);
}

/// What a row is to reach.
struct Aim
{
    std::string text = "-";
    std::function<bool(double ours, double yardstick)> isMet; ///< none: the row is for information
};

Aim atMostTimes(double factor);
Aim atLeastTimes(double factor);
Aim atMost(double value, const std::string &unit);
Aim atMostMore(double value, const std::string &unit);
Aim operator&&(const Aim &left, const Aim &right);
Aim operator||(const Aim &left, const Aim &right);

/// A row of the table: what this project needs for something, beside what a yardstick needs.
struct Comparison
{
    using Measure = std::function<double()>;

    std::string what;
    std::string size;
    std::string unit;    ///< of the values that the measures return
    int rounds = 1;      ///< how often each is measured; the table shows medians
    Measure ours;        ///< may throw Failure
    Measure yardstick{}; ///< none: nothing to compare with
    Aim aim{};

    /// Unique, and what --benchmark_filter looks at.
    std::string name() const { return what + " / " + size; }
};

/// Registers a benchmark that measures both in turns, so that both meet the same weather.
void add(const Comparison &comparison);

using Clock = std::chrono::steady_clock;

inline double millisecondsBetween(Clock::time_point start, Clock::time_point end)
{
    return std::chrono::duration<double, std::milli>(end - start).count();
}

/// The milliseconds that \a action takes.
template<typename Action>
double milliseconds(const Action &action)
{
    const Clock::time_point start = Clock::now();
    action();
    return millisecondsBetween(start, Clock::now());
}

double median(std::vector<double> values);

/// Runs the benchmarks that fit Google Benchmark's options and prints one row for each. The number
/// of those that failed.
int runAll();

} // namespace Benchmarks
