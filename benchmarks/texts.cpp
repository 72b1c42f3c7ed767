#include "command.h"
#include "ondemand.h"
#include "themes.h"
#include "utils.h"

namespace Benchmarks {

using namespace Sealkit::Internal;
using Sign = Command::brisk::engine::target::rpmsign_external::sign;

static QStringList packagePaths(int count)
{
    QStringList paths;
    for (int i = 0; i < count; ++i)
        paths << QStringLiteral("/home/user/workspace/project/RPMS/x86_64/package-%1.rpm").arg(i);
    return paths;
}

/// As the tool prints it on a terminal, each package with both signatures.
static QString dumpOf(const QStringList &packages)
{
    const QString signature =
        QStringLiteral("Subject: CN=Regular Developer, OU=regular, OU=%1, O=Veyra OS Demo\r\n"
                       "Group: %1\r\n"
                       "Subgroup: regular\r\n"
                       "Key ID: 763BF176AC3CCA4FBC9D21077F5A4E0CB1D0A3F2\r\n"
                       "Signature: rsaEncryption, sha256, Nov 22 23:20:24 2026 GMT\r\n");
    QString dump;
    for (const QString &package : packages)
        dump += package + "\r\n" + signature.arg("developer") + signature.arg("client");
    return dump;
}

/// Work on texts about \a count packages, each function with its own texts ready.
class Texts
{
public:
    explicit Texts(int count)
        : m_packages(packagePaths(count))
        , m_dump(dumpOf(m_packages))
        , m_sections(splitDumpByPackage(m_dump))
    {
    }

    void compose() const
    {
        const auto words = Command::compose<Sign>(
            QString("target"), QString("key.pem"), QString("cert.pem"), m_packages);
        require(words.endsWith(m_packages.last()), "a package is missing in the command line");
    }
    void split() const
    {
        require(splitDumpByPackage(m_dump).size() == m_packages.size(),
                "a package is missing in the dump's sections");
    }
    void checkGroups() const
    {
        for (const PackageDump &section : m_sections) {
            require(signGroups(section.dump) == SignGroups{.developer = true, .client = true},
                    "a signature is missing");
        }
    }

private:
    QStringList m_packages;
    QString m_dump;
    QList<PackageDump> m_sections;
};

/// Twice as much must take about twice as long; four times would be the mark of a square.
static void addText(const std::string &what, int count, int rounds, void (Texts::*work)() const)
{
    const OnDemand<Texts> texts([=] { return std::make_unique<Texts>(count); });
    const OnDemand<Texts> half([=] { return std::make_unique<Texts>(count / 2); });
    add({.what = what,
         .size = std::to_string(count) + " packages",
         .unit = "ms",
         .rounds = rounds,
         .ours = [=] { return milliseconds([&, &all = *texts] { (all.*work)(); }); },
         .yardstick = [=] { return 2 * milliseconds([&, &part = *half] { (part.*work)(); }); },
         .aim = atMost(100, "ms") && atMostTimes(1.5)});
}

void addTexts(Extent extent)
{
    const int rounds = extent.pick(101, 1);
    addText("composing a command line, half of it twice",
            extent.pick(100'000, 100),
            rounds,
            &Texts::compose);
    addText("splitting a dump, half of it twice", extent.pick(10'000, 100), rounds, &Texts::split);
    addText("checking a dump's groups, half of it twice",
            extent.pick(10'000, 100),
            rounds,
            &Texts::checkGroups);
}

} // namespace Benchmarks
