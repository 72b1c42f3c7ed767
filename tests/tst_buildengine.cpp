#include "buildengineinfo.h"
#include "recordingbrisk.h"
#include "settingsscope.h"
#include "straywarnings.h"
#include "targettoolsinfo.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <brisk/installation.h>

#include <QDir>
#include <QSignalSpy>

using namespace Sealkit::Internal;

/// What the plugin finds out about the engine and its targets.
class BuildEngineTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void probesATarget_data();
    void probesATarget();
    void readsTheTargetsOnceTheEngineIsStarted();

private:
    SettingsScope m_settings;
    TemporarySdk m_sdk;
    RecordingBrisk m_brisk;
};

void BuildEngineTest::probesATarget_data()
{
    // found: rpmsign-external, customer-sign, nxvcert-cli, openssl
    addColumns<QByteArray, QStringList, QList<bool>>("exitCodes", "calls", "found");

    const QString rpmsign = "rpmsign-external|--version";
    const QString openssl = "openssl version";
    const QStringList all{rpmsign, "customer-sign|--help", "nxvcert-cli|--help", openssl};
    using Found = QList<bool>;
    addRow("rpmsign-external hides the rest",
           QByteArray(),
           QStringList{rpmsign, openssl},
           Found{true, false, false, true});
    addRow("customer-sign", QByteArray("127\n0\n1\n0\n"), all, Found{false, true, false, true});
    addRow("nxvcert-cli", QByteArray("127\n1\n0\n127\n"), all, Found{false, false, true, false});
}

void BuildEngineTest::probesATarget()
{
    QFETCH(const QByteArray, exitCodes);
    m_brisk.endWith(exitCodes);
    m_brisk.takeCalls();
    TargetToolsInfo info("T");
    const QList<bool> found{
        info.hasRpmsignExternal, info.hasCustomerSign, info.hasNxvcertCli, info.hasOpenssl};
    QTEST(found, "found");
    QTEST(m_brisk.takeCalls(), "calls");

    const TargetToolsInfo before = info;
    info.updateOpensslState(); // finds it now
    QCOMPARE(m_brisk.takeCalls(), QStringList{"openssl version"});
    QCOMPARE(info == before, before.hasOpenssl);
}

void BuildEngineTest::readsTheTargetsOnceTheEngineIsStarted()
{
    QString error;
    QVERIFY2(Brisk::openInstallation(Utils::FilePath::fromString(m_sdk.path()), &error),
             qPrintable(error));
    m_brisk.endWith("1\n"); // it does not start at first
    BuildEngineInfo info(nullptr);
    QSignalSpy changed(&info, &BuildEngineInfo::targetsChanged);
    QSignalSpy failed(&info, &BuildEngineInfo::updateFailed);
    QCOMPARE(info.sharedSrcPath().toFSPathString(), m_sdk.workspace());
    QCOMPARE(m_brisk.takeCalls(), QStringList());
    QVERIFY(failed.wait());
    QCOMPARE(m_brisk.takeCalls(), QStringList{"engine|start"});
    QCOMPARE(changed.count(), 0);

    info.update();
    const QStringList targets{"VeyraOS-5.1-x86_64", "VeyraOS-4.0-x86_64", "VeyraOS-3.4-x86_64"};
    QCOMPARE(changed.takeFirst().first().toStringList(), targets);
    info.update();
    QCOMPARE(changed.count(), 0);

    QVERIFY(QDir(m_sdk.path() + "/engine/targets/VeyraOS-3.4-x86_64").removeRecursively());
    info.update();
    QCOMPARE(changed.count(), 1);

    Brisk::closeInstallation();
    QVERIFY(BuildEngineInfo(nullptr).sharedSrcPath().isEmpty());
    info.update();
    QCOMPARE(changed.count(), 1);
}

QTEST_GUILESS_MAIN(BuildEngineTest)
#include "tst_buildengine.moc"
