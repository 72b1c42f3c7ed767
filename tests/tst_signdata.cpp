#include "signdata.h"

#include "customersealkit.h"
#include "rpmsignexternal.h"
#include "settingsscope.h"
#include "straywarnings.h"
#include "temporarysdk.h"

#include <brisk/buildengine.h>
#include <brisk/installation.h>
#include <brisk/sdk.h>

#include <QDir>
#include <QTest>

using namespace Sealkit::Internal;
using Utils::FilePath;

class SignDataTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { failOnStrayWarnings(); }

    void validates_data();
    void validates();
    void writesARequestConfiguration_data();
    void writesARequestConfiguration();
    void reportsWhyNoConfigurationIsWritten();
    void choosesTheKeyCommand();

private:
    SettingsScope m_settings;
    TemporarySdk m_sdk;
};

void SignDataTest::initTestCase()
{
    QString error;
    QVERIFY2(Brisk::openInstallation(FilePath::fromString(m_sdk.path()), &error),
             qPrintable(error));
}

void SignDataTest::validates_data()
{
    QTest::addColumn<bool>("forCustomerSign");
    QTest::addColumn<QString>("binariesKey");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("certificate");
    QTest::addColumn<QString>("error");

    const QString in = "/w/in.pem";
    const QString out = "/elsewhere/out.pem";
    const QString oneEmpty = "Error: key and certificate can't be empty";
    const QString oneOutside = "Error: key and certificate must be inside workspace folder: /w";
    QTest::newRow("developer") << false << "" << in << in << "";
    QTest::newRow("developer, no key") << false << in << "" << in << oneEmpty;
    QTest::newRow("developer, key outside, no certificate") << false << "" << out << "" << oneEmpty;
    QTest::newRow("developer, key outside") << false << "" << out << in << oneOutside;
    QTest::newRow("developer, certificate outside") << false << "" << in << out << oneOutside;

    const QString empty = "Error: keys and certificate can't be empty";
    const QString outside = "Error: keys and certificate must be inside workspace folder: /w";
    QTest::newRow("customer") << true << in << in << in << "";
    QTest::newRow("customer, no binaries key") << true << "" << out << in << empty;
    QTest::newRow("customer, no key") << true << in << "" << in << empty;
    QTest::newRow("customer, no certificate") << true << in << in << "" << empty;
    QTest::newRow("customer, binaries key outside") << true << out << in << in << outside;
    QTest::newRow("customer, key outside") << true << in << out << in << outside;
    QTest::newRow("customer, certificate outside") << true << in << in << out << outside;
}

void SignDataTest::validates()
{
    QFETCH(const bool, forCustomerSign);
    QFETCH(const QString, error);
    SignData data;
    data.binariesKey = *static_cast<QString *>(QTest::qData("binariesKey", QMetaType::QString));
    data.key = *static_cast<QString *>(QTest::qData("key", QMetaType::QString));
    data.certificate = *static_cast<QString *>(QTest::qData("certificate", QMetaType::QString));
    // The client's pair is never looked at.
    data.clientKey = "/elsewhere/client.pem";

    QString actualError;
    const FilePath workspace = "/w";
    const bool valid = forCustomerSign ? data.isValid<CustomerSealkit>(workspace, &actualError)
                                       : data.isValid<RpmsignExternal>(workspace, &actualError);
    QCOMPARE(actualError, error);
    QCOMPARE(valid, error.isEmpty());
}

void SignDataTest::writesARequestConfiguration_data()
{
    QTest::addColumn<QString>("companyName");

    QTest::newRow("plain") << "Company";
    QTest::newRow("not ASCII") << "Рога и копыта 字";
    QTest::newRow("the marker itself") << "%COMPANY_NAME% & %COMPANY_NAME%";
}

void SignDataTest::writesARequestConfiguration()
{
    QFETCH(const QString, companyName);
    QString error;
    const QFileInfo info = KeyGenerationData::generateCsrConfig(companyName, &error);
    QCOMPARE(error, QString());
    QCOMPARE(info.absolutePath(), m_sdk.workspace());
    QVERIFY(QRegularExpression("^\\.csr_\\d{4}\\d{1,3}\\.conf$").match(info.fileName()).hasMatch());

    QFile file(info.absoluteFilePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(),
             "[ req ]\n distinguished_name = req_distinguished_name\n prompt = no\n"
             " string_mask = utf8only\n x509_extensions = v3_usr\n \n"
             "[ req_distinguished_name ]\n CN = "
                 + companyName.toUtf8()
                 + "\n \n[ v3_usr ]\n basicConstraints=critical,CA:FALSE\n"
                   " keyUsage=digitalSignature\n subjectKeyIdentifier=hash\n"
                   " authorityKeyIdentifier=keyid\n");
    QVERIFY(file.remove());
}

void SignDataTest::reportsWhyNoConfigurationIsWritten()
{
    Brisk::BuildEngine *engine = Brisk::Sdk::buildEngines().first();
    engine->setSharedSrcPath("/no/such/folder");
    QString error;
    QVERIFY(!KeyGenerationData::generateCsrConfig("Company", &error).exists());
    QVERIFY2(
        QRegularExpression("^Could not open /no/such/folder/\\.csr_\\d+\\.conf for writing: .+\\.$")
            .match(error)
            .hasMatch(),
        qPrintable(error));

    Brisk::closeInstallation();
    QVERIFY(!KeyGenerationData::generateCsrConfig("Company", &error).exists());
    QCOMPARE(error, "No Build Engine found");
    initTestCase();
}

void SignDataTest::choosesTheKeyCommand()
{
    KeyGenerationData data;
    data.keyPath = "/w/k.pem";
    QVERIFY(getKeyGenerationComand("T", data).contains("rsa"));
    data.algorithm = GOST;
    data.encrypt = true;
    const QStringList gost = getKeyGenerationComand("T", data);
    QVERIFY(gost.contains("gost2012_256"));
    QCOMPARE(gost.mid(gost.size() - 3), (QStringList{"-out", "/w/k.pem", "-aes256"}));
    data.algorithm = KeyAlgorithm(2);
    QCOMPARE(getKeyGenerationComand("T", data), QStringList());
}

QTEST_GUILESS_MAIN(SignDataTest)
#include "tst_signdata.moc"
