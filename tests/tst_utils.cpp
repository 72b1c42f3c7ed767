#include "utils.h"

#include "settingsscope.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <brisk/installation.h>

#include <QDir>
#include <QTest>

using namespace Sealkit::Internal;
using Utils::FilePath;

class UtilsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void cutsDumpsIntoSignatures_data();
    void cutsDumpsIntoSignatures();
    void cutsDumpsIntoPackages_data();
    void cutsDumpsIntoPackages();
    void findsThePackagesOfADump_data();
    void findsThePackagesOfADump();
    void findsTheGroups_data();
    void findsTheGroups();
    void listsPackagesBesideAPath();
    void tellsWhatLiesInAFolder_data();
    void tellsWhatLiesInAFolder();
    void findsTheRegularKeys();
};

/// A text of \a length characters with "Subject" at each of \a positions.
static QString dumpWithSubjectsAt(const QList<int> &positions, int length)
{
    QString text(length, u'.');
    for (const int position : positions)
        text.replace(position, 8, QStringLiteral("Subject\n"));
    return text;
}

void UtilsTest::cutsDumpsIntoSignatures_data()
{
    QTest::addColumn<QString>("dump");
    QTest::addColumn<QStringList>("blocks");

    QTest::newRow("empty") << QString() << QStringList();
    QTest::newRow("no signature") << "a.rpm: none" << QStringList();

    const QString one = "a.rpm\nSubject: x\nGroup: y\n";
    QTest::newRow("what comes first is dropped") << one << QStringList{one.mid(6)};

    const QString two = dumpWithSubjectsAt({0, 40}, 100);
    QTest::newRow("two from the start") << two << QStringList{two.left(40), two.mid(40)};

    const QString three = dumpWithSubjectsAt({10, 50, 90}, 120);
    QTest::newRow("overlap of the first with the second")
        << three << QStringList{three.mid(10, 50), three.mid(50), three.mid(90)};
}

void UtilsTest::cutsDumpsIntoSignatures()
{
    QFETCH(const QString, dump);
    QTEST(midDumpOutput(dump), "blocks");
}

using PackageDumps = QList<PackageDump>;

void UtilsTest::cutsDumpsIntoPackages_data()
{
    QTest::addColumn<QString>("dump");
    QTest::addColumn<PackageDumps>("packages");

    QTest::newRow("none") << "Group: x\n" << PackageDumps();

    const QString a = "/w/a-1.0.rpm:\r\nSubject: x\r\n";
    const QString b = "/w/b.rpm\r\n";
    QTest::newRow("two") << "header\r\n" + a + b
                         << PackageDumps{{"/w/a-1.0.rpm", a}, {"/w/b.rpm", b}};
    QTest::newRow("shortest path on a line")
        << "/w/a.rpm /w/b.rpm" << PackageDumps{{"/w/a.rpm", "/w/a.rpm "}, {"/w/b.rpm", "/w/b.rpm"}};
}

void UtilsTest::cutsDumpsIntoPackages()
{
    QFETCH(const QString, dump);
    QFETCH(const PackageDumps, packages);
    QCOMPARE(splitDumpByPackage(dump), packages);
}

void UtilsTest::findsThePackagesOfADump_data()
{
    QTest::addColumn<QStringList>("packages");
    QTest::addColumn<QString>("dump");
    QTest::addColumn<PackageDumps>("dumps");

    const auto row = [](const char *name, const PackageDumps &dumps) {
        QStringList packages;
        QString dump;
        for (const PackageDump &package : dumps) {
            packages << package.packagePath;
            dump += package.dump;
        }
        QTest::newRow(name) << packages << dump << dumps;
    };
    const QString a = "/w/a.rpm";
    const QString b = "/w/b.rpm";
    const auto lines = [](const QString &path) { return path + "\r\nSubject: x\r\nGroup: y\r\n"; };
    const auto plain = [&](const char *name, const QStringList &paths) {
        PackageDumps dumps;
        for (const QString &path : paths)
            dumps << PackageDump{path, lines(path)};
        row(name, dumps);
    };
    plain("usual names", {a, b});
    plain("rpm in a folder's name", {"/w/my-rpm-app/a.rpm", "/w/my-rpm-app/rpms/b.rpm"});
    plain("rpm in a package's name", {"/w/my-rpm-app/rpm-tools.rpm", "/w/b.rpm"});
    plain("a name that goes on", {a, "/w/a.rpm.x.rpm"});
    plain("one name in two folders", {"/w/1/a.rpm", "/w/2/a.rpm"});
    row("two on a line", {{a, a + ' '}, {b, b}});
    row("mapped into the engine", {{a, lines("/src/my-rpm" + a)}, {b, lines("/src/my-rpm" + b)}});
    row("a path in a signature", {{a, lines(a) + "Subject: CN=/c.rpm\n"}, {b, lines(b)}});

    addRow(
        "others come first", QStringList{a}, "/w/c.rpm\n" + lines(a), PackageDumps{{a, lines(a)}});
    addRow("not in the dump", QStringList{a, b}, lines(b), PackageDumps{{b, lines(b)}});
}

void UtilsTest::findsThePackagesOfADump()
{
    QFETCH(const QStringList, packages);
    QFETCH(const QString, dump);
    QFETCH(const PackageDumps, dumps);
    QCOMPARE(dumpsOfPackages(dump, packages), dumps);
}

void UtilsTest::findsTheGroups_data()
{
    QTest::addColumn<QString>("dump");
    QTest::addColumn<bool>("developer");
    QTest::addColumn<bool>("client");

    QTest::newRow("unsigned") << "/w/a.rpm\n" << false << false;
    QTest::newRow("developer") << "Group: developer\r\nSubgroup: client\r\n" << true << false;
    QTest::newRow("client") << "Group: client\n" << false << true;
    QTest::newRow("both") << "Group: developer\nGroup: client\n" << true << true;
    QTest::newRow("other case") << "Group: Developer\nGroup: CLIENT\n" << false << false;
    QTest::newRow("longer name") << "Group: developers\nGroup: my client\n" << false << false;
    QTest::newRow("no line end") << "Group: developer" << false << false;
}

void UtilsTest::findsTheGroups()
{
    QFETCH(const QString, dump);
    QFETCH(const bool, developer);
    QFETCH(const bool, client);
    QCOMPARE(signGroups(dump), (SignGroups{developer, client}));
}

static void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

void UtilsTest::listsPackagesBesideAPath()
{
    const QTemporaryDir folder;
    const QString noSuchFile = folder.filePath("none.rpm");
    QCOMPARE(getRpmListFrom(noSuchFile), QStringList());

    QVERIFY(QDir(folder.path()).mkdir("folder.rpm"));
    for (const char *name : {"b.rpm", "a.rpm", "a.rpm.1.p7s"})
        touch(folder.filePath(name));
    QStringList packages = getRpmListFrom(noSuchFile);
    packages.sort();
    QCOMPARE(packages, (QStringList{folder.filePath("a.rpm"), folder.filePath("b.rpm")}));
}

void UtilsTest::tellsWhatLiesInAFolder_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("inside");

    QTest::newRow("child") << "/a/b/k.pem"
                           << "/a/b" << true;
    QTest::newRow("grandchild") << "/a/b/c/k.pem"
                                << "/a/b" << true;
    QTest::newRow("elsewhere") << "/a/k.pem"
                               << "/a/b" << false;
    QTest::newRow("sibling with that name at its begin") << "/a/bc/k.pem"
                                                         << "/a/b" << true;
    QTest::newRow("other case") << "/A/b/k.pem"
                                << "/a/b" << false;
    QTest::newRow("empty file") << ""
                                << "/a/b" << false;
    QTest::newRow("empty folder") << "/a/b"
                                  << "" << false;
}

void UtilsTest::tellsWhatLiesInAFolder()
{
    QFETCH(const QString, file);
    QFETCH(const QString, folder);
    QTEST(isFileChildOf(file, FilePath::fromString(folder)), "inside");
}

void UtilsTest::findsTheRegularKeys()
{
    const TemporarySdk sdk;
    QString error;
    QVERIFY2(Brisk::openInstallation(FilePath::fromString(sdk.path()), &error), qPrintable(error));
    const FilePath workspace = FilePath::fromString(sdk.workspace());

    QCOMPARE(getDefaultKeysDir(workspace), sdk.path() + "/package-signing");
    QCOMPARE(getDefaultKey(workspace).toFSPathString(),
             sdk.path() + "/package-signing/regular_key.pem");

    QVERIFY(QDir(sdk.workspace()).mkdir(".veyraos-regular-keys"));
    QCOMPARE(getDefaultKey(workspace).toFSPathString(),
             sdk.workspace() + "/.veyraos-regular-keys/regular_key.pem");
    QCOMPARE(getDefaultCertificate(workspace).toFSPathString(),
             sdk.workspace() + "/.veyraos-regular-keys/regular_cert.pem");
    Brisk::closeInstallation();
}

QTEST_GUILESS_MAIN(UtilsTest)
#include "tst_utils.moc"
