#include "certificatesummary.h"

#include <QCoreApplication>
#include <QFile>
#include <QSslCertificate>

namespace Sealkit::Internal {

constexpr int WARNING_DAYS = 30;
/// A larger file is no certificate; it is not read, since the user may be typing its path.
constexpr qint64 LARGEST_CERTIFICATE_FILE = 1 << 18;

// "CN=Regular Developer, OU=regular, OU=developer, O=Veyra OS Demo"
static QString subjectOf(const QSslCertificate &certificate)
{
    const struct
    {
        const char *name;
        QSslCertificate::SubjectInfo info;
    } parts[] = {{"CN", QSslCertificate::CommonName},
                 {"OU", QSslCertificate::OrganizationalUnitName},
                 {"O", QSslCertificate::Organization}};
    QStringList texts;
    for (const auto &part : parts) {
        for (const QString &value : certificate.subjectInfo(part.info))
            texts << QLatin1String(part.name) + QLatin1Char('=') + value;
    }
    return texts.isEmpty() ? certificate.subjectDisplayName() : texts.join(QLatin1String(", "));
}

static QSslCertificate readCertificate(const QString &path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly)
        || file.size() > LARGEST_CERTIFICATE_FILE) {
        return QSslCertificate();
    }
    return QSslCertificate::fromData(file.readAll()).value(0);
}

CertificateSummary summarizeCertificate(const QString &path, const QDateTime &now)
{
    const QSslCertificate certificate = readCertificate(path);
    if (certificate.isNull())
        return {};

    const QDateTime begin = certificate.effectiveDate();
    const QDateTime end = certificate.expiryDate();
    const auto summary = [&](const char *text, const QDateTime &date, bool isWarning) {
        return CertificateSummary{
            QCoreApplication::translate("Sealkit::Internal::CertificateSummary", text)
                .arg(date.toLocalTime().date().toString(Qt::ISODate), subjectOf(certificate)),
            isWarning};
    };
    if (now > end)
        return summary(
            QT_TRANSLATE_NOOP("Sealkit::Internal::CertificateSummary", "Expired on %1: %2"),
            end,
            true);
    if (now < begin)
        return summary(
            QT_TRANSLATE_NOOP("Sealkit::Internal::CertificateSummary", "Not valid before %1: %2"),
            begin,
            true);
    const bool endsSoon = now.daysTo(end) < WARNING_DAYS;
    return summary(QT_TRANSLATE_NOOP("Sealkit::Internal::CertificateSummary", "Valid until %1: %2"),
                   end,
                   endsSoon);
}

} // namespace Sealkit::Internal
