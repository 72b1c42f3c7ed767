#include "utils.h"

#include "files.h"
#include "straywarnings.h"
#include "testrow.h"

#include <brisk/installation.h>

#include <QDir>
#include <QTemporaryDir>

using namespace Sealkit::Internal;
using Utils::FilePath;

class UtilsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void cutsDumpsIntoSignatures();
    void findsThePackagesOfADump_data();
    void findsThePackagesOfADump();
    void findsTheGroups();
    void listsPackagesBesideAPath();
    void tellsWhatLiesInAFolder();
    void followsLinksIntoTheWorkspace();
    void findsTheRegularKeys();
};

// A block is as long as the text before the next one, so blocks overlap.
void UtilsTest::cutsDumpsIntoSignatures()
{
    QCOMPARE(midDumpOutput("a.rpm: none"), QStringList());
    const QString before = "Group: 4567\n";
    const QString first = "Subject: a\n";
    const QString second = "Subject: b\n";
    const QString third = "Subject: c\nGroup: z\n";
    QCOMPARE(midDumpOutput(before + first + second + third),
             (QStringList{first + second + "S", second + third, third}));
}

using PackageDumps = QList<PackageDump>;

void UtilsTest::findsThePackagesOfADump_data()
{
    addColumns<QStringList, PackageDumps>("packages", "dumps");

    const auto row = [](const char *name, const PackageDumps &dumps) {
        QStringList packages;
        for (const PackageDump &package : dumps)
            packages << package.packagePath;
        addRow(name, packages, dumps);
    };
    const auto dumpOf = [](const QString &path, const QString &folder = {}) {
        return PackageDump{path, folder + path + "\r\nSubject: x\r\nGroup: y\r\n"};
    };
    const PackageDump a = dumpOf("/w/a.rpm");
    const PackageDump b = dumpOf("/w/b.rpm");
    row("rpm in names of folders",
        {dumpOf("/w/my-rpm-app/a.rpm"), dumpOf("/w/my-rpm-app/rpms/b.rpm")});
    row("rpm in a package's name", {dumpOf("/w/my-rpm-app/rpm-tools.rpm"), b});
    row("a name that goes on", {dumpOf("/w/a.rpm", "/src"), dumpOf("/w/a.rpm.x.rpm", "/src")});
    row("one name in two folders", {dumpOf("/w/1/a.rpm"), dumpOf("/w/2/a.rpm")});
    row("a folder's name is a package's", {dumpOf("/w/x.rpm"), dumpOf("/w/x.rpm/a.rpm", "/src")});
    row("words around", {{a.packagePath, "Package " + a.packagePath + ":\nGroup: y\n"}, b});
    row("cut off", {a, {b.packagePath, b.packagePath + "\nGroup: y"}});
    row("mapped into the engine",
        {dumpOf("/w/a.rpm", "/src/my-rpm"), dumpOf("/w/b.rpm", "/src/my-rpm")});
    row("a path in a signature", {{a.packagePath, a.dump + "Subject: CN=/c.rpm\n"}, b});
    addRow("not in the dump", QStringList{a.packagePath, b.packagePath}, PackageDumps{b});
}

void UtilsTest::findsThePackagesOfADump()
{
    QFETCH(const QStringList, packages);
    QFETCH(const PackageDumps, dumps);
    QString dump = "/w/another.rpm\n";
    for (const PackageDump &package : dumps)
        dump += package.dump;
    QCOMPARE(dumpsOfPackages(dump, packages), dumps);
}

void UtilsTest::findsTheGroups()
{
    QCOMPARE(signGroups("Group: developer\r\nSubgroup: client\r\n"), (SignGroups{true, false}));
    QCOMPARE(signGroups("Group: developer\nGroup: client\n"), (SignGroups{true, true}));
    QCOMPARE(signGroups("Group: developers\nGroup: my client\nGroup: CLIENT\n"), SignGroups());
    QCOMPARE(signGroups("Group: developer"), SignGroups()); // no line end
}

void UtilsTest::listsPackagesBesideAPath()
{
    const QTemporaryDir folder;
    const QString noSuchFile = folder.filePath("none.rpm");
    for (const char *name : {"b.rpm", "a.rpm", "a.rpm.1.p7s", "folder.rpm/c.rpm"})
        writeFile(folder.filePath(name), {});
    QStringList packages = getRpmListFrom(noSuchFile);
    packages.sort();
    QCOMPARE(packages, (QStringList{folder.filePath("a.rpm"), folder.filePath("b.rpm")}));
}

void UtilsTest::tellsWhatLiesInAFolder()
{
    QVERIFY(isFileChildOf("/a/b/c/k.pem", "/a/b"));
    QVERIFY(isFileChildOf("/a/bc/k.pem", "/a/b")); // a sibling whose name begins so
    QVERIFY(!isFileChildOf("/A/b/k.pem", "/a/b"));
    QVERIFY(!isFileChildOf("/a/k.pem", "/a/b"));
    QVERIFY(!isFileChildOf("/a/b", {}));
}

void UtilsTest::followsLinksIntoTheWorkspace()
{
    const QTemporaryDir temporary;
    const QDir folder(QFileInfo(temporary.path()).canonicalFilePath());
    writeFile(folder.filePath("workspace/project/a.rpm"), {});
    writeFile(folder.filePath("elsewhere/b.rpm"), {});
    QVERIFY(QFile::link(folder.filePath("workspace"), folder.filePath("linked")));
    QVERIFY(QFile::link(folder.filePath("workspace/project"), folder.filePath("project")));
    const auto inside = [&folder](const QString &path, const QString &workspace) {
        const FilePath place = FilePath::fromString(folder.filePath(workspace));
        return folder.relativeFilePath(pathsInWorkspace({folder.filePath(path)}, place).first());
    };
    QCOMPARE(inside("project/a.rpm", "workspace"), "workspace/project/a.rpm");
    QCOMPARE(inside("workspace/project/a.rpm", "linked"), "linked/project/a.rpm");
    QCOMPARE(inside("linked/project/a.rpm", "linked"), "linked/project/a.rpm");
    QCOMPARE(inside("elsewhere/b.rpm", "workspace"), "elsewhere/b.rpm");
    QCOMPARE(inside("project/none.rpm", "workspace"), "project/none.rpm");
}

void UtilsTest::findsTheRegularKeys()
{
    const QTemporaryDir sdk;
    writeFile(sdk.filePath("sdk.ini"), {});
    QString error;
    QVERIFY2(Brisk::openInstallation(FilePath::fromString(sdk.path()), &error), qPrintable(error));
    const FilePath workspace = FilePath::fromString(sdk.filePath("ws"));
    QCOMPARE(getDefaultKey(workspace).toFSPathString(),
             sdk.filePath("package-signing/regular_key.pem"));

    const QString keys = sdk.filePath("ws/.veyraos-regular-keys");
    QVERIFY(QDir().mkpath(keys));
    QCOMPARE(getDefaultKeysDir(workspace), keys);
    QCOMPARE(getDefaultKey(workspace).toFSPathString(), keys + "/regular_key.pem");
    QCOMPARE(getDefaultCertificate(workspace).toFSPathString(), keys + "/regular_cert.pem");
    Brisk::closeInstallation();
}

QTEST_GUILESS_MAIN(UtilsTest)
#include "tst_utils.moc"
