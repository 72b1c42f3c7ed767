#include "certificatesummary.h"

#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

using namespace Sealkit::Internal;

class CertificateSummaryTest : public QObject
{
    Q_OBJECT

private slots:
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
        row("31 days before the end", "2043-12-01", "Valid until 2043-12-31", false);
        row("30 days before the end", "2043-12-02", "Valid until 2043-12-31", true);
        row("after", "2044-01-01", "Expired on 2043-12-31", true);
        addRow("a key", "client_key.pem", "2030-01-01", CertificateSummary());
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
