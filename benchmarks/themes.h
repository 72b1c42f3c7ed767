#pragma once

#include "comparison.h"

class Workplace;

namespace Benchmarks {

// Each registers the rows of one theme. What is measured works in \a workplace, which has to live
// until they have run.

void addRuns(const Workplace &workplace, Extent extent);
void addStreams(Extent extent);
void addDeploys(Workplace &workplace, Extent extent);
void addSignings(const Workplace &workplace, Extent extent);
void addTexts(Extent extent);
void addStartups(const Workplace &workplace, Extent extent);
void addWindows(Extent extent);

} // namespace Benchmarks
