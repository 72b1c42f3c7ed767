#include "certificatesummary.h"

#include "keyfile.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSslCertificate>

#include <chrono>

namespace Sealkit::Internal {

constexpr std::chrono::hours WARNING_TIME{30 * 24};

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

QString signerOf(const QString &path)
{
    const QSslCertificate certificate = QSslCertificate::fromData(readKeyFile(path)).value(0);
    const QString name = certificate.subjectInfo(QSslCertificate::CommonName).value(0).simplified();
    return name.isEmpty() ? QFileInfo(path).fileName() : QLatin1String("CN=") + name;
}

CertificateSummary summarizeCertificate(const QString &path, const QDateTime &now)
{
    const QSslCertificate certificate = QSslCertificate::fromData(readKeyFile(path)).value(0);
    if (certificate.isNull() && QFileInfo(path).isFile())
        return {QCoreApplication::translate("Sealkit::Internal::CertificateSummary",
                                            "There is no certificate in this file"),
                true};
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
    const bool endsSoon = now.addDuration(WARNING_TIME) > end;
    return summary(QT_TRANSLATE_NOOP("Sealkit::Internal::CertificateSummary", "Valid until %1: %2"),
                   end,
                   endsSoon);
}

} // namespace Sealkit::Internal
