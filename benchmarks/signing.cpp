// The signing tools by themselves, beside what users of Debian would sign packages with.
#include "ondemand.h"
#include "packagebuild.h"
#include "programs.h"
#include "themes.h"
#include "workplace.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <thread>

namespace Benchmarks {

using Words = std::vector<std::string>;

/// Copies of one package in a folder of their own.
class Copies
{
public:
    Copies(const QString &package, int count)
        : m_package(package)
    {
        for (int i = 0; i < count; ++i)
            m_paths.push_back(m_folder.filePath(QStringLiteral("%1.rpm").arg(i)).toStdString());
        makeAnew();
    }

    /// rpmsign writes signatures into the packages.
    void makeAnew() const
    {
        for (const std::string &path : m_paths) {
            QFile::remove(QString::fromStdString(path));
            require(QFile::copy(m_package, QString::fromStdString(path)),
                    "a package cannot be copied");
        }
    }
    /// Our tools write signatures beside the packages.
    void removeSignatures() const
    {
        QDir folder(m_folder.path());
        for (const QString &name : folder.entryList({QStringLiteral("*.p7s")}))
            folder.remove(name);
    }

    double count() const { return double(m_paths.size()); }
    double mebibytes() const
    {
        return count() * double(QFileInfo(m_package).size()) / (1024 * 1024);
    }
    Words appendedTo(Words command) const
    {
        command.insert(command.end(), m_paths.begin(), m_paths.end());
        return command;
    }

private:
    const QTemporaryDir m_folder;
    const QString m_package;
    Words m_paths;
};

/// Our tool and Debian's, each with an RSA key of 2048 bits that needs no pass phrase.
class Tools
{
public:
    explicit Tools(const TemporarySdk &sdk)
        : m_ours(sdk.tool("rpmsign-external").toStdString())
        , m_keys(sdk.path().toStdString() + "/package-signing/regular_")
    {
        qputenv("GNUPGHOME", m_rpmKeys.path().toUtf8());
        qputenv("GPG_TTY", "/dev/null"); // or rpmsign complains that there is none
        const QStringList key{"--quick-generate-key", "Benchmark", "rsa2048", "sign", "never"};
        outputOf("gpg", QStringList{"--batch", "--passphrase", ""} + key);
        const QString keyFile = m_rpmKeys.filePath("key");
        outputOf("gpg", {"--batch", "--armor", "--output", keyFile, "--export", "Benchmark"});
        outputOf("rpmkeys", {"--dbpath", m_rpmKeys.path(), "--import", keyFile});
    }
    ~Tools() { QProcess::execute("gpgconf", {"--kill", "gpg-agent"}); }

    double sign(const Copies &copies) const
    {
        copies.removeSignatures();
        return milliseconds([&] { spawnAndWait(signing(copies)); });
    }
    double peakOfSigning(const Copies &copies) const
    {
        copies.removeSignatures();
        return peakMemoryOf(signing(copies));
    }
    double dump(const Copies &copies) const { return run({m_ours, "dump"}, copies); }
    double verify(const Copies &copies) const { return run({m_ours, "verify"}, copies); }

    double signByRpm(const Copies &copies) const
    {
        copies.makeAnew();
        return milliseconds([&] { spawnAndWait(signingByRpm(copies)); });
    }
    double peakOfSigningByRpm(const Copies &copies) const
    {
        copies.makeAnew();
        return peakMemoryOf(signingByRpm(copies));
    }
    double dumpByRpm(const Copies &copies) const
    {
        return run({"/usr/bin/rpm", "-q", "--nosignature", "--qf", "%{RSAHEADER:pgpsig}", "-p"},
                   copies);
    }
    double verifyByRpm(const Copies &copies) const
    {
        const std::string database = m_rpmKeys.path().toStdString();
        return run({"/usr/bin/rpmkeys", "--dbpath", database, "--checksig"}, copies);
    }

private:
    static double run(const Words &command, const Copies &copies)
    {
        const Words words = copies.appendedTo(command);
        return milliseconds([&] { spawnAndWait(words); });
    }
    Words signing(const Copies &copies) const
    {
        return copies.appendedTo(
            {m_ours, "sign", "-k", m_keys + "key.pem", "-c", m_keys + "cert.pem"});
    }
    static Words signingByRpm(const Copies &copies)
    {
        return copies.appendedTo({"/usr/bin/rpmsign",
                                  "--define",
                                  "_gpg_name Benchmark",
                                  "--define",
                                  "__gpg /usr/bin/gpg",
                                  "--addsign"});
    }

    const QTemporaryDir m_rpmKeys;
    const std::string m_ours;
    const std::string m_keys;
};

/// The last line that openssl measures, cut at its colons.
static QList<QByteArray> opensslSpeed(const QStringList &what, Extent extent)
{
    const QString seconds = QString::number(extent.pick(3, 1));
    const QByteArray output = outputOf(
        "openssl", QStringList{"speed", "-mr", "-seconds", seconds, "-bytes", "1048576"} + what);
    const QList<QByteArray> fields = output.trimmed().split('\n').constLast().split(':');
    require(fields.size() > 3, "openssl measures in another form: " + output.toStdString());
    return fields;
}

/// As many signatures a second as all cores make.
static double signaturesPerSecond(Extent extent)
{
    return opensslSpeed({"rsa2048"}, extent).at(3).toDouble() * std::thread::hardware_concurrency();
}

/// Of one core, which is what a single package can use.
static double digestedMebibytesPerSecond(Extent extent)
{
    return opensslSpeed({"-evp", "sha256"}, extent).at(3).toDouble() / (1024 * 1024);
}

namespace {

/// What the rows share.
struct Ground
{
    OnDemand<Tools> tools;
    Extent extent;
};

/// Packages of the same kind for ours and for rpm's tools, which must not meet.
struct Pair
{
    Pair(const QString &package, int count)
        : ours(package, count)
        , rpms(package, count)
    {
    }
    Copies ours;
    Copies rpms;
};

} // namespace

using Work = double (Tools::*)(const Copies &) const;

static void addRate(const Ground &ground,
                    const OnDemand<Pair> &packages,
                    const std::string &what,
                    int count,
                    Work ours,
                    Work rpms,
                    const Aim &aim = {})
{
    const auto rate = [tools = ground.tools](Work work, const Copies &copies) {
        return copies.count() * 1000 / (*tools.*work)(copies);
    };
    add({.what = what,
         .size = std::to_string(count) + " packages",
         .unit = "/s",
         .rounds = ground.extent.pick(5, 1),
         .ours = [=] { return rate(ours, packages->ours); },
         .yardstick = [=] { return rate(rpms, packages->rpms); },
         .aim = aim});
}

static void addSmallPackages(const Ground &ground, const OnDemand<QString> &package)
{
    const int fewCount = ground.extent.pick(100, 1);
    const int count = ground.extent.pick(1000, 2);
    const auto pairs = [&package](int size) {
        return OnDemand<Pair>([=] { return std::make_unique<Pair>(*package, size); });
    };
    const OnDemand<Pair> few = pairs(fewCount);
    const OnDemand<Pair> many = pairs(count);
    addRate(ground,
            few,
            "tools: sign, and rpmsign",
            fewCount,
            &Tools::sign,
            &Tools::signByRpm,
            atLeastTimes(10));
    addRate(ground, many, "tools: sign, and rpmsign", count, &Tools::sign, &Tools::signByRpm);
    addRate(ground, many, "tools: dump, and rpm -q", count, &Tools::dump, &Tools::dumpByRpm);
    addRate(ground, many, "tools: verify, and rpmkeys", count, &Tools::verify, &Tools::verifyByRpm);
    add({.what = "tools: sign, and openssl's RSA signatures",
         .size = std::to_string(count) + " packages",
         .unit = "/s",
         .rounds = ground.extent.pick(3, 1),
         .ours = [=,
                  tools =
                      ground.tools] { return many->ours.count() * 1000 / tools->sign(many->ours); },
         .yardstick = [extent = ground.extent] { return signaturesPerSecond(extent); }});
}

static void addGrowth(const Ground &ground, const OnDemand<QString> &package)
{
    const int count = ground.extent.pick(10'000, 20);
    const auto copies = [&package](int size) {
        return OnDemand<Copies>([=] { return std::make_unique<Copies>(*package, size); });
    };
    const auto timePerPackage = [tools = ground.tools](const OnDemand<Copies> &packages) {
        return tools->sign(*packages) / packages->count();
    };
    add({.what = "tools: sign, per package, and of 10",
         .size = std::to_string(count) + " packages",
         .unit = "ms",
         .rounds = ground.extent.pick(3, 1),
         .ours = [=, many = copies(count)] { return timePerPackage(many); },
         .yardstick = [=, few = copies(10)] { return timePerPackage(few); },
         .aim = atMostTimes(1.15)});
}

static void addLargePackage(const Ground &ground)
{
    const int mebibytes = ground.extent.pick(1024, 1);
    const OnDemand<QTemporaryDir> folder([] { return std::make_unique<QTemporaryDir>(); });
    const OnDemand<Pair> package(
        [=] { return std::make_unique<Pair>(buildPackageOfSize(folder->path(), mebibytes), 1); });
    const auto rate = [tools = ground.tools](Work work, const Copies &copies) {
        return copies.mebibytes() * 1000 / (*tools.*work)(copies);
    };
    Comparison row;
    row.size = std::to_string(mebibytes) + " MiB";
    row.rounds = ground.extent.pick(3, 1);
    row.ours = [=] { return rate(&Tools::sign, package->ours); };

    Comparison toDigest = row;
    toDigest.what = "tools: sign one, and openssl's SHA-256";
    toDigest.unit = "MiB/s";
    toDigest.yardstick = [extent = ground.extent] { return digestedMebibytesPerSecond(extent); };
    toDigest.aim = atLeastTimes(0.8);
    add(toDigest);

    Comparison toRpm = row;
    toRpm.what = "tools: sign one, and rpmsign";
    toRpm.unit = "MiB/s";
    toRpm.yardstick = [=] { return rate(&Tools::signByRpm, package->rpms); };
    add(toRpm);

    Comparison memory = row;
    memory.what = "tools: peak of memory, and rpmsign's";
    memory.unit = "MiB";
    memory.ours = [=, tools = ground.tools] { return tools->peakOfSigning(package->ours); };
    memory.yardstick = [=, tools = ground.tools] {
        return tools->peakOfSigningByRpm(package->rpms);
    };
    memory.aim = atMost(32, "MiB");
    add(memory);
}

void addSignings(const Workplace &workplace, Extent extent)
{
    const Ground ground{
        OnDemand<Tools>([&workplace] { return std::make_unique<Tools>(workplace.sdk()); }), extent};
    const OnDemand<QString> package(
        [&workplace] { return std::make_unique<QString>(buildDemoPackage(workplace)); });
    addSmallPackages(ground, package);
    addGrowth(ground, package);
    addLargePackage(ground);
}

} // namespace Benchmarks
