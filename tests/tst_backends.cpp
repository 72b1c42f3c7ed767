#include "customersealkit.h"
#include "files.h"
#include "messages.h"
#include "recordingbrisk.h"
#include "rpmsignexternal.h"
#include "settingsscope.h"
#include "signdata.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <brisk/buildengine.h>
#include <brisk/installation.h>
#include <brisk/sdk.h>
#include <host/generalmessages.h>

#include <QDir>
#include <QSettings>

#include <csignal>
#include <sys/resource.h>

using namespace Sealkit::Internal;
using Command::Result;
using Utils::FilePath;

/// The back ends, and what they are handed: keys to sign with, requests to make.
class BackEndsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void validatesKeys_data();
    void validatesKeys();
    void addsSignatures_data();
    void addsSignatures();
    void runsOneCommandEach_data();
    void runsOneCommandEach();
    void customerSignMakesNoRequests();
    void makesRequests_data();
    void makesRequests();
    void writesTheRequestsConfiguration();
    void saysWhyThereIsNoConfiguration_data();
    void saysWhyThereIsNoConfiguration();
    void endsWithItsCaller_data();
    void endsWithItsCaller();

private:
    QString inWorkspace(const QString &name) const { return m_sdk.workspace() + '/' + name; }
    QStringList configurations() const
    {
        return QDir(m_sdk.workspace()).entryList({".csr_*"}, QDir::Files | QDir::Hidden);
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

void BackEndsTest::validatesKeys_data()
{
    addColumns<QString, QString, QString, QString, QString>(
        "binariesKey", "key", "certificate", "ofRpmsign", "ofCustomerSign");

    const QString in = "/w/in.pem";
    const QString out = "/elsewhere/out.pem";
    const QString none;
    const QString empty = "Error: key and certificate can't be empty";
    const QString empties = "Error: keys and certificate can't be empty";
    const QString outside = "Error: key and certificate must be inside workspace folder: /w";
    const QString outsides = "Error: keys and certificate must be inside workspace folder: /w";
    addRow("all inside", in, in, in, none, none);
    addRow("no binaries key", none, in, in, none, empties);
    addRow("binaries key outside", out, in, in, none, outsides);
    addRow("no key", in, none, in, empty, empties);
    addRow("key outside", in, out, in, outside, outsides);
    addRow("certificate outside", in, in, out, outside, outsides);
    addRow("key outside, no certificate", in, out, none, empty, empties);
}

void BackEndsTest::validatesKeys()
{
    QFETCH(QString, binariesKey);
    QFETCH(QString, key);
    QFETCH(QString, certificate);
    const SignData data{.binariesKey = binariesKey,
                        .clientKey = "/elsewhere/client.pem", // never looked at
                        .clientCertificate = {},
                        .certificate = certificate,
                        .key = key,
                        .rootCertificate = {}};
    QString error;
    bool isValid = data.isValid<RpmsignExternal>("/w", &error);
    QCOMPARE(isValid, error.isEmpty());
    QTEST(error, "ofRpmsign");
    error.clear();
    isValid = data.isValid<CustomerSealkit>("/w", &error);
    QCOMPARE(isValid, error.isEmpty());
    QTEST(error, "ofCustomerSign");
}

void BackEndsTest::addsSignatures_data()
{
    addColumns<QString, QString, QByteArray, QStringList, int>(
        "clientKey", "clientCertificate", "exitCodes", "calls", "exitCode");

    const auto row = [](const char *name,
                        const QString &clientKey,
                        const QString &clientCertificate,
                        const QByteArray &exitCodes,
                        const QStringList &calls,
                        int exitCode) {
        addRow(name, clientKey, clientCertificate, exitCodes, calls, exitCode);
    };
    const QStringList first{"rpmsign-external|sign|-k|k|-c|c|a.rpm|b.rpm"};
    const QStringList both = first + QStringList("rpmsign-external|sign|-k|ck|-c|cc|a.rpm|b.rpm");
    row("developer", "", "", "", first, 0);
    row("client key alone", "ck", "", "", first, 0);
    row("client certificate alone", "", "cc", "", first, 0);
    row("both", "ck", "cc", "", both, 0);
    row("first fails", "ck", "cc", "2\n", first, 2);
    row("second fails", "ck", "cc", "0\n3\n", both, 3);
}

void BackEndsTest::addsSignatures()
{
    QFETCH(const QString, clientKey);
    QFETCH(const QString, clientCertificate);
    QFETCH(const QByteArray, exitCodes);
    const SignData data{.binariesKey = {},
                        .clientKey = clientKey,
                        .clientCertificate = clientCertificate,
                        .certificate = "c",
                        .key = "k",
                        .rootCertificate = {}};
    m_brisk.endWith(exitCodes);
    RpmsignExternal tool(nullptr);
    QTEST(tool.addSignature("T", {"a.rpm", "b.rpm"}, data).exitCode, "exitCode");
    QTEST(m_brisk.takeCalls(), "calls");
    QCOMPARE(m_brisk.folderOfLastCall(), m_sdk.workspace());
}

void BackEndsTest::runsOneCommandEach_data()
{
    addColumns<bool, QStringList>("forCustomerSign", "calls");

    addRow("rpmsign-external",
           false,
           QStringList{"rpmsign-external|delete|a.rpm",
                       "rpmsign-external|verify|--root-cert|r|a.rpm",
                       "rpmsign-external|dump|a.rpm"});
    addRow("customer-sign",
           true,
           QStringList{"nxvcert-cli|delete|a.rpm",
                       "nxvcert-cli|verify|--root-cert-file-path|r|a.rpm",
                       "nxvcert-cli|dump|a.rpm"});
}

void BackEndsTest::runsOneCommandEach()
{
    QFETCH(const bool, forCustomerSign);
    RpmsignExternal rpmsign(nullptr);
    CustomerSealkit customer;
    SignTool &tool = forCustomerSign ? static_cast<SignTool &>(customer) : rpmsign;
    SignData data;
    data.rootCertificate = "r";

    m_brisk.endWith("1\n0\n2\n");
    QCOMPARE(tool.removeSignature("T", {"a.rpm"}).exitCode, 1);
    QCOMPARE(tool.verifySignature("T", {"a.rpm"}, data).exitCode, 0);
    QCOMPARE(tool.dumpSignature("T", {"a.rpm"}).exitCode, 2);
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
    // newKey: what openssl leaves
    // calls: of openssl
    addColumns<QByteArray, QByteArray, QByteArray, QStringList, int>(
        "oldKey", "newKey", "exitCodes", "calls", "exitCode");

    const QByteArray none;
    const QByteArray key = "a key";
    const QString genpkey = "genpkey|-engine|gost|";
    addRow("new key", none, key, none, QStringList{genpkey, "req|"}, 0);
    addRow("existing key", key, none, none, QStringList{"req|"}, 0);
    addRow("key fails", none, key, QByteArray("4\n"), QStringList{genpkey}, 4);
    addRow("key fails and is empty", none, none, QByteArray("4\n"), QStringList{genpkey}, 4);
    addRow("request fails", key, none, QByteArray("5\n"), QStringList{"req|"}, 5);
}

void BackEndsTest::makesRequests()
{
    QFETCH(const QByteArray, oldKey);
    QFETCH(const QByteArray, newKey);
    QFETCH(const QStringList, calls);
    QFETCH(const QByteArray, exitCodes);
    QFile key(inWorkspace("new.pem"));
    if (!oldKey.isEmpty())
        writeFile(key.fileName(), oldKey);
    const KeyGenerationData data{.companyName = "Company",
                                 .requestPath = FilePath::fromString(inWorkspace("new.csr")),
                                 .auxiliaryPath = {},
                                 .encrypt = true,
                                 .keyPath = FilePath::fromString(key.fileName()),
                                 .algorithm = GOST};
    RpmsignExternal tool(nullptr);
    m_brisk.endWith(exitCodes);
    m_brisk.leaveBehind(oldKey.isEmpty() ? key.fileName() : "/dev/null", newKey);
    QTEST(tool.generateRequest("T", data).exitCode, "exitCode");

    const QStringList actual = m_brisk.takeCalls();
    QCOMPARE(actual.size(), calls.size());
    for (qsizetype i = 0; i < actual.size(); ++i) {
        QVERIFY2(actual.at(i).startsWith("openssl|" + calls.at(i)), qPrintable(actual.at(i)));
        const QString paths = calls.at(i).startsWith("genpkey")
                                  ? "|-out|" + key.fileName() + "|-aes256"
                                  : "|-key|" + key.fileName() + "|-out|" + inWorkspace("new.csr");
        QVERIFY2(actual.at(i).endsWith(paths), qPrintable(actual.at(i)));
    }
    QCOMPARE(key.exists(), !(oldKey + newKey).isEmpty());
    QCOMPARE(configurations(), QStringList());
    key.remove();
}

void BackEndsTest::writesTheRequestsConfiguration()
{
    const QString company = "Рога и копыта 字 %COMPANY_NAME%";
    QString error;
    QFile file(KeyGenerationData::generateCsrConfig(company, &error).absoluteFilePath());
    QCOMPARE(error, QString());
    QVERIFY2(QRegularExpression('^' + inWorkspace("\\.csr_\\d{4}\\d{1,3}\\.conf$"))
                 .match(file.fileName())
                 .hasMatch(),
             qPrintable(file.fileName()));
    QCOMPARE(readFile(file.fileName()),
             "[ req ]\n distinguished_name = req_distinguished_name\n prompt = no\n"
             " string_mask = utf8only\n x509_extensions = v3_usr\n \n"
             "[ req_distinguished_name ]\n CN = "
                 + company.toUtf8()
                 + "\n \n[ v3_usr ]\n basicConstraints=critical,CA:FALSE\n"
                   " keyUsage=digitalSignature\n subjectKeyIdentifier=hash\n"
                   " authorityKeyIdentifier=keyid\n");
    QVERIFY(file.remove());
}

void BackEndsTest::saysWhyThereIsNoConfiguration_data()
{
    // workspace: none: there is no engine
    addColumns<QString, bool, QString>("workspace", "isDiskFull", "reason");

    addRow("no engine", "", false, "^!\\[E\\]\tNo Build Engine found$");
    addRow("no workspace",
           "/none",
           false,
           "^!\\[E\\]\tCould not open /none/\\.csr_\\d+\\.conf for writing: .+\\.$");
    addRow("disk full",
           m_sdk.workspace(),
           true,
           "^!\\[E\\]\tCould not write data to " + inWorkspace("\\.csr_\\d+\\.conf: .+\\.$"));
}

void BackEndsTest::saysWhyThereIsNoConfiguration()
{
    QFETCH(QString, workspace);
    QFETCH(bool, isDiskFull);
    QFETCH(QString, reason);
    KeyGenerationData data;
    data.keyPath = FilePath::fromString(m_sdk.path() + "/sdk.ini"); // any file that exists
    if (workspace.isEmpty())
        Brisk::closeInstallation();
    else
        Brisk::Sdk::buildEngines().first()->setSharedSrcPath(FilePath::fromString(workspace));
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit none{.rlim_cur = 0, .rlim_max = limit.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, isDiskFull ? &none : &limit);
    Messages messages;
    const Result result = RpmsignExternal(nullptr).generateRequest("T", data);
    setrlimit(RLIMIT_FSIZE, &limit);
    initTestCase();

    QCOMPARE(result, (Result{false, -1, {}, {}}));
    const QStringList lines = messages.take();
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0), "![E]\tFiled to generate CSR");
    QVERIFY2(QRegularExpression(reason).match(lines.at(1)).hasMatch(), qPrintable(lines.at(1)));
    QCOMPARE(m_brisk.takeCalls(), QStringList());
    QCOMPARE(configurations(), QStringList());
}

void BackEndsTest::endsWithItsCaller_data()
{
    QTest::addColumn<bool>("makesRequest");

    addRow("second signature", false);
    addRow("request for a new key", true);
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
    caller->data.clientKey = caller->data.clientCertificate = "c";
    caller->request.keyPath = FilePath::fromString(inWorkspace("none.pem"));

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
    QCOMPARE(configurations(), QStringList());
}

QTEST_GUILESS_MAIN(BackEndsTest)
#include "tst_backends.moc"
