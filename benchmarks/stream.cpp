#include "flood.h"
#include "outputpane.h"
#include "programs.h"
#include "themes.h"

#include <host/generalmessages.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <vector>

namespace Benchmarks {

static double mebibytesPerSecond(qint64 bytes, double milliseconds)
{
    return double(bytes) / MIB / milliseconds * 1000;
}

static double captureRate(qint64 bytes)
{
    const Flood flood(bytes);
    return mebibytesPerSecond(flood.size(), milliseconds([&] { flood.capture(); }));
}

static void keepBytes(const Flood &flood)
{
    QByteArray bytes;
    QProcess process;
    process.start(flood.tool());
    while (process.waitForReadyRead(-1))
        bytes += process.readAllStandardOutput();
    require(bytes.size() == flood.size(), "output got lost");
}

static double bareRate(qint64 bytes)
{
    const Flood flood(bytes);
    return mebibytesPerSecond(flood.size(), milliseconds([&] { keepBytes(flood); }));
}

static double millisecondsPerMebibyte(qint64 bytes)
{
    return 1000 / captureRate(bytes);
}

/// How long the event loop kept a timer waiting, each time that it was due.
class Heartbeat
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            m_delays.push_back(double(m_clock.nsecsElapsed()) / 1e6 - INTERVAL_MS);
            m_clock.start();
        });
        m_clock.start();
        m_timer.start(INTERVAL_MS);
    }

    /// In milliseconds: \a part of the delays are not longer; 1 for the longest one.
    double quantile(double part)
    {
        require(!m_delays.empty(), "the event loop never turned");
        std::sort(m_delays.begin(), m_delays.end());
        return m_delays[std::size_t(part * double(m_delays.size() - 1))];
    }

private:
    static constexpr int INTERVAL_MS = 1;

    QElapsedTimer m_clock;
    QTimer m_timer;
    std::vector<double> m_delays;
};

/// How long events had to wait, over several streams.
static double delayWhileCapturing(qint64 bytes, int streams, double quantile)
{
    const Flood flood(bytes);
    Heartbeat heartbeat;
    for (int i = 0; i < streams; ++i)
        flood.capture();
    return heartbeat.quantile(quantile);
}

static double delayWhileShowing(qint64 bytes, int streams, double quantile)
{
    using Core::Host::GeneralMessages;
    Workbench::OutputPane pane;
    QObject::connect(GeneralMessages::instance(),
                     &GeneralMessages::messageWritten,
                     &pane,
                     &Workbench::OutputPane::appendMessage);
    pane.resize(800, 600);
    pane.show();
    return delayWhileCapturing(bytes, streams, quantile);
}

/// What a fresh process needs at most, above what it had before, to capture the stream.
static double peakMemory(qint64 bytes)
{
    return outputOf(FLOOD_PEAK, {QString::number(bytes)}).toDouble() / MIB;
}

static std::string sizeText(qint64 bytes)
{
    return std::to_string(bytes / MIB) + " MiB";
}

static void addDelays(const std::string &stream,
                      qint64 bytes,
                      int streams,
                      double (*delay)(qint64 bytes, int streams, double quantile))
{
    for (const auto &[name, quantile] :
         {std::pair{"99.9th percentile", 0.999}, std::pair{"maximum", 1.0}}) {
        add({.what = stream + ": delay, " + name,
             .size = std::to_string(streams) + " x " + sizeText(bytes),
             .unit = "ms",
             .ours = [=, quantile = quantile] { return delay(bytes, streams, quantile); },
             .aim = atMost(30, "ms")});
    }
}

void addStreams(Extent extent)
{
    const qint64 bytes = extent.pick(64, 1) * MIB;
    const int rounds = extent.pick(11, 1);
    add({.what = "stream of lines from a tool",
         .size = sizeText(bytes),
         .unit = "MiB/s",
         .rounds = rounds,
         .ours = [bytes] { return captureRate(bytes); },
         .yardstick = [bytes] { return bareRate(bytes); },
         .aim = atLeastTimes(0.6)});
    add({.what = "stream: peak of memory, and bytes captured",
         .size = sizeText(bytes),
         .unit = "MiB",
         .rounds = extent.pick(3, 1),
         .ours = [bytes] { return peakMemory(bytes); },
         .yardstick = [bytes] { return double(bytes) / MIB; },
         .aim = atMostTimes(2.2)});
    addDelays("stream", bytes, rounds, delayWhileCapturing);
    addDelays("stream, shown", bytes, rounds, delayWhileShowing);

    const qint64 least = extent.pick(4, 1) * MIB;
    for (const int factor : {4, 16}) {
        add({.what = "stream: time per MiB, and that of " + sizeText(least),
             .size = sizeText(factor * least),
             .unit = "ms",
             .rounds = rounds,
             .ours = [=] { return millisecondsPerMebibyte(factor * least); },
             .yardstick = [=] { return millisecondsPerMebibyte(least); },
             .aim = atMostTimes(1.15)});
    }
}

} // namespace Benchmarks
