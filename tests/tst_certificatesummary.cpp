#include "certificatesummary.h"

#include "files.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <QTimeZone>

using namespace Sealkit::Internal;

class CertificateSummaryTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void tellsWhoseAndUntilWhen_data();
    void tellsWhoseAndUntilWhen();

private:
    TemporarySdk m_sdk;
};

void CertificateSummaryTest::tellsWhoseAndUntilWhen_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("day");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isWarning");

    const QString client = "client_cert.pem";
    const QString subject = "CN=Demo Client, OU=shop, OU=client, O=Veyra OS Demo";
    const QString until = "Valid until 2043-12-31: " + subject;
    addRow("before", client, "2023-12-31", "Not valid before 2024-01-01: " + subject, true);
    addRow("valid", client, "2043-12-01", until, false);
    addRow("30 days before the end", client, "2043-12-02", until, true);
    addRow("after", client, "2044-01-01", "Expired on 2043-12-31: " + subject, true);
    addRow("a key", "client_key.pem", "2030-01-01", "", false);
    addRow("no such file", "none.pem", "2030-01-01", "", false);
    addRow("not a file", "", "2030-01-01", "", false);
}

void CertificateSummaryTest::tellsWhoseAndUntilWhen()
{
    QFETCH(QString, file);
    QFETCH(QString, day);
    QFETCH(QString, text);
    QFETCH(bool, isWarning);
    const QDateTime noon(QDate::fromString(day, Qt::ISODate), QTime(12, 0), QTimeZone::utc());
    const CertificateSummary summary =
        summarizeCertificate(m_sdk.workspace() + "/keys/" + file, noon);
    QCOMPARE(summary.text, text);
    QCOMPARE(summary.isWarning, isWarning);
}

QTEST_GUILESS_MAIN(CertificateSummaryTest)
#include "tst_certificatesummary.moc"
