#include "temporarysdk.h"

#include <QProcess>
#include <QTest>

TemporarySdk::TemporarySdk()
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(MAKE_DEMO_SDK),
                  {QStringLiteral("--brisk"), QStringLiteral(BRISK_EXECUTABLE), path()});
    if (!process.waitForFinished(60'000) || process.exitCode() != 0)
        qFatal("no demo SDK: %s", process.readAll().constData());
}

bool lacksGost()
{
    if (!QByteArray(QTest::currentDataTag()).contains("GOST"))
        return false;
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"), {QStringLiteral("engine"), QStringLiteral("gost")});
    return !openssl.waitForFinished() || openssl.exitCode() != 0;
}
