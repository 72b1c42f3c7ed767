// The signing tool by itself, beside what users of Debian would sign packages with.
#include "comparison.h"
#include "workplace.h"

#include <QDir>
#include <QTemporaryDir>

namespace Benchmarks {

/// A key for rpm's tools: RSA of 2048 bits like ours, without a pass phrase.
class RpmKey
{
public:
    RpmKey()
    {
        qputenv("GNUPGHOME", folder().toUtf8());
        qputenv("GPG_TTY", "/dev/null"); // or rpmsign complains that there is none
        const QStringList gpg{"gpg", "--batch", "--passphrase", ""};
        outputOf(gpg
                 + QStringList{"--quick-generate-key", "Benchmark", "rsa2048", "sign", "never"});
        const QString file = m_folder.filePath("key");
        outputOf(gpg + QStringList{"--armor", "--output", file, "--export", "Benchmark"});
        outputOf({"rpmkeys", "--dbpath", folder(), "--import", file});
    }
    ~RpmKey() { QProcess::execute("gpgconf", {"--kill", "gpg-agent"}); }

    QString folder() const { return m_folder.path(); }

private:
    const QTemporaryDir m_folder;
};

/// Fresh copies of a package, and nothing else in the folder.
static QStringList copies(const QTemporaryDir &folder, const QString &package, int count)
{
    for (const QFileInfo &file : QDir(folder.path()).entryInfoList(QDir::Files))
        QFile::remove(file.filePath());
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        paths << folder.filePath(QString::number(i) + ".rpm");
        require(QFile::copy(package, paths.last()), "a package cannot be copied");
    }
    return paths;
}

/// How long \a command takes with fresh copies, which \a signing signs first for any other command.
static std::function<double()>
timing(const QString &package, int count, const QStringList &signing, const QStringList &command)
{
    const auto folder = std::make_shared<QTemporaryDir>();
    return [=] {
        const QStringList packages = copies(*folder, package, count);
        if (command != signing)
            timeOf(signing + packages);
        return timeOf(command + packages);
    };
}

static Measures comparedWithRpm(const Workplace &workplace, const QString &verb, int count)
{
    const QString package = buildDemoPackage(workplace);
    const QString tool = workplace.sdk().tool("rpmsign-external");
    const QString keys = workplace.sdk().path() + "/package-signing/regular_";
    const QStringList sign{tool, "sign", "-k", keys + "key.pem", "-c", keys + "cert.pem"};
    const QMap<QString, QStringList> ours{
        {"sign", sign}, {"dump", {tool, "dump"}}, {"verify", {tool, "verify"}}};

    const auto key = std::make_shared<RpmKey>();
    const QString gpg = "__gpg /usr/bin/gpg";
    const QStringList rpmsign{
        "rpmsign", "--define", "_gpg_name Benchmark", "--define", gpg, "--addsign"};
    const QMap<QString, QStringList> rpms{
        {"sign", rpmsign},
        {"dump", {"rpm", "-q", "--nosignature", "--qf", "%{RSAHEADER:pgpsig}", "-p"}},
        {"verify", {"rpmkeys", "--dbpath", key->folder(), "--checksig"}}};
    const auto byRpm = timing(package, count, rpmsign, rpms[verb]);
    return {timing(package, count, sign, ours[verb]), [byRpm, key] { return byRpm(); }};
}

QList<Comparison> toolRows(const Workplace &workplace)
{
    const int count = pick(100, 2);
    const auto row = [&](const char *verb, const char *rpms, std::optional<double> limit) {
        const auto prepare = [=, &workplace] { return comparedWithRpm(workplace, verb, count); };
        const QString what = QStringLiteral("tool: %1, and %2").arg(verb, rpms);
        return Comparison{what, QString::number(count) + " packages", pick(5, 1), prepare, limit};
    };
    return {row("sign", "rpmsign", 0), row("dump", "rpm -q", {}), row("verify", "rpmkeys", {})};
}

} // namespace Benchmarks
