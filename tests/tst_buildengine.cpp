#include "buildengineinfo.h"
#include "recordingbrisk.h"
#include "settingsscope.h"
#include "straywarnings.h"
#include "targettoolsinfo.h"
#include "temporarysdk.h"

#include <brisk/installation.h>

#include <QDir>
#include <QSignalSpy>
#include <QTest>

using namespace Sealkit::Internal;

/// What the plugin finds out about the engine and its targets.
class BuildEngineTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void probesATarget_data();
    void probesATarget();
    void looksForOpensslAgain();
    void readsTheTargetsOnceTheEngineIsStarted();
    void keepsTheTargetsWhenTheEngineDoesNotStart();
    void offersNothingWithoutAnEngine();

private:
    SettingsScope m_settings;
    TemporarySdk m_sdk;
    RecordingBrisk m_brisk;
};

void BuildEngineTest::init()
{
    failOnStrayWarnings();
    QString error;
    QVERIFY2(Brisk::openInstallation(Utils::FilePath::fromString(m_sdk.path()), &error),
             qPrintable(error));
    m_brisk.endWith({});
    m_brisk.takeCalls();
}

static TargetToolsInfo tools(bool rpmsign, bool customer, bool nxvcert, bool openssl)
{
    TargetToolsInfo info;
    info.name = "T";
    info.hasRpmsignExternal = rpmsign;
    info.hasCustomerSign = customer;
    info.hasNxvcertCli = nxvcert;
    info.hasOpenssl = openssl;
    return info;
}

void BuildEngineTest::probesATarget_data()
{
    QTest::addColumn<QByteArray>("exitCodes");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<TargetToolsInfo>("expected");

    const QString rpmsign = "rpmsign-external|--version";
    const QString openssl = "openssl version";
    const QStringList all{rpmsign, "customer-sign|--help", "nxvcert-cli|--help", openssl};
    QTest::newRow("rpmsign-external hides the rest")
        << QByteArray() << QStringList{rpmsign, openssl} << tools(true, false, false, true);
    QTest::newRow("customer-sign") << QByteArray("127\n") << all << tools(false, true, true, true);
    QTest::newRow("only nxvcert-cli")
        << QByteArray("127\n1\n0\n127\n") << all << tools(false, false, true, false);
    QTest::newRow("nothing") << QByteArray("1\n1\n1\n1\n") << all
                             << tools(false, false, false, false);
}

void BuildEngineTest::probesATarget()
{
    QFETCH(const QByteArray, exitCodes);
    QFETCH(const TargetToolsInfo, expected);
    m_brisk.endWith(exitCodes);
    QCOMPARE(TargetToolsInfo("T"), expected);
    QTEST(m_brisk.takeCalls(), "calls");
}

void BuildEngineTest::looksForOpensslAgain()
{
    TargetToolsInfo info = tools(true, false, false, false);
    info.updateOpensslState();
    QCOMPARE(info, tools(true, false, false, true));
    QCOMPARE(m_brisk.takeCalls(), QStringList{"openssl version"});
}

void BuildEngineTest::readsTheTargetsOnceTheEngineIsStarted()
{
    BuildEngineInfo info(nullptr);
    QSignalSpy changed(&info, &BuildEngineInfo::targetsChanged);
    QCOMPARE(info.sharedSrcPath().toFSPathString(), m_sdk.workspace());
    QCOMPARE(m_brisk.takeCalls(), QStringList());

    QVERIFY(changed.wait());
    QCOMPARE(m_brisk.takeCalls(), QStringList{"engine|start"});
    const QStringList targets{"VeyraOS-5.1-x86_64", "VeyraOS-4.0-x86_64", "VeyraOS-3.4-x86_64"};
    QCOMPARE(changed.takeFirst().first().toStringList(), targets);

    info.update();
    QCOMPARE(changed.count(), 0);

    const QString target = m_sdk.path() + "/engine/targets/VeyraOS-3.4-x86_64";
    QVERIFY(QDir().rename(target, target + ".gone"));
    info.update();
    QCOMPARE(changed.count(), 1);
    QVERIFY(QDir().rename(target + ".gone", target));
}

void BuildEngineTest::keepsTheTargetsWhenTheEngineDoesNotStart()
{
    m_brisk.endWith("1\n");
    BuildEngineInfo info(nullptr);
    QSignalSpy changed(&info, &BuildEngineInfo::targetsChanged);
    QVERIFY(QTest::qWaitFor([this] { return m_brisk.takeCalls() == QStringList{"engine|start"}; }));
    QCOMPARE(changed.count(), 0);
    info.update();
    QCOMPARE(changed.count(), 1);
}

void BuildEngineTest::offersNothingWithoutAnEngine()
{
    Brisk::closeInstallation();
    BuildEngineInfo info(nullptr);
    QSignalSpy changed(&info, &BuildEngineInfo::targetsChanged);
    info.update();
    QCOMPARE(changed.count(), 0);
    QVERIFY(info.sharedSrcPath().isEmpty());
}

QTEST_GUILESS_MAIN(BuildEngineTest)
#include "tst_buildengine.moc"
