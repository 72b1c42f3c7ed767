#pragma once

#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>

class Workplace;

namespace Benchmarks {

/// Only as much is measured as it takes to see that each benchmark works.
extern bool isSmoke;

inline int pick(int full, int tiny)
{
    return isSmoke ? tiny : full;
}

/// Gives a measurement up unless \a condition holds.
inline void require(bool condition, const QString &otherwise)
{
    if (!condition)
        throw std::runtime_error(otherwise.toStdString());
}

/// Each returns milliseconds.
struct Measures
{
    std::function<double()> ours;
    std::function<double()> yardstick{}; ///< none: nothing to compare with
};

/// A row of the table: what this project needs for something, beside what a yardstick needs.
struct Comparison
{
    QString what;
    QString size;
    int rounds; ///< how often each is measured; the table shows medians
    /// Makes what the measures work with; not called for rows that are filtered out.
    std::function<Measures()> prepare;
    /// The aim: by how many milliseconds ours is longer at most. None: the row is for information.
    std::optional<double> atMostMore{};
};

/// The milliseconds that \a action takes.
template<typename Action>
double milliseconds(const Action &action)
{
    const auto start = std::chrono::steady_clock::now();
    action();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return time.count();
}

/// Runs a program that has to end with 0, and returns what it prints.
QByteArray outputOf(const QStringList &words, const QString &workingDirectory = {});
/// The milliseconds that it takes, without its output.
double timeOf(const QStringList &words);
/// Builds the packages of the demo project and returns the path of one, which is small.
QString buildDemoPackage(const Workplace &workplace);

// The rows of each theme. What is measured works in \a workplace.
QList<Comparison> deployRows(Workplace &workplace);
QList<Comparison> toolRows(const Workplace &workplace);
QList<Comparison> windowRows(const Workplace &workplace);

/// Measures the rows whose "what / size" fits \a filter, prints each as soon as it is there, and
/// writes all to \a jsonFile if there is a name. False when one could not be measured.
bool run(const QList<Comparison> &rows, const QString &filter, const QString &jsonFile);

} // namespace Benchmarks
