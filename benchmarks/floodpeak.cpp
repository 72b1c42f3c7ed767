// floodpeak BYTES: captures so many bytes from a tool and prints by how many bytes the memory of
// this process grew meanwhile, at its peak.
#include "comparison.h"
#include "files.h"
#include "flood.h"
#include "settingsscope.h"

#include <QCoreApplication>

#include <cstdio>

/// In bytes; \a field is one of the kernel's names in /proc/self/status.
static qint64 memory(const QByteArray &field)
{
    const QByteArray status = readFile("/proc/self/status");
    const QByteArray value = status.mid(status.indexOf(field + ':') + field.size() + 1);
    return value.left(value.indexOf("kB")).trimmed().toLongLong() * 1024;
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const SettingsScope settings;
    try {
        // What comes with the first run is no matter of its length.
        Benchmarks::Flood(Benchmarks::MIB / 16).capture();
        const Benchmarks::Flood flood(application.arguments().value(1).toLongLong());
        const qint64 start = memory("VmRSS");
        flood.capture();
        std::printf("%lld\n", memory("VmHWM") - start);
    } catch (const Benchmarks::Failure &failure) {
        std::fprintf(stderr, "floodpeak: %s\n", failure.what());
        return 1;
    }
    return 0;
}
