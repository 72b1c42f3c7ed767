#pragma once

#include <QString>

class Workplace;

namespace Benchmarks {

/// Builds the packages of the demo project and returns the path of one, which is small.
QString buildDemoPackage(const Workplace &workplace);

/// Builds a package of so many MiB below \a folder, and returns its path.
QString buildPackageOfSize(const QString &folder, int mebibytes);

} // namespace Benchmarks
