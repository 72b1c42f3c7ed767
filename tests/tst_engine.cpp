#include "files.h"
#include "processes.h"
#include "rpmpackage.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <QtCore>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>

constexpr int RUN_TIMEOUT_MS = 30'000;

using Files = QMap<QString, QByteArray>;

/// The embedded build engine, as a shell meets it: the real brisk, tools and openssl.
class EngineTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void toolsTalk_data();
    void toolsTalk();
    void runsAtOnceLoseNothing();
    void packageMustNotChangeMeanwhile();
    void packageIsJudgedWhenItIsRead_data();
    void packageIsJudgedWhenItIsRead();
    void signalsEndAPrompt();
    void lockIsWaitedFor();
    void newPackageIsLookedAt();
    void lateChangeUndoesAllSignatures();
    void headerMustBeInOrder_data();
    void headerMustBeInOrder();
    void coversAllButTheSignatureHeader();
    void keepsWhoseAndWhatFileItIs();
    void fullDiskIsNoticedBeforeAnythingIsWritten();
    void replacesWithoutExchanging();
    void customerSignsBinaries();
    void endedSigningLeavesWholePackages();

    void briskRunsATool_data();
    void briskRunsATool();
    void slowReaderGetsAllOutput();
    void nothingOutlivesBrisk();
    void passPhrasesAreForgotten();
    void demoSdkIsRefreshed();

private:
    void start(QProcess &process,
               const QStringList &words,
               const QString &target = RPMSIGN_TARGET) const;
    /// What the tool prints, with "\n" at the line ends, and its exit code where that is not 0.
    QString run(const QStringList &words,
                const QByteArray &input = {},
                const QString &target = RPMSIGN_TARGET) const;
    /// Signs a.rpm with a key that has a pass phrase; "pid" then holds the tool's process id.
    void startAtPrompt(QProcess &process) const;
    QStringList signing(const QString &pair) const;
    QString withFunctions(const QByteArray &source) const;
    Files files(const QStringList &filters = {"*"}) const;

    QString key(const QString &name) const { return m_sdk.workspace() + "/keys/" + name; }
    QString path(const QString &name) const { return m_packages + '/' + name; }
    void addTool(const QString &name, const QByteArray &script) const
    {
        writeScript(m_sdk.tool(name), "PATH=/usr/bin:/bin\n" + script);
    }

    const TemporarySdk m_sdk;
    const QString m_packages = m_sdk.workspace() + "/packages"; // where everything runs
};

void EngineTest::init()
{
    failOnStrayWarnings();
    for (const char *name : {"a.rpm", "b.rpm", "-c.rpm", "blocked.rpm"})
        writeFile(path(name), rpmPackage(QByteArray(100'000, name[0])));
    writeFile(path("text"), QByteArray("no package at all\n").repeated(100));
    QVERIFY(QFile::link(path("text"), path(".-c.rpm.signing")));
    QVERIFY(QDir(m_packages).mkdir(".blocked.rpm.signing") && QDir(m_packages).mkdir("folder"));
    QCOMPARE(mkfifo(qPrintable(path("pipe")), 0600), 0);
    writeFile(path("large"), QByteArray(2'000'000, '\n'));
}

void EngineTest::cleanup()
{
    QVERIFY(QDir(m_packages).removeRecursively());
}

void EngineTest::start(QProcess &process, const QStringList &words, const QString &target) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The system's roots count for nothing.
    environment.insert("SSL_CERT_FILE", key("foreign_root.pem"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setWorkingDirectory(m_packages);
    process.start(m_sdk.path() + "/bin/brisk",
                  QStringList{"engine", "exec", "-tt", "sb2", "-t", target} + words);
}

QString
EngineTest::run(const QStringList &words, const QByteArray &input, const QString &target) const
{
    QProcess process;
    start(process, words, target);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(RUN_TIMEOUT_MS) || process.exitStatus() != QProcess::NormalExit)
        return "brisk does not end";
    const QString output = QString::fromUtf8(process.readAll()).replace("\r\n", "\n");
    const QString exitCode = QString::number(process.exitCode());
    return exitCode == "0" ? output : output + "exit code " + exitCode + '\n';
}

void EngineTest::startAtPrompt(QProcess &process) const
{
    start(process, {"echo $$ >pid; exec " + signing("encrypted").join(' ') + " a.rpm"});
    QByteArray output;
    QTRY_VERIFY((output += process.readAll()).contains("Enter pass phrase"));
}

QStringList EngineTest::signing(const QString &pair) const
{
    return {
        "rpmsign-external", "sign", "-k", key(pair + "_key.pem"), "-c", key(pair + "_cert.pem")};
}

Files EngineTest::files(const QStringList &filters) const
{
    Files files;
    const QStringList names = QDir(m_packages).entryList(filters, QDir::Files | QDir::Hidden);
    for (const QString &name : names)
        files.insert(name, readFile(path(name)));
    return files;
}

void EngineTest::toolsTalk_data()
{
    QTest::addColumn<QString>("talk");
    const QStringList talks = QString::fromUtf8(readFile(ENGINE_TRANSCRIPT)).split("\n= ").mid(1);
    for (const QString &talk : talks) {
        const qsizetype end = talk.indexOf('\n');
        addRow(qPrintable(talk.left(end)), talk.mid(end + 1).trimmed() + '\n');
    }
}

/// A command that fails leaves all files as they were. Without signatures, all packages are at the
/// end what they were, but for those that "damage" has changed.
void EngineTest::toolsTalk()
{
    QFETCH(const QString, talk);
    addTool("copy", "cp \"$@\"");
    addTool("link", "ln -s \"$@\"");
    addTool("hardlink", "ln \"$@\"");
    addTool("remove", "rm \"$@\"");
    addTool("append", "cat \"$1\" >>\"$2\"");
    addTool("spoil",
            "last=$(tail -c 1 \"$1\" | od -An -tu1)\n"
            "printf \"\\\\$(printf %o $(((last + 1) % 256)))\" |\n"
            "    dd of=\"$1\" bs=1 seek=$(($(wc -c <\"$1\") - 1)) conv=notrunc status=none");
    addTool("damage", "printf '~~' | dd of=\"$1\" bs=1 seek=4 conv=notrunc status=none");
    static const QRegularExpression pair("^sign (\\w+)");
    const Files packages = files({"*.rpm", "text"});
    QString heard;
    for (const QString &line : talk.split('\n').filter(QRegularExpression("^\\$ "))) {
        QString command = line.mid(2);
        const QByteArray typed = command.section(" < ", 1).replace(' ', '\n').toUtf8();
        command = command.section(" < ", 0, 0).replace("K/", key({}));
        command.replace(
            pair, "rpmsign-external sign -k " + key("\\1_key.pem") + " -c " + key("\\1_cert.pem"));
        const bool isCustomers = command.contains(QRegularExpression("^(customer|nxvcert)-"));
        const Files before = files();
        const QString output = run({command},
                                   typed.isEmpty() ? typed : typed + '\n',
                                   isCustomers ? CUSTOMER_TARGET : RPMSIGN_TARGET);
        heard += line + '\n' + output;
        if (output.contains("exit code "))
            QCOMPARE(files(), before);
    }
    heard.replace(key({}), "K/").remove(m_packages + '/');
    heard.replace(QRegularExpression("Key ID: [^\n]+"), "Key ID: …");
    heard.replace(QRegularExpression("sha256, .* GMT\n"), "sha256, …\n");
    // Debian 13's openssl says so where a certificate is issued for a key.
    heard.remove(QRegularExpression("Warning: Not using -key or -newkey for signing[^\n]*\n"));
    QVERIFY2(heard == talk, qPrintable(heard));
    run(QStringList{"rpmsign-external", "delete", "--"} + files({"*.rpm"}).keys());
    if (!talk.contains("\n$ damage a.rpm\n"))
        QCOMPARE(files({"*.rpm", "text"}), packages);
}

void EngineTest::runsAtOnceLoseNothing()
{
    std::vector<QProcess> runs(8);
    for (QProcess &process : runs)
        start(process, signing("client") + QStringList{"a.rpm", "b.rpm"});
    for (QProcess &process : runs) {
        QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));
        QCOMPARE(process.exitCode(), 0);
    }
    QCOMPARE(run({"rpmsign-external delete a.rpm b.rpm"}),
             "a.rpm: 8 signatures removed\nb.rpm: 8 signatures removed\n");
}

void EngineTest::packageMustNotChangeMeanwhile()
{
    QVERIFY(QFile::resize(path("a.rpm"), 200'000'000)); // takes a while to read
    QFile file(path("b.rpm"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QProcess process;
    start(process, signing("client") + QStringList{"b.rpm", "a.rpm"});
    while (!process.waitForFinished(5))
        QVERIFY(file.seek(50'000) && file.putChar('y') && file.flush());
    QCOMPARE(process.readAll(),
             "rpmsign-external: error: the package changed meanwhile: b.rpm\r\n");
    QVERIFY(files({"?.rpm?*", ".?.rpm*"}).isEmpty());
}

void EngineTest::packageIsJudgedWhenItIsRead_data()
{
    addColumns<QByteArray, QString>("replacement", "fault");
    addRow("text", QByteArray("echo no package >a.rpm"), "not an RPM package: a.rpm");
    addRow("nothing", QByteArray(": >a.rpm"), "not an RPM package: a.rpm");
    addRow("pipe", QByteArray("mv pipe a.rpm"), "package is no regular file: a.rpm");
}

/// Something else takes the package's place while the tool asks for the pass phrase.
void EngineTest::packageIsJudgedWhenItIsRead()
{
    QFETCH(const QByteArray, replacement);
    QFETCH(const QString, fault);
    QProcess process;
    startAtPrompt(process);
    QCOMPARE(std::system("cd " + m_packages.toUtf8() + " && " + replacement), 0);
    process.write("demo\n");
    QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));
    QCOMPARE(process.readAll(), ("\r\nrpmsign-external: error: " + fault + "\r\n").toUtf8());
    QVERIFY(files({"?.rpm?*", ".?.rpm*"}).isEmpty());
}

void EngineTest::signalsEndAPrompt()
{
    for (const int signalNumber : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        QProcess process;
        startAtPrompt(process);
        QCOMPARE(std::system("kill -" + QByteArray::number(signalNumber) + " $(cat "
                             + path("pid").toUtf8() + ')'),
                 0);
        QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));
        QCOMPARE(process.exitCode(), 128 + signalNumber);
    }
}

void EngineTest::lockIsWaitedFor()
{
    for (const QStringList &words : {signing("client"), {"rpmsign-external", "delete"}}) {
        const int folder = open(qPrintable(m_packages), O_RDONLY | O_CLOEXEC);
        QCOMPARE(flock(folder, LOCK_EX), 0);
        QProcess process;
        start(process, words + QStringList{"a.rpm"});
        QByteArray output;
        QTRY_COMPARE((output += process.readAll()),
                     "waiting for another run to leave the folder: " + m_packages.toUtf8()
                         + "\r\n");
        QCOMPARE(process.state(), QProcess::Running);
        close(folder);
        QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));
        QCOMPARE(process.exitCode(), 0);
    }
}

// What the words of a shell line begin with for a tool with functions of the C library replaced.
QString EngineTest::withFunctions(const QByteArray &source) const
{
    const QString library = path("functions.so");
    writeFile(path("functions.c"),
              "#define _GNU_SOURCE\n#include <errno.h>\n#include <fcntl.h>\n#include "
              "<sys/stat.h>\n#include <sys/statvfs.h>\n"
              "#include <sys/syscall.h>\n#include <unistd.h>\n"
                  + source);
    const QStringList words{"-shared", "-fPIC", "-o", library, path("functions.c")};
    [&] { QCOMPARE(QProcess::execute("cc", words), 0); }();
    return "LD_PRELOAD=" + library + " ASAN_OPTIONS=verify_asan_link_order=0 ";
}

// On a disk that loses what is written, and tells nobody.
void EngineTest::newPackageIsLookedAt()
{
    const QString tool =
        withFunctions("ssize_t write(int file, const void *bytes, size_t size) {\n"
                      "    struct stat status;\n"
                      "    return fstat(file, &status) == 0 && S_ISREG(status.st_mode)\n"
                      "        ? (ssize_t)size : syscall(SYS_write, file, bytes, size); }\n");
    QCOMPARE(run({tool + signing("client").join(' ') + " a.rpm"}),
             "rpmsign-external: error: the new package is not what was written: a.rpm\n"
             "exit code 1\n");
    QVERIFY(files({"?.rpm?*", ".?.rpm*"}).isEmpty());
}

// When the first signature gets its name, somebody changes the other package.
void EngineTest::lateChangeUndoesAllSignatures()
{
    const QString tool =
        withFunctions("int renameat2(int a, const char *b, int c, const char *d, unsigned e) {\n"
                      "    static int calls = 0;\n"
                      "    if (calls++ > 0) return syscall(SYS_renameat2, a, b, c, d, e);\n"
                      "    int package = open(\"b.rpm\", O_WRONLY | O_APPEND);\n"
                      "    if (write(package, \"x\", 1) != 1 || close(package) != 0) return -1;\n"
                      "    return syscall(SYS_renameat2, a, b, c, d, e); }\n");
    const QByteArray other = readFile(path("a.rpm"));
    QCOMPARE(run({tool + signing("client").join(' ') + " b.rpm a.rpm"}),
             "rpmsign-external: error: the package changed meanwhile: b.rpm\nexit code 1\n");
    QCOMPARE(readFile(path("a.rpm")), other);
    QVERIFY(readFile(path("b.rpm")).endsWith("bx"));
    QVERIFY(files({"?.rpm?*", ".?.rpm*"}).isEmpty());
}

void EngineTest::headerMustBeInOrder_data()
{
    // Of a package that is signed once: the signature header begins at 96, its entries at 112.
    addColumns<int, QByteArray, QString>("position", "bytes", "fault");
    const auto bytes = [](const char *hexadecimal) { return QByteArray::fromHex(hexadecimal); };
    const QString overlap = "entries overlap or are outside of it";
    const QString layout = "it is not laid out as rpm does it";
    addRow("our tag twice", 128, QByteArray("Seal"), QString("a tag is there twice"));
    addRow("outside", 160 + 8, bytes("00ffffff"), overlap);
    addRow("overlapping", 160 + 8, bytes("00000000"), overlap);
    addRow("too long", 160 + 12, bytes("00ffffff"), QString("an entry is empty or too large"));
    addRow("a tag for regions", 144, bytes("0000003e"), QString("a tag is where it must not be"));
    addRow("the region does not hold all", 104, bytes("00000003"), layout);
    addRow("another region", 112, bytes("0000003f"), layout);
    addRow("more entries than rpm reads", 104, bytes("00000021"), QString("it has another size"));
}

/// rpm and we must see the same.
void EngineTest::headerMustBeInOrder()
{
    QFETCH(const int, position);
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, fault);
    QCOMPARE(run(signing("client") + QStringList{"a.rpm"}), "Signed: a.rpm\n");
    writeFile(path("a.rpm"), readFile(path("a.rpm")).replace(position, bytes.size(), bytes));
    const Files before = files();
    for (const char *command : {"verify", "dump", "delete"})
        QCOMPARE(run({"rpmsign-external", command, "a.rpm"}),
                 "rpmsign-external: error: a header is not in order, " + fault
                     + ": a.rpm\nexit code 1\n");
    QCOMPARE(files(), before);
}

/// Signatures in the package do not cover what others write into the signature header; those that
/// lay beside it do.
void EngineTest::coversAllButTheSignatureHeader()
{
    const QString old = "openssl cms -sign -binary -outform DER -in a.rpm -out a.rpm.1.p7s -signer "
                        + key("client_cert.pem") + " -inkey " + key("client_key.pem");
    QCOMPARE(run({old}), "");
    QCOMPARE(run(signing("client") + QStringList{"a.rpm"}), "Signed: a.rpm\n");
    const QByteArray package = readFile(path("a.rpm"));
    const auto verify = [this, package](qsizetype position) {
        QByteArray changed = package;
        changed[position] = char(changed[position] ^ 1);
        writeFile(path("a.rpm"), changed);
        QString result = run({"rpmsign-external", "verify", "a.rpm"});
        return result.remove("a.rpm: signature ").section('\n', 0, 1);
    };
    const QString isChanged = " is NOT valid: the package was changed after it was signed";
    const QString both = '1' + isChanged + "\n2" + isChanged;
    QCOMPARE(verify(4), both);                                            // lead
    QCOMPARE(verify(96 + 16 + 4 * 16), '1' + isChanged + "\n2 is valid"); // rpm's digest
    QCOMPARE(verify(package.lastIndexOf("noarch")), both);                // header
    QCOMPARE(verify(package.size() - 1), both);                           // payload
}

void EngineTest::keepsWhoseAndWhatFileItIs()
{
    const QByteArray file = path("a.rpm").toUtf8();
    QCOMPARE(chmod(file, 06751), 0);
    const bool isRoot = geteuid() == 0;
    if (isRoot)
        QVERIFY(chown(file, 12, 34) == 0 && chmod(file, 06751) == 0);
    const bool hasAttributes = setxattr(file, "user.note", "kept", 4, 0) == 0;
    QCOMPARE(run(signing("client") + QStringList{"a.rpm"}), "Signed: a.rpm\n");
    struct stat status = {};
    QVERIFY(stat(file, &status) == 0 && isSigned(file));
    QCOMPARE(status.st_mode & 07777, 06751U);
    if (isRoot)
        QVERIFY(status.st_uid == 12 && status.st_gid == 34);
    char note[5] = "";
    QVERIFY(!hasAttributes || getxattr(file, "user.note", note, 4) == 4);
    QCOMPARE(QByteArray(note), hasAttributes ? "kept" : "");
}

void EngineTest::fullDiskIsNoticedBeforeAnythingIsWritten()
{
    const QString tool = withFunctions("int fstatvfs(int file, struct statvfs *disk) {\n"
                                       "    disk->f_bavail = disk->f_bfree = 50;\n"
                                       "    disk->f_frsize = 4096; return 0; }\n"
                                       "int openat(int folder, const char *name, int how, ...) {\n"
                                       "    return syscall(SYS_openat, folder, name,\n"
                                       "                   how & ~O_CREAT, 0); }\n");
    const QString sign = tool + signing("client").join(' ');
    QCOMPARE(run({sign + " a.rpm b.rpm"}),
             "rpmsign-external: error: there is no room for new packages on the disk: " + m_packages
                 + "\nexit code 1\n");
    QCOMPARE(run({sign + " a.rpm"}),
             "rpmsign-external: error: cannot write a new package beside the old one: a.rpm: "
             "No such file or directory\nexit code 1\n");
}

// A file system that cannot exchange two files, as many that are shared over a network.
void EngineTest::replacesWithoutExchanging()
{
    const QString tool =
        withFunctions("int renameat2(int a, const char *b, int c, const char *d, unsigned e) {\n"
                      "    errno = EINVAL; return -1; }\n");
    const Files before = files();
    QCOMPARE(run({tool + signing("client").join(' ') + " a.rpm b.rpm"}),
             "Signed: a.rpm\nSigned: b.rpm\n");
    QCOMPARE(files().keys(), before.keys());
    QCOMPARE(run({tool + "rpmsign-external delete a.rpm b.rpm"}),
             "a.rpm: 1 signatures removed\nb.rpm: 1 signatures removed\n");
    QCOMPARE(files(), before);
}

// A package with one program, whose digest rpm tells beside its signature.
void EngineTest::customerSignsBinaries()
{
    QProcess build;
    build.setWorkingDirectory(m_sdk.workspace() + "/hello-veyra");
    build.start("rpmbuild",
                {"-bb",
                 "--build-in-place",
                 "--define=_topdir " + path("top"),
                 "--define=_rpmdir " + m_packages,
                 "--define=_build_name_fmt %%{NAME}",
                 "rpm/hello-veyra.spec"});
    QVERIFY(build.waitForFinished(RUN_TIMEOUT_MS) && build.exitCode() == 0);
    QVERIFY(QFile::rename(path("hello-veyra"), path("p")));
    const QByteArray original = readFile(path("p"));
    const QString home = m_sdk.workspace() + "/home/.kilnsdk/";
    const auto sign = [&](const QString &binariesKey) {
        return run({"customer-sign",
                    "--binaries-key",
                    binariesKey,
                    "--packages-key",
                    home + "packages-key.pem",
                    "--packages-cert",
                    home + "packages-cert.pem",
                    "p"},
                   {},
                   CUSTOMER_TARGET);
    };
    const auto tell = [this](const QStringList &words) {
        return run(words, {}, CUSTOMER_TARGET).section('\n', -3, -3);
    };

    QCOMPARE(run(signing("client") + QStringList{"p"}), "Signed: p\n");
    QCOMPARE(
        sign(home + "binaries-key.pem"),
        "customer-sign: error: signing the binaries would break the signatures that are there: "
        "p\nexit code 1\n");
    QCOMPARE(run({"rpmsign-external delete p"}), "p: 1 signatures removed\n");
    QCOMPARE(sign(home + "binaries-key.pem"), "Signed: p\n");
    QCOMPARE(sign(home + "binaries-key.pem"), "Signed: p\n");
    QCOMPARE(sign(key("client_key.pem")),
             "customer-sign: error: another key has signed files of the package: p\nexit code 1\n");

    QProcess rpm;
    rpm.setWorkingDirectory(m_packages);
    rpm.start("rpm", {"-qp", "--qf", "[%{filenames} %{filedigests} %{filesignatures}\n]", "p"});
    QVERIFY(rpm.waitForFinished(RUN_TIMEOUT_MS));
    const QByteArray files = rpm.readAll();
    QCOMPARE(files.count(" 0302"), 1); // links and folders are not signed
    const QByteArrayList file = files.left(files.indexOf('\n')).split(' ');
    QCOMPARE(file.first(), "/usr/bin/hello-veyra");
    const QByteArray signature = QByteArray::fromHex(file.value(2));
    QCOMPARE(signature.left(3).toHex(), "030204"); // IMA, version 2, SHA-256
    writeFile(path("digest"), QByteArray::fromHex(file.value(1)));
    writeFile(path("signature"), signature.mid(9));
    QCOMPARE(run({"openssl pkeyutl -verify -in digest -sigfile signature -pkeyopt digest:sha256 "
                  "-inkey "
                  + home + "binaries-key.pem"}),
             "Signature Verified Successfully\n");

    const QByteArray keyId = signature.mid(3, 4).toHex().toUpper();
    QCOMPARE(tell({"nxvcert-cli", "dump", "p"}), "Files: 1 of 4 signed by " + keyId);
    QCOMPARE(tell({"nxvcert-cli", "verify", "--root-cert-file-path", "", "p", "p"}),
             "p: signature 2 is valid");
    QByteArray changed = readFile(path("p"));
    const qsizetype at = changed.indexOf(file.value(2)) + 100;
    changed[at] = changed[at] == '0' ? '1' : '0';
    writeFile(path("p"), changed);
    QVERIFY(run({"nxvcert-cli", "verify", "--root-cert-file-path", "", "p"}, {}, CUSTOMER_TARGET)
                .contains("signature 1 is NOT valid: the package was changed after it was signed"));
    QCOMPARE(run({"rpmsign-external delete p"}), "p: 2 signatures removed\n");
    QCOMPARE(readFile(path("p")), original);
}

void EngineTest::endedSigningLeavesWholePackages()
{
    QStringList packages;
    for (int i = 0; i < 20; ++i) {
        packages << QString::number(i) + ".rpm";
        QVERIFY(QFile::copy(path("a.rpm"), path(packages.last())));
    }
    QByteArray original = readFile(path("a.rpm"));
    for (int round = 0; round < 40; ++round) {
        const int signalNumber = round % 2 == 0 ? SIGKILL : SIGTERM;
        if (round == 39) // takes a while to read and to write
            QVERIFY(packages.removeOne("0.rpm") && QFile::resize(path("19.rpm"), 300'000'000));
        QProcess process;
        process.setWorkingDirectory(m_packages);
        process.start(m_sdk.tool("rpmsign-external"), signing("client").mid(1) + packages);
        QVERIFY(process.waitForStarted());
        QTest::qSleep(QRandomGenerator::global()->bounded(30));
        QTRY_VERIFY(round < 39 || !files({".?.rpm.signing"}).isEmpty());
        kill(pid_t(process.processId()), signalNumber);
        QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));

        QStringList signedPackages;
        for (const QString &package : packages.mid(0, 18)) {
            if (isSigned(path(package)))
                signedPackages << package;
            else
                QCOMPARE(readFile(path(package)), original);
        }
        if (!signedPackages.isEmpty())
            QVERIFY(
                !run(QStringList{"rpmsign-external", "verify"} + signedPackages).contains("error"));
        if (signalNumber == SIGTERM) {
            QVERIFY(signedPackages.isEmpty() || (signedPackages.size() == 18 && round < 39));
            QVERIFY(files({"*.rpm.signing*"}).size() == 1); // the link
        }
        QVERIFY(run(QStringList{"rpmsign-external", "delete"} + packages).contains("removed"));
        QCOMPARE(readFile(path("3.rpm")), original);
        QVERIFY(files({".?.rpm.signing*"}).isEmpty());
    }
}

void EngineTest::briskRunsATool_data()
{
    // words: behind the target
    addColumns<QStringList, QByteArray, QString>("words", "input", "output");

    const QString target = RPMSIGN_TARGET;
    const QByteArray none;
    addRow("words stay whole",
           QStringList{target, "probe", "a b", "", "$HOME 'x' \"y\" \\", "*", "й"},
           none,
           "<a b><><$HOME 'x' \"y\" \\><*><й>\nexit code 7\n");
    addRow("one word with blanks is a shell line",
           QStringList{target, "probe 'a b' c || echo \"ended by $?\"; ls /"},
           none,
           "<a b><c>\nended by 7\n/bin/sh: 1: ls: not found\nexit code 127\n");
    addRow("files that are no tools",
           QStringList{target, "data"},
           none,
           "brisk: data: command not found\nexit code 127\n");
    addRow("nor folders",
           QStringList{target, "."},
           none,
           "brisk: .: command not found\nexit code 127\n");
    addRow("open files of the caller stay behind",
           QStringList{target, "descriptors"},
           none,
           "/proc/self/fd/0 /proc/self/fd/1 /proc/self/fd/10 /proc/self/fd/2 /proc/self/fd/3\n");
    addRow("no program of this computer",
           QStringList{target, "/bin/ls"},
           none,
           "brisk: /bin/ls: command not found\nexit code 127\n");
    addRow("ended by a signal", QStringList{target, "kill -KILL $$"}, none, "exit code 137\n");
    addRow("no target's name",
           QStringList{"../targets/" + target, "probe"},
           none,
           "brisk: no such build target: ../targets/" + target + "\nexit code 1\n");
    addRow("an answer before the question does not show",
           QStringList{target, "asking"},
           QByteArray("secret\n"),
           "Enter pass phrase: \n6\n");
    addRow("an ended input stays ended",
           QStringList{target, "reading"},
           QByteArray("a\nb"),
           "a\nbend\n");
    addRow("more input than is read, more output than fits",
           QStringList{target, "chatting"},
           "first\n" + QByteArray("never read\n").repeated(20'000),
           QString("1234567\n").repeated(20'000) + "first\n");
}

void EngineTest::briskRunsATool()
{
    QFETCH(const QStringList, words);
    QFETCH(const QByteArray, input);
    addTool("probe", "printf '<%s>' \"$@\"; echo; exit 7");
    addTool("asking", "sleep 0.3; printf 'Enter pass phrase: '; read -r a; echo; echo ${#a}");
    addTool("reading", "cat; stty -F /dev/tty -icanon icanon; cat; read -r line || echo end");
    addTool("chatting", "yes 1234567 | head -n 20000; read -r line; echo \"$line\"");
    addTool("descriptors", "echo /proc/self/fd/[0-9]*");
    writeFile(m_sdk.tool("data"), {});
    const int inherited = open("/dev/null", O_RDONLY); // NOLINT(android-cloexec-open)
    const auto closing = qScopeGuard([inherited] { close(inherited); });
    QTEST(run(words.mid(1), input, words.first()), "output");
}

/// Neither the pipe nor brisk takes in all of it before the tool ends.
void EngineTest::slowReaderGetsAllOutput()
{
    addTool("flooding", "head -c 150000 /dev/zero | tr '\\0' x");
    QProcess process;
    start(process, {"flooding"});
    QTest::qSleep(700);
    QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));
    QCOMPARE(process.readAll(), QByteArray(150'000, 'x'));
}

void EngineTest::nothingOutlivesBrisk()
{
    addTool("staying",
            "trap '' HUP TERM INT; (while :; do sleep 60; done) & echo $$ $!\n"
            "while :; do sleep 60; done");
    for (const int signalNumber : {SIGKILL, SIGTERM}) {
        QProcess process;
        start(process, {"staying"});
        QTRY_VERIFY(process.canReadLine());
        const QList<QByteArray> pids = process.readLine().trimmed().split(' ');
        QCOMPARE(kill(pid_t(process.processId()), signalNumber), 0);
        QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));
        for (const QByteArray &pid : pids)
            QTRY_VERIFY2(!isAlive(pid.toLongLong()), pid.constData());
    }
}

/// At the last question, nobody holds the first answer or what the file of the first key holds.
void EngineTest::passPhrasesAreForgotten()
{
    const QByteArray phrase = "Wq7z pass phrase to be forgotten";
    const QString plain = key("client_key.pem");
    const QString encrypted = path("key.pem");
    const QString bytes = path("key.der");
    const QStringList convert{"pkcs8", "-topk8", "-in", plain, "-out"};
    QCOMPARE(QProcess::execute("openssl",
                               convert + QStringList{encrypted, "-passout", "pass:" + phrase}),
             0);
    const QStringList asBytes{"ec", "-in", plain, "-outform", "DER", "-out", bytes};
    QCOMPARE(QProcess::execute("openssl", asBytes), 0);
    for (const QString &first : {encrypted, plain}) {
        QProcess brisk;
        start(brisk,
              {"customer-sign",
               "--binaries-key",
               first,
               "--packages-key",
               key("encrypted_key.pem"),
               "--packages-cert",
               key("encrypted_cert.pem"),
               "a.rpm"},
              CUSTOMER_TARGET);
        QByteArray output;
        if (first == encrypted) {
            QTRY_VERIFY((output += brisk.readAll()).contains("Enter passphrase"));
            brisk.write(phrase + '\n');
        }
        QTRY_VERIFY((output += brisk.readAll()).contains("Enter pass phrase"));
        const QByteArrayList memories = memoriesOf(brisk.processId());
        QCOMPARE(memories.size(), 3); // brisk, its watcher and the tool
        for (const QByteArray &memory : memories) {
            QVERIFY(!memory.contains(phrase));
            QVERIFY(!memory.contains(readFile(first).split('\n').at(1)));
            QVERIFY(!memory.contains(readFile(bytes).mid(7, 32))); // as no calculation has it
        }
        brisk.write("demo\n");
        QVERIFY(brisk.waitForFinished(RUN_TIMEOUT_MS));
        QCOMPARE(brisk.exitCode(), 0);
    }
}

void EngineTest::demoSdkIsRefreshed()
{
    const QString tool = m_sdk.tool("rpmsign-external");
    const QStringList paths{
        tool, key("client_key.pem"), m_sdk.workspace() + "/hello-veyra/hello-veyra.c"};
    writeFile(paths.last(), "changed by its owner");
    QByteArrayList before;
    for (const QString &file : paths)
        before << readFile(file);
    writeFile(tool, "outdated");
    QCOMPARE(QProcess::execute(MAKE_DEMO_SDK, {"--brisk", BRISK_EXECUTABLE, m_sdk.path()}), 0);
    for (const QString &file : paths)
        QCOMPARE(readFile(file), before.takeFirst());
}

QTEST_GUILESS_MAIN(EngineTest)
#include "tst_engine.moc"
