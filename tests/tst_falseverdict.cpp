#include "faultyground.h"
#include "files.h"
#include "signdialog.h"
#include "straywarnings.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QSettings>
#include <QTest>

using namespace Sealkit::Internal;

using Arrangement = std::function<void()>;
Q_DECLARE_METATYPE(Arrangement)

/// Whatever is wrong with a package or on the way to it, the dialog does not call it good; and no
/// request ready that is not.
class FalseVerdictTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void cleanup() { m_ground.closeProject(); }

    void badPackagesAreTold_data();
    void badPackagesAreTold();
    void failedRequestsAreTold_data();
    void failedRequestsAreTold();

private:
    FaultyGround m_ground;
};

void FalseVerdictTest::badPackagesAreTold_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("told");
    QTest::addColumn<Arrangement>("arrange");

    const auto row = [](const QByteArray &name, const QString &told, const Arrangement &arrange) {
        for (const QString &target : {RPMSIGN_TARGET, CUSTOMER_TARGET})
            QTest::newRow(name + ", " + target.toLatin1()) << target << told << arrange;
    };
    FaultyGround &ground = m_ground;
    const auto enterRoots = [&](const QString &path) {
        m_ground.enter("caCertificatePathChooser", path);
    };
    const auto signature = [&] { return m_ground.packages.first() + ".1.p7s"; };

    row("not signed", "not signed", [=] { QFile::remove(signature()); });
    const QString changed = "changed after it was signed";
    row("package changed", changed, [&] {
        writeFile(ground.packages.first(), readFile(ground.packages.first()) + 'x');
    });
    row("another's signature", changed, [&, signature] {
        QVERIFY(QFile::remove(signature()));
        QVERIFY(QFile::copy(ground.packages.last() + ".1.p7s", signature()));
    });
    row("half a signature", "cannot be read", [=] {
        writeFile(signature(), readFile(signature()).chopped(300));
    });
    row("empty signature", "cannot be read", [=] { writeFile(signature(), {}); });
    row("foreign roots", "not issued by a trusted root", [=, &ground] {
        enterRoots(ground.inWorkspace("keys/foreign_root.pem"));
    });
    row("empty roots", "no root certificate can be read", [=, &ground] {
        enterRoots(ground.makeFile("roots"));
    });
    row("no roots", "root certificate not found", [=, &ground] {
        enterRoots(ground.inWorkspace("own/none"));
    });
    row("brisk missing", "cannot start", [&] { ground.setBrisk("/none"); });
    row("no SDK", "cannot start", [&] { ground.closeSdk(); });
    row("tool killed", "\\[\\$\\] 137\t", [&] {
        const bool isCustomers = ground.target() == CUSTOMER_TARGET;
        ground.inTool(isCustomers ? "nxvcert-cli" : "rpmsign-external", "verify", "kill -9 $$");
    });
}

void FalseVerdictTest::badPackagesAreTold()
{
    QFETCH(QString, target);
    QFETCH(QString, told);
    QFETCH(Arrangement, arrange);
    m_ground.openProject(RPMSIGN_TARGET);
    const QString path = m_ground.inWorkspace("keys/client");
    const QStringList sign{"rpmsign-external", "sign", "-k", path + "_key.pem", "-c"};
    QCOMPARE(m_ground.runTool(sign + QStringList(path + "_cert.pem") + m_ground.packages), 0);
    m_ground.setTarget(target);
    QSettings().setValue("KilnRpmSign.History.TargetName", target);
    m_ground.openDialog(new SignDialog(nullptr));
    m_ground.enter("rpmPathChooser", m_ground.packages.first());
    m_ground.click("verifySignaturePushButton");
    QVERIFY(m_ground.takeTexts().contains("verifyIconLabel OK"));

    arrange();
    m_ground.click("verifySignaturePushButton");
    const QStringList texts = m_ground.takeTexts();
    QVERIFY(!texts.contains("Signatures successfully verified"));
    QVERIFY(texts.contains("Could not verify signatures"));
    QVERIFY(texts.contains("verifyIconLabel BROKEN"));
    QVERIFY2(!texts.filter(QRegularExpression(told)).isEmpty(), qPrintable(texts.join('\n')));
}

void FalseVerdictTest::failedRequestsAreTold_data()
{
    QTest::addColumn<QString>("told");
    QTest::addColumn<bool>("hasKey");
    QTest::addColumn<Arrangement>("arrange");

    const auto row =
        [](const char *name, const QString &told, bool hasKey, const Arrangement &arrange) {
            QTest::newRow(name) << told << hasKey << arrange;
        };
    FaultyGround &ground = m_ground;
    const QByteArray diskFull = "trap '' XFSZ; ulimit -f 0";

    row("brisk missing", "cannot start", false, [&] { ground.setBrisk("/none"); });
    row("no SDK", "cannot start", false, [&] { ground.closeSdk(); });
    row("no SDK, old key", "No Build Engine found", true, [&] {
        ground.makeFile("key.pem", "a key");
        ground.closeSdk();
    });
    row("openssl killed", "\\[\\$\\] 137\t", false, [&] {
        ground.inTool("openssl", "genpkey", "kill -9 $$");
    });
    row("openssl killed after the key", "\\[\\$\\] 137\t", true, [&] {
        ground.inTool("openssl", "req", "kill -9 $$");
    });
    row("disk full", "\\[\\$\\] 1\t", false, [&, diskFull] {
        ground.inTool("openssl", "genpkey", diskFull);
    });
    row("disk full after the key",
        "^The request is empty; is the disk full\\?$",
        true,
        [&, diskFull] { ground.inTool("openssl", "req", diskFull); });
}

void FalseVerdictTest::failedRequestsAreTold()
{
    QFETCH(QString, told);
    QFETCH(Arrangement, arrange);
    m_ground.openProject(RPMSIGN_TARGET);
    const QString key = m_ground.inWorkspace("own/key.pem");
    const QString request = m_ground.inWorkspace("own/request.pem");
    m_ground.openDialog(new SignDialog(nullptr));
    m_ground.dialog->findChild<QLineEdit *>("generateCompanyNameLineEdit")->setText("Company");
    m_ground.dialog->findChild<QAbstractButton *>("generationKeyEncryptCheckBox")
        ->setChecked(false);
    m_ground.enter("generatedKeyPathChooser", key);
    m_ground.enter("generatedReqPathChooser", request);
    arrange();
    m_ground.click("genReqButton");

    const QStringList texts = m_ground.takeTexts();
    QVERIFY(texts.contains("generateLabel BROKEN"));
    QVERIFY(texts.first().startsWith("Failed to generate request: "));
    QCOMPARE(texts.contains("![E]\tFiled to generate CSR"), told.startsWith("No Build Engine"));
    QVERIFY2(!texts.filter(QRegularExpression(told)).isEmpty(), qPrintable(texts.join('\n')));
    QTEST(QFile::exists(key), "hasKey");
    QVERIFY(!QFile::exists(request));
}

QTEST_MAIN(FalseVerdictTest)
#include "tst_falseverdict.moc"
