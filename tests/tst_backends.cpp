#include "customersealkit.h"
#include "messages.h"
#include "recordingbrisk.h"
#include "rpmsignexternal.h"
#include "settingsscope.h"
#include "signdata.h"
#include "straywarnings.h"
#include "temporarysdk.h"

#include <brisk/buildengine.h>
#include <brisk/installation.h>
#include <brisk/sdk.h>
#include <host/generalmessages.h>

#include <QDir>
#include <QSettings>
#include <QTest>

using namespace Sealkit::Internal;
using Command::Result;
using Utils::FilePath;

class BackEndsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void addsSignatures_data();
    void addsSignatures();
    void endsWithItsCaller_data();
    void endsWithItsCaller();
    void runsOneCommandEach_data();
    void runsOneCommandEach();
    void customerSignMakesNoRequests();
    void makesRequests_data();
    void makesRequests();
    void reportsThatNoRequestCanBeConfigured();
    void dropsAnEmptyKeyOfAFailedRun_data();
    void dropsAnEmptyKeyOfAFailedRun();

private:
    bool leftConfiguration() const
    {
        return !QDir(m_sdk.workspace()).entryList({".csr_*"}, QDir::Files | QDir::Hidden).isEmpty();
    }

    SettingsScope m_settings;
    TemporarySdk m_sdk;
    RecordingBrisk m_brisk;
};

void BackEndsTest::initTestCase()
{
    QString error;
    QVERIFY2(Brisk::openInstallation(FilePath::fromString(m_sdk.path()), &error),
             qPrintable(error));
}

void BackEndsTest::init()
{
    failOnStrayWarnings();
    m_brisk.endWith({});
    m_brisk.takeCalls();
}

void BackEndsTest::addsSignatures_data()
{
    QTest::addColumn<QString>("clientKey");
    QTest::addColumn<QString>("clientCertificate");
    QTest::addColumn<QByteArray>("exitCodes");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<int>("exitCode");

    const QString first = "rpmsign-external|sign|-k|k|-c|c|a.rpm|b.rpm";
    const QString second = "rpmsign-external|sign|-k|ck|-c|cc|a.rpm|b.rpm";
    QTest::newRow("developer") << ""
                               << "" << QByteArray() << QStringList{first} << 0;
    QTest::newRow("client key alone") << "ck"
                                      << "" << QByteArray() << QStringList{first} << 0;
    QTest::newRow("client certificate alone") << ""
                                              << "cc" << QByteArray() << QStringList{first} << 0;
    QTest::newRow("both") << "ck"
                          << "cc" << QByteArray() << QStringList{first, second} << 0;
    QTest::newRow("first fails") << "ck"
                                 << "cc" << QByteArray("2\n") << QStringList{first} << 2;
    QTest::newRow("second fails") << "ck"
                                  << "cc" << QByteArray("0\n3\n") << QStringList{first, second}
                                  << 3;
}

void BackEndsTest::addsSignatures()
{
    QFETCH(const QString, clientKey);
    QFETCH(const QString, clientCertificate);
    QFETCH(const QByteArray, exitCodes);
    SignData data;
    data.key = "k";
    data.certificate = "c";
    data.clientKey = clientKey;
    data.clientCertificate = clientCertificate;

    m_brisk.endWith(exitCodes);
    RpmsignExternal tool(nullptr);
    QTEST(tool.addSignature("T", {"a.rpm", "b.rpm"}, data).exitCode, "exitCode");
    QTEST(m_brisk.takeCalls(), "calls");
}

void BackEndsTest::endsWithItsCaller_data()
{
    QTest::addColumn<bool>("makesRequest");

    QTest::newRow("second signature") << false;
    QTest::newRow("request for a new key") << true;
}

void BackEndsTest::endsWithItsCaller()
{
    QFETCH(const bool, makesRequest);
    struct Caller
    {
        RpmsignExternal tool{nullptr};
        QString target = QString(100, u'T');
        QStringList packages{"a.rpm"};
        SignData data;
        KeyGenerationData request;
    };
    auto caller = std::make_unique<Caller>();
    caller->data = {.binariesKey = {},
                    .clientKey = "ck",
                    .clientCertificate = "cc",
                    .certificate = "c",
                    .key = "k",
                    .rootCertificate = {}};
    caller->request.keyPath = FilePath::fromString(m_sdk.workspace() + "/none.pem");

    // Told when the first program has ended, and before its run returns.
    QObject context;
    connect(Core::Host::GeneralMessages::instance(),
            &Core::Host::GeneralMessages::messageWritten,
            &context,
            [&caller] { caller.reset(); });
    const Result result =
        makesRequest ? caller->tool.generateRequest(caller->target, caller->request)
                     : caller->tool.addSignature(caller->target, caller->packages, caller->data);
    QVERIFY(!caller);
    QVERIFY(!result.succeeded());
    QCOMPARE(m_brisk.takeCalls().size(), 1);
    QVERIFY(!leftConfiguration());
}

void BackEndsTest::runsOneCommandEach_data()
{
    QTest::addColumn<bool>("forCustomerSign");
    QTest::addColumn<QStringList>("calls");

    QTest::newRow("rpmsign-external") << false
                                      << QStringList{"rpmsign-external|delete|a.rpm",
                                                     "rpmsign-external|verify|--root-cert|r|a.rpm",
                                                     "rpmsign-external|dump|a.rpm"};
    QTest::newRow("customer-sign")
        << true
        << QStringList{"nxvcert-cli|delete|a.rpm",
                       "nxvcert-cli|verify|--root-cert-file-path|r|a.rpm",
                       "nxvcert-cli|dump|a.rpm"};
}

void BackEndsTest::runsOneCommandEach()
{
    QFETCH(const bool, forCustomerSign);
    std::unique_ptr<SignTool> tool;
    if (forCustomerSign)
        tool = std::make_unique<CustomerSealkit>();
    else
        tool = std::make_unique<RpmsignExternal>(nullptr);
    SignData data;
    data.rootCertificate = "r";

    m_brisk.endWith("1\n0\n2\n");
    QCOMPARE(tool->removeSignature("T", {"a.rpm"}).exitCode, 1);
    QCOMPARE(tool->verifySignature("T", {"a.rpm"}, data).exitCode, 0);
    QCOMPARE(tool->dumpSignature("T", {"a.rpm"}).exitCode, 2);
    QTEST(m_brisk.takeCalls(), "calls");
}

void BackEndsTest::customerSignMakesNoRequests()
{
    QCOMPARE(CustomerSealkit().generateRequest("T", {}), (Result{false, -1, {}, {}}));
    QCOMPARE(m_brisk.takeCalls(), QStringList());

    const QMetaType type = CustomerSealkit::staticMetaObject.metaType();
    void *tool = type.create();
    QVERIFY(tool);
    type.destroy(tool);
}

void BackEndsTest::makesRequests_data()
{
    QTest::addColumn<bool>("keyExists");
    QTest::addColumn<QByteArray>("exitCodes");
    QTest::addColumn<int>("keyRuns");
    QTest::addColumn<int>("requestRuns");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("new key") << false << QByteArray() << 1 << 1 << 0;
    QTest::newRow("existing key") << true << QByteArray() << 0 << 1 << 0;
    QTest::newRow("key fails") << false << QByteArray("4\n") << 1 << 0 << 4;
    QTest::newRow("request fails") << true << QByteArray("5\n") << 0 << 1 << 5;
}

void BackEndsTest::makesRequests()
{
    QFETCH(const bool, keyExists);
    QFETCH(const QByteArray, exitCodes);
    QFETCH(const int, keyRuns);
    QFETCH(const int, requestRuns);

    KeyGenerationData data;
    data.companyName = "Company";
    data.requestPath = FilePath::fromString(m_sdk.workspace() + "/new.csr");
    data.keyPath = FilePath::fromString(m_sdk.workspace() + "/new.pem");
    QFile key(data.keyPath.toFSPathString());
    if (keyExists)
        QVERIFY(key.open(QIODevice::WriteOnly));

    m_brisk.endWith(exitCodes);
    QTEST(RpmsignExternal(nullptr).generateRequest("T", data).exitCode, "exitCode");

    const QStringList calls = m_brisk.takeCalls();
    QCOMPARE(calls.filter(QRegularExpression("^openssl\\|genpkey\\|")).size(), keyRuns);
    const QStringList requests = calls.filter(QRegularExpression("^openssl\\|req\\|"));
    QCOMPARE(requests.size(), requestRuns);
    for (const QString &request : requests) {
        QVERIFY(request.endsWith(
            QStringLiteral("|-key|%1|-out|%2")
                .arg(data.keyPath.toUserOutput(), data.requestPath.toUserOutput())));
    }
    QVERIFY(!leftConfiguration());
    key.remove();
}

void BackEndsTest::reportsThatNoRequestCanBeConfigured()
{
    Brisk::BuildEngine *engine = Brisk::Sdk::buildEngines().first();
    KeyGenerationData data;
    data.keyPath = FilePath::fromString(m_sdk.path() + "/sdk.ini"); // any file that exists

    engine->setSharedSrcPath("/no/such/folder");
    Messages messages;
    QCOMPARE(RpmsignExternal(nullptr).generateRequest("T", data), (Result{false, -1, {}, {}}));
    engine->setSharedSrcPath(FilePath::fromString(m_sdk.workspace()));

    const QStringList lines = messages.take();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0), "![E]\tFiled to generate CSR");
    QVERIFY(lines.at(1).startsWith("![E]\tCould not open /no/such/folder/.csr_"));
    QCOMPARE(m_brisk.takeCalls(), QStringList());
}

void BackEndsTest::dropsAnEmptyKeyOfAFailedRun_data()
{
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<bool>("dropped");

    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("with content") << QByteArray("a key") << false;
}

void BackEndsTest::dropsAnEmptyKeyOfAFailedRun()
{
    QFETCH(const QByteArray, left);
    KeyGenerationData data;
    data.keyPath = FilePath::fromString(m_sdk.workspace() + "/half.pem");
    QFile key(data.keyPath.toFSPathString());

    // The tool leaves the file behind as soon as it runs.
    RpmsignExternal tool(nullptr);
    m_brisk.endWith("1\n");
    m_brisk.leaveBehind(key.fileName(), left);
    QVERIFY(!tool.generateRequest("T", data).succeeded());
    QTEST(!key.exists(), "dropped");
    key.remove();
}

QTEST_GUILESS_MAIN(BackEndsTest)
#include "tst_backends.moc"
