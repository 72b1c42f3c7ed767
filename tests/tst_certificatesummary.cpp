#include "certificatesummary.h"

#include "keyfile.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <sys/stat.h>

using namespace Sealkit::Internal;

class CertificateSummaryTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Whoever opens it for reading waits.
        QCOMPARE(::mkfifo(qPrintable(m_sdk.workspace() + "/keys/pipe"), 0600), 0);
    }

    void tellsWhoseAndUntilWhen_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("day");
        QTest::addColumn<CertificateSummary>("summary");
        const auto row = [](const char *name, const QString &day, const QString &text, bool warns) {
            const QString subject = ": CN=Demo Client, OU=shop, OU=client, O=Veyra OS Demo";
            addRow(name, "client_cert.pem", day, CertificateSummary{text + subject, warns});
        };
        row("before", "2023-12-31", "Not valid before 2024-01-01", true);
        row("30 days and a half", "2043-11-30", "Valid until 2043-12-31", false);
        row("29 days and a half", "2043-12-01", "Valid until 2043-12-31", true);
        row("after", "2044-01-01", "Expired on 2043-12-31", true);
        addRow("a key",
               "client_key.pem",
               "2030-01-01",
               CertificateSummary{"There is no certificate in this file", true});
        addRow("a folder", "", "2030-01-01", CertificateSummary());
        addRow("no file", "none.pem", "2030-01-01", CertificateSummary());
        addRow("a pipe", "pipe", "2030-01-01", CertificateSummary());
    }

    void tellsWhichKeyItIsAbout_data()
    {
        addColumns<QString, QString, QString>("key", "certificate", "answer");
        addRow("curve", "client_key.pem", "client_cert.pem", "yes");
        addRow("another one on the curve", "foreign_key.pem", "client_cert.pem", "no");
        addRow("RSA", "regular_key.pem", "regular_cert.pem", "yes");
        addRow("RSA and a curve", "client_key.pem", "regular_cert.pem", "no");
        addRow("encrypted", "encrypted_key.pem", "encrypted_cert.pem", "");
        addRow("no key", "client_cert.pem", "client_cert.pem", "");
        addRow("no certificate", "client_key.pem", "client_key.pem", "");
    }

    void tellsWhichKeyItIsAbout()
    {
        QFETCH(QString, key);
        QFETCH(QString, certificate);
        const auto path = [this](const QString &name) {
            const QString shipped = m_sdk.path() + "/package-signing/" + name;
            return QFile::exists(shipped) ? shipped : m_sdk.workspace() + "/keys/" + name;
        };
        const std::optional<bool> answer = belongTogether(path(key), path(certificate));
        QTEST(QString(answer ? *answer ? "yes" : "no" : ""), "answer");
    }

    void tellsWhoseAndUntilWhen()
    {
        failOnStrayWarnings();
        QFETCH(QString, file);
        QFETCH(QString, day);
        const auto noon = QDateTime::fromString(day + "T12:00:00Z", Qt::ISODate);
        QTEST(summarizeCertificate(m_sdk.workspace() + "/keys/" + file, noon), "summary");
    }

private:
    const TemporarySdk m_sdk;
};

QTEST_GUILESS_MAIN(CertificateSummaryTest)
#include "tst_certificatesummary.moc"
