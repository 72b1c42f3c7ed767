#include "programs.h"
#include "themes.h"
#include "workplace.h"

namespace Benchmarks {

/// In a fresh process, as libraries load only once; see pluginstart.cpp.
static double startTime(const Workplace &workplace, const QString &library)
{
    return outputOf(PLUGIN_START, {library, workplace.sdk().path()}).toDouble();
}

void addStartups(const Workplace &workplace, Extent extent)
{
    add({.what = "loading the plugin, and an empty one",
         .size = "1 engine",
         .unit = "ms",
         .rounds = extent.pick(51, 1),
         .ours = [&workplace] { return startTime(workplace, SEALKIT_LIBRARY); },
         .yardstick = [&workplace] { return startTime(workplace, EMPTY_PLUGIN_LIBRARY); },
         .aim = atMostMore(10, "ms")});
}

} // namespace Benchmarks
