#include "realpackage.h"

#include "files.h"

#include <QFile>
#include <QProcess>
#include <QtEndian>

QString buildPackage(const QString &folder)
{
    const QString spec = folder + "/real.spec";
    writeFile(spec,
              "Name: real\nVersion: 1\nRelease: 1\nSummary: Nothing\nLicense: BSD\n"
              "BuildArch: noarch\n%description\nNothing.\n"
              "%install\necho contents > %{buildroot}/file\n%files\n/file\n");
    QProcess rpmbuild;
    rpmbuild.setProcessChannelMode(QProcess::MergedChannels);
    rpmbuild.start("rpmbuild",
                   {"-bb", "--define", "_topdir " + folder, "--define", "_rpmdir " + folder, spec});
    rpmbuild.waitForFinished();
    const QString package = folder + "/noarch/real-1-1.noarch.rpm";
    if (!QFile::exists(package))
        qFatal("No package was built: %s", rpmbuild.readAll().constData());
    return package;
}

// Two counts of four bytes follow a header's eight bytes of preamble: its entries, 16 bytes each,
// and the bytes of their values.
static qsizetype headerSize(const QByteArray &package, qsizetype start)
{
    const char *counts = package.constData() + start + 8;
    return 16 + 16 * qFromBigEndian<quint32>(counts) + qFromBigEndian<quint32>(counts + 4);
}

QList<qsizetype> partsOfPackage(const QByteArray &package)
{
    constexpr qsizetype signatureHeader = 96;
    const qsizetype signatureEnd = signatureHeader + headerSize(package, signatureHeader);
    const qsizetype header = (signatureEnd + 7) / 8 * 8;
    return {0, signatureHeader, header, header + headerSize(package, header)};
}
