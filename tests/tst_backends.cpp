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
    void runsOneCommandEach();
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
    QVERIFY(Brisk::openInstallation(FilePath::fromString(m_sdk.path()), &error));
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
    addRow("binaries key outside", out, in, in, none, outsides);
    addRow("key outside", in, out, in, outside, outsides);
    addRow("certificate outside", in, in, out, outside, outsides);
    addRow("key outside, no certificate", in, out, none, empty, empties);
}

void BackEndsTest::validatesKeys()
{
    QFETCH(QString, binariesKey);
    QFETCH(QString, key);
    QFETCH(QString, certificate);
    SignData data;
    data.binariesKey = binariesKey;
    data.clientKey = "/elsewhere/client.pem"; // never looked at
    data.certificate = certificate;
    data.key = key;
    QString error = "no text";
    QTEST(data.isValid<RpmsignExternal>("/w", &error) ? QString() : error, "ofRpmsign");
    QTEST(data.isValid<CustomerSealkit>("/w", &error) ? QString() : error, "ofCustomerSign");
}

void BackEndsTest::addsSignatures_data()
{
    addColumns<QString, QString, QString, QStringList, int>(
        "clientKey", "clientCertificate", "exitCodes", "calls", "exitCode");

    const QStringList first{"rpmsign-external|sign|-k|k|-c|c|a.rpm|b.rpm"};
    const QStringList both = first + QStringList("rpmsign-external|sign|-k|ck|-c|cc|a.rpm|b.rpm");
    addRow("client key alone", "ck", "", "", first, 0);
    addRow("client certificate alone", "", "cc", "", first, 0);
    addRow("both", "ck", "cc", "", both, 0);
    addRow("first fails", "ck", "cc", "2\n", first, 2);
    addRow("second fails", "ck", "cc", "0\n3\n", both, 3);
}

void BackEndsTest::addsSignatures()
{
    QFETCH(const QString, clientKey);
    QFETCH(const QString, clientCertificate);
    QFETCH(const QString, exitCodes);
    SignData data;
    data.key = "k";
    data.certificate = "c";
    data.clientKey = clientKey;
    data.clientCertificate = clientCertificate;
    m_brisk.endWith(exitCodes.toUtf8());
    RpmsignExternal tool(nullptr);
    QTEST(tool.addSignature("T", {"a.rpm", "b.rpm"}, data).exitCode, "exitCode");
    QTEST(m_brisk.takeCalls(), "calls");
    QCOMPARE(m_brisk.folderOfLastCall(), m_sdk.workspace());
}

void BackEndsTest::runsOneCommandEach()
{
    RpmsignExternal rpmsign(nullptr);
    CustomerSealkit customer;
    SignData data;
    data.rootCertificate = "r";
    for (SignTool *tool : {static_cast<SignTool *>(&rpmsign), static_cast<SignTool *>(&customer)}) {
        m_brisk.endWith("1\n0\n2\n");
        QCOMPARE(tool->removeSignature("T", {"a.rpm"}).exitCode, 1);
        QCOMPARE(tool->verifySignature("T", {"a.rpm"}, data).exitCode, 0);
        QCOMPARE(tool->dumpSignature("T", {"a.rpm"}).exitCode, 2);
    }
    QCOMPARE(customer.generateRequest("T", {}), (Result{false, -1, {}, {}})); // makes none
    QCOMPARE(m_brisk.takeCalls().join('\n'),
             "rpmsign-external|delete|a.rpm\n"
             "rpmsign-external|verify|--root-cert|r|a.rpm\n"
             "rpmsign-external|dump|a.rpm\n"
             "nxvcert-cli|delete|a.rpm\n"
             "nxvcert-cli|verify|--root-cert-file-path|r|a.rpm\n"
             "nxvcert-cli|dump|a.rpm");
}

void BackEndsTest::makesRequests_data()
{
    // newKey: what openssl leaves
    addColumns<QString, QString, QString, QStringList, int>(
        "oldKey", "newKey", "exitCodes", "calls", "exitCode");

    const QStringList genpkey{"openssl|genpkey|-engine|gost|-algorithm|gost2012_256|-pkeyopt|"
                              "paramset:A|-out|new.pem|-aes256"};
    const QStringList req{"openssl|req|-new|-utf8|-batch|-config|CONFIG|-key|new.pem|-out|new.csr"};
    addRow("new key", "", "a key", "", genpkey + req, 0);
    addRow("key fails", "", "a key", "4\n", genpkey, 4);
    addRow("key fails and is empty", "", "", "4\n", genpkey, 4);
    addRow("existing key, request fails", "a key", "", "5\n", req, 5);
}

void BackEndsTest::makesRequests()
{
    QFETCH(const QString, oldKey);
    QFETCH(const QString, newKey);
    QFETCH(const QString, exitCodes);
    QFile key(inWorkspace("new.pem"));
    if (!oldKey.isEmpty())
        writeFile(key.fileName(), oldKey.toUtf8());
    KeyGenerationData data;
    data.requestPath = FilePath::fromString(inWorkspace("new.csr"));
    data.encrypt = true;
    data.keyPath = FilePath::fromString(key.fileName());
    data.algorithm = GOST;
    m_brisk.endWith(exitCodes.toUtf8());
    m_brisk.leaveBehind(oldKey.isEmpty() ? key.fileName() : "/dev/null", newKey.toUtf8());
    QTEST(RpmsignExternal(nullptr).generateRequest("T", data).exitCode, "exitCode");

    QStringList calls = m_brisk.takeCalls().replaceInStrings(inWorkspace({}), "");
    calls.replaceInStrings(QRegularExpression("\\.csr_\\d+\\.conf"), "CONFIG");
    QTEST(calls, "calls");
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
    const QRegularExpression name('^' + inWorkspace("\\.csr_\\d{4}\\d{1,3}\\.conf$"));
    QVERIFY2(name.match(file.fileName()).hasMatch(), qPrintable(file.fileName()));
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
    addColumns<QString, bool, QString>("workspace", "isDiskFull", "reason");

    const QString file = "/\\.csr_\\d+\\.conf";
    addRow("no engine", "", false, "No Build Engine found");
    addRow("no workspace", "/none", false, "Could not open /none" + file + " for writing: .+\\.");
    const QString workspace = m_sdk.workspace();
    addRow("disk full", workspace, true, "Could not write data to " + workspace + file + ": .+\\.");
}

void BackEndsTest::saysWhyThereIsNoConfiguration()
{
    QFETCH(QString, workspace); // none: there is no engine
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
    const QString text = messages.take().join('\n');
    const QRegularExpression told("^!.E.\tFiled to generate CSR\n!.E.\t" + reason + '$');
    QVERIFY2(told.match(text).hasMatch(), qPrintable(text));
    QCOMPARE(m_brisk.takeCalls(), QStringList());
    QCOMPARE(configurations().size(), int(isDiskFull)); // it stays
    for (const QString &left : configurations())
        QFile::remove(inWorkspace(left));
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
}

QTEST_GUILESS_MAIN(BackEndsTest)
#include "tst_backends.moc"
