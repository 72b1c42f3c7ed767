#pragma once

#include <QStringList>

#include <string>
#include <vector>

namespace Benchmarks {

/// Runs a program with next to nothing between it and the kernel: an input that stays open, no
/// output. Throws Failure when it cannot be started or does not end with 0.
void spawnAndWait(const std::vector<std::string> &words);

/// The same, and returns the most memory that the program had for itself at a time, in MiB.
double peakMemoryOf(const std::vector<std::string> &words);

/// What a program prints until it ends with 0; otherwise throws Failure with its complaint.
QByteArray outputOf(const QString &program,
                    const QStringList &arguments,
                    const QString &workingDirectory = {});

} // namespace Benchmarks
