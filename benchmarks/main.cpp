// Measures what this project adds to its tools' own time, and how well it keeps its window alive.
#include "themes.h"
#include "workplace.h"

#include <benchmark/benchmark.h>

#include <QApplication>

#include <algorithm>
#include <cstring>

using namespace Benchmarks;

/// Takes \a option out of the arguments.
static bool takeOption(int &argc, char **argv, const char *option)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], option) != 0)
            continue;
        std::copy(argv + i + 1, argv + argc + 1, argv + i);
        --argc;
        return true;
    }
    return false;
}

static QtMessageHandler theDefaultHandler = nullptr;

/// The platform without a display complains about each window that is shown.
static void
dropComplaints(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!message.startsWith("This plugin does not support "))
        theDefaultHandler(type, context, message);
}

int main(int argc, char **argv)
{
    const Extent extent{.isSmoke = takeOption(argc, argv, "--smoke")};
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    theDefaultHandler = qInstallMessageHandler(dropComplaints);
    const QApplication application(argc, argv);

    Workplace workplace;
    addRuns(workplace, extent);
    addStreams(extent);
    addDeploys(workplace, extent);
    addSignings(workplace, extent);
    addTexts(extent);
    addStartups(workplace, extent);
    addWindows(extent);
    return runAll() == 0 ? 0 : 1;
}
