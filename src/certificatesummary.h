#pragma once

#include <QDateTime>
#include <QString>

namespace Sealkit::Internal {

/// Whose certificate a file holds, and until when. Read on the host, without a tool.
struct CertificateSummary
{
    QString text; ///< empty when there is no such file
    bool isWarning = false;

    friend bool operator==(const CertificateSummary &, const CertificateSummary &) = default;
};

/// Summarizes the first certificate in the file at \a path. Warns when it ends within 30 days of
/// \a now.
CertificateSummary summarizeCertificate(const QString &path,
                                        const QDateTime &now = QDateTime::currentDateTimeUtc());

/// Who signs with the certificate at \a path, as in "CN=Regular Developer"; the file's name when
/// that cannot be read.
QString signerOf(const QString &path);

} // namespace Sealkit::Internal
