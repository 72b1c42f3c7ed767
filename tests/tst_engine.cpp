#include "temporarysdk.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

const QString RPMSIGN_TARGET = QStringLiteral("VeyraOS-5.1-x86_64");
const QString CUSTOMER_TARGET = QStringLiteral("VeyraOS-4.0-x86_64");
constexpr int RUN_TIMEOUT_MS = 30'000;

struct Run
{
    int exitCode = -1;
    QString out; // with "\n" at the line ends
    QString err;
};

using Files = QMap<QString, QByteArray>;

/// The embedded build engine, as a shell meets it: the real brisk, tools and openssl.
class EngineTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void signaturesComeAndGo();
    void verificationSaysWhatIsWrong_data();
    void verificationSaysWhatIsWrong();
    void failedSigningLeavesEverythingUnchanged_data();
    void failedSigningLeavesEverythingUnchanged();
    void passPhrasesArriveUnharmed_data();
    void passPhrasesArriveUnharmed();
    void keysAndRequests_data();
    void keysAndRequests();
    void customerSignAsksForTheBinariesKey_data();
    void customerSignAsksForTheBinariesKey();
    void dumpTellsSubjectAndUnits_data();
    void dumpTellsSubjectAndUnits();

    void wordsAndExitCodes_data();
    void wordsAndExitCodes();
    void engineThatCannotStart_data();
    void engineThatCannotStart();
    void answersNeverShow();
    void endedInputStaysEnded();
    void floodAndUnreadInput();
    void leftProcessesAreNotWaitedFor();
    void nothingOutlivesBrisk_data();
    void nothingOutlivesBrisk();
    void demoSdkIsRefreshed();

private:
    QString brisk() const { return m_sdk.path() + "/bin/brisk"; }
    QString key(const QString &name) const { return m_sdk.workspace() + "/keys/" + name; }
    QString package(const QString &name) const { return m_packages + '/' + name; }
    QStringList execWords(const QString &target, const QStringList &words) const;
    void start(QProcess &process, const QStringList &arguments) const;
    Run runBrisk(const QStringList &arguments, const QByteArray &input = {}) const;
    Run run(const QString &target, const QStringList &words, const QByteArray &input = {}) const;
    /// Expects success. File names in \a line are relative to the workspace.
    QString openssl(const QString &line, const QByteArray &input = {}) const;
    Run rpmsign(const QStringList &words, const QByteArray &input = {}) const;
    Run sign(const QString &pair, const QStringList &packages, const QByteArray &input = {}) const;
    QString addPackage(const QString &name) const;
    void addTool(const QString &name, const QByteArray &script) const;
    Files packageFiles() const;

    const TemporarySdk m_sdk;
    const QString m_packages = m_sdk.workspace() + "/packages";
    const QString m_temporary = m_sdk.path() + "/tmp";
};

static QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

static void write(const QString &path, const QByteArray &data)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    QCOMPARE(file.write(data), data.size());
}

static bool isAlive(qint64 pid)
{
    // "7 (name) S ...": a zombie is no longer alive
    const QByteArray state = contents(QStringLiteral("/proc/%1/stat").arg(pid));
    return !state.isEmpty() && !state.contains(") Z ");
}

void EngineTest::init()
{
    QVERIFY(QDir().mkpath(m_packages));
    QVERIFY(QDir().mkpath(m_temporary));
}

void EngineTest::cleanup()
{
    QCOMPARE(QDir(m_temporary).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    QVERIFY(QDir(m_packages).removeRecursively());
}

QStringList EngineTest::execWords(const QString &target, const QStringList &words) const
{
    return QStringList{"engine", "exec", "-tt", "sb2", "-t", target} + words;
}

void EngineTest::start(QProcess &process, const QStringList &arguments) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", m_temporary);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_sdk.workspace());
    process.start(brisk(), arguments);
}

Run EngineTest::runBrisk(const QStringList &arguments, const QByteArray &input) const
{
    QProcess process;
    start(process, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(RUN_TIMEOUT_MS) || process.exitStatus() != QProcess::NormalExit)
        return {};
    QString out = QString::fromUtf8(process.readAllStandardOutput());
    return {process.exitCode(),
            out.replace("\r\n", "\n"),
            QString::fromUtf8(process.readAllStandardError())};
}

Run EngineTest::run(const QString &target, const QStringList &words, const QByteArray &input) const
{
    return runBrisk(execWords(target, words), input);
}

QString EngineTest::openssl(const QString &line, const QByteArray &input) const
{
    const Run result = run(RPMSIGN_TARGET, QStringList("openssl") + line.split(' '), input);
    if (result.exitCode != 0)
        QTest::qFail(qPrintable(line + '\n' + result.out), __FILE__, __LINE__);
    return result.out;
}

Run EngineTest::rpmsign(const QStringList &words, const QByteArray &input) const
{
    return run(RPMSIGN_TARGET, QStringList("rpmsign-external") + words, input);
}

Run EngineTest::sign(const QString &pair,
                     const QStringList &packages,
                     const QByteArray &input) const
{
    return rpmsign(QStringList{"sign", "-k", key(pair + "_key.pem"), "-c", key(pair + "_cert.pem")}
                       + packages,
                   input);
}

QString EngineTest::addPackage(const QString &name) const
{
    write(package(name), "\xed\xab\xee\xdb" + name.toUtf8() + QByteArray(100'000, 'x'));
    return package(name);
}

void EngineTest::addTool(const QString &name, const QByteArray &script) const
{
    const QString path = m_sdk.path() + "/engine/targets/" + RPMSIGN_TARGET + "/bin/" + name;
    write(path, "#!/bin/sh\nPATH=/usr/bin:/bin\n" + script);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
}

Files EngineTest::packageFiles() const
{
    Files files;
    const QStringList names = QDir(m_packages).entryList(QDir::Files | QDir::Hidden);
    for (const QString &name : names)
        files.insert(name, contents(package(name)));
    return files;
}

void EngineTest::signaturesComeAndGo()
{
    const QStringList packages{addPackage("-a b.rpm"), addPackage("d'e$f*.rpm")};
    const Files before = packageFiles();

    QCOMPARE(sign("foreign", packages).exitCode, 0);
    QCOMPARE(sign("client", packages).exitCode, 0);
    QCOMPARE(packageFiles().size(), 6);
    write(m_sdk.workspace() + "/both.pem",
          contents(key("demo_root.pem")) + contents(key("foreign_root.pem")));
    QCOMPARE(rpmsign(QStringList{"verify", "--root-cert", "both.pem"} + packages).exitCode, 0);

    QString dump = rpmsign(QStringList("dump") + packages).out;
    dump.replace(QRegularExpression("Key ID: [0-9A-F]{40}\n"), "Key ID: …\n");
    dump.replace(QRegularExpression("sha256, .* GMT\n"), "sha256, …\n");
    const QString rest = "Key ID: …\nSignature: ecdsa-with-SHA256, sha256, …\n";
    const QString signatures = "Subject: CN=Foreign Developer,OU=regular,OU=developer,"
                               "O=Somebody Else\nGroup: developer\nSubgroup: regular\n"
                               + rest
                               + "Subject: CN=Demo Client,OU=shop,OU=client,O=Veyra OS Demo\n"
                                 "Group: client\nSubgroup: shop\n"
                               + rest;
    QCOMPARE(dump, packages.at(0) + '\n' + signatures + packages.at(1) + '\n' + signatures);

    QCOMPARE(rpmsign(QStringList("delete") + packages).exitCode, 0);
    QCOMPARE(packageFiles(), before);
}

void EngineTest::verificationSaysWhatIsWrong_data()
{
    QTest::addColumn<QString>("pair");
    QTest::addColumn<QString>("root");
    QTest::addColumn<QString>("damaged");
    QTest::addColumn<QString>("verdict");

    const QString untrusted = "signature 1 is NOT valid: its certificate is not issued by a "
                              "trusted root";
    QTest::newRow("valid") << "client"
                           << ""
                           << ""
                           << "signature 1 is valid";
    QTest::newRow("foreign root accepted") << "foreign"
                                           << "foreign_root.pem"
                                           << ""
                                           << "signature 1 is valid";
    QTest::newRow("not signed") << ""
                                << ""
                                << ""
                                << "not signed";
    QTest::newRow("one byte changed") << "client"
                                      << ""
                                      << "a.rpm"
                                      << "signature 1 is NOT valid: the package was changed after "
                                         "it was signed";
    QTest::newRow("signature damaged") << "client"
                                       << ""
                                       << "a.rpm.1.p7s"
                                       << "signature 1 is NOT valid: it cannot be read";
    QTest::newRow("foreign root given") << "client"
                                        << "foreign_root.pem"
                                        << "" << untrusted;
    QTest::newRow("foreign certificate") << "foreign"
                                         << ""
                                         << "" << untrusted;
    QTest::newRow("expired") << "expired"
                             << ""
                             << ""
                             << "signature 1 is NOT valid: its certificate has expired";
}

void EngineTest::verificationSaysWhatIsWrong()
{
    QFETCH(QString, pair);
    QFETCH(QString, root);
    QFETCH(QString, damaged);
    QFETCH(QString, verdict);

    const QString path = addPackage("a.rpm");
    if (!pair.isEmpty())
        QCOMPARE(sign(pair, {path}).exitCode, 0);
    if (!damaged.isEmpty()) {
        QByteArray bytes = contents(package(damaged));
        bytes[4] = char(bytes[4] ^ 1);
        write(package(damaged), bytes);
    }
    const bool good = verdict.endsWith("is valid");
    const auto output = [&](const QString &tool) {
        const QString error = good ? "" : tool + ": error: verification failed\n";
        return path + ": " + verdict + '\n' + error;
    };

    QStringList words{"verify"};
    if (!root.isEmpty())
        words << "--root-cert" << key(root);
    const Run result = rpmsign(words << path);
    QCOMPARE(result.out, output("rpmsign-external"));
    QCOMPARE(result.exitCode, good ? 0 : 1);

    // The other tool judges by the same rules; it takes an empty root for the default one.
    const QString rootWord = root.isEmpty() ? root : key(root);
    const Run other =
        run(CUSTOMER_TARGET, {"nxvcert-cli", "verify", "--root-cert-file-path", rootWord, path});
    QCOMPARE(other.out, output("nxvcert-cli"));
    QCOMPARE(other.exitCode, good ? 0 : 1);
}

void EngineTest::failedSigningLeavesEverythingUnchanged_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("error");

    const auto add = [](const char *name,
                        const QString &words,
                        const QByteArray &input,
                        int exitCode,
                        const QString &error) {
        QTest::newRow(name) << words.split(' ') << input << exitCode << error;
    };
    const QString client = "-k keys/client_key.pem -c keys/client_cert.pem";
    const QString encrypted = "-k keys/encrypted_key.pem -c keys/encrypted_cert.pem";
    const QString good = " packages/a.rpm packages/b.rpm";
    const QString wrong = "wrong pass phrase for the key: keys/encrypted_key.pem";
    add("wrong pass phrase", encrypted + good, "wrong\n", 1, wrong);
    add("empty pass phrase", encrypted + good, "\n", 1, wrong);
    add("no answer",
        encrypted + good,
        "",
        1,
        "no pass phrase given for the key: keys/encrypted_key.pem");
    add("key of another certificate",
        "-k keys/foreign_key.pem -c keys/client_cert.pem" + good,
        "",
        1,
        "the key does not fit the certificate: keys/client_cert.pem");
    add("certificate as key",
        "-k keys/client_cert.pem -c keys/client_cert.pem" + good,
        "",
        1,
        "cannot read a private key from: keys/client_cert.pem");
    add("key as certificate",
        "-k keys/client_key.pem -c keys/client_key.pem" + good,
        "",
        1,
        "cannot read a certificate from: keys/client_key.pem");
    add("no such key", "-k none -c keys/client_cert.pem" + good, "", 1, "key not found: none");
    add("last package missing", client + good + " none.rpm", "", 1, "package not found: none.rpm");
    add("last file no package",
        client + good + " sealed.rpm",
        "",
        1,
        "not an RPM package: sealed.rpm");
    add("last signature cannot be written",
        client + good + " packages/blocked.rpm",
        "",
        1,
        "cannot write signatures beside the package: packages/blocked.rpm");
    add("no packages", client, "", 2, "no packages given");
    add("no certificate", "-k keys/client_key.pem" + good, "", 2, "no certificate given (-c)");
    add("option without value", "-k", "", 2, "-k needs a path");
}

void EngineTest::failedSigningLeavesEverythingUnchanged()
{
    QFETCH(QStringList, words);
    QFETCH(QByteArray, input);
    QFETCH(int, exitCode);
    QFETCH(QString, error);

    for (const QString name : {"a.rpm", "b.rpm", "blocked.rpm"})
        addPackage(name);
    QVERIFY(QDir(m_packages).mkdir("blocked.rpm.1.p7s.new"));
    write(m_sdk.workspace() + "/sealed.rpm", "no package at all");
    QCOMPARE(sign("client", {package("a.rpm")}).exitCode, 0);
    const Files before = packageFiles();

    const Run result = rpmsign(QStringList("sign") + words, input);
    QCOMPARE(result.exitCode, exitCode);
    const QString line = "rpmsign-external: error: " + error + '\n';
    QVERIFY2(result.out.contains(line), qPrintable(result.out));
    QCOMPARE(packageFiles(), before);
}

void EngineTest::passPhrasesArriveUnharmed_data()
{
    QTest::addColumn<QString>("passPhrase");

    QTest::newRow("blanks") << "  two  blanks ";
    QTest::newRow("shell characters") << R"(a"b'c`d$HOME&;|*?#!\n\\%s<>()~)";
    QTest::newRow("Cyrillic") << QString::fromUtf8("пароль для ключа");
    QTest::newRow("256 characters") << QString(256, 'p');
}

void EngineTest::passPhrasesArriveUnharmed()
{
    QFETCH(QString, passPhrase);
    const QByteArray answer = passPhrase.toUtf8() + '\n';
    const QStringList packages{addPackage("a.rpm"), addPackage("b.rpm")};

    QString out = openssl("genpkey --algorithm rsa -pkeyopt rsa_keygen_bits:2048 "
                          "-out packages/key.pem -aes256",
                          answer + answer);
    out += openssl("req -x509 -new -subj /CN=Own -key packages/key.pem -out packages/cert.pem",
                   answer);
    // One answer for two packages: the pass phrase is asked for once in a run.
    const Run signing =
        rpmsign(QStringList{"sign", "-k", "packages/key.pem", "-c", "packages/cert.pem"} + packages,
                answer);
    QCOMPARE(signing.exitCode, 0);
    QCOMPARE(rpmsign(QStringList{"verify", "--root-cert", "packages/cert.pem"} + packages).exitCode,
             0);
    QVERIFY(!(out + signing.out).contains(passPhrase));
}

void EngineTest::keysAndRequests_data()
{
    QTest::addColumn<QString>("generation");
    QTest::addColumn<bool>("encrypt");
    QTest::addColumn<QString>("requestAlgorithm");

    const QString rsa = "--algorithm rsa -pkeyopt rsa_keygen_bits:2048";
    const QString gost = "-engine gost -algorithm gost2012_256 -pkeyopt paramset:A";
    const QString gostName = "GOST R 34.10-2012 with GOST R 34.11-2012 (256 bit)";
    QTest::newRow("RSA") << rsa << false << "sha256WithRSAEncryption";
    QTest::newRow("RSA, encrypted") << rsa << true << "sha256WithRSAEncryption";
    QTest::newRow("GOST") << gost << false << gostName;
    QTest::newRow("GOST, encrypted") << gost << true << gostName;
}

void EngineTest::keysAndRequests()
{
    QFETCH(QString, generation);
    QFETCH(bool, encrypt);
    QFETCH(QString, requestAlgorithm);
    const QByteArray answer = encrypt ? "some phrase\n" : "";
    write(package("csr.conf"),
          "[ req ]\n distinguished_name = name\n prompt = no\n string_mask = utf8only\n"
          "[ name ]\n CN = Рога и копыта\n");

    openssl("genpkey " + generation + " -out packages/key.pem" + (encrypt ? " -aes256" : ""),
            answer + answer);
    QCOMPARE(contents(package("key.pem")).contains("ENCRYPTED"), encrypt);
    openssl("req -new -utf8 -batch -config packages/csr.conf -key packages/key.pem "
            "-out packages/request.pem",
            answer);
    const QString request = openssl("req -verify -in packages/request.pem -noout -text "
                                    "-nameopt RFC2253,-esc_msb");
    QVERIFY2(request.contains("Subject: CN=Рога и копыта\n"), qPrintable(request));
    QVERIFY2(request.contains("Signature Algorithm: " + requestAlgorithm), qPrintable(request));

    // A certificate for such a key signs packages, too.
    openssl("req -x509 -in packages/request.pem -key packages/key.pem -out packages/cert.pem",
            answer);
    const QString path = addPackage("a.rpm");
    QCOMPARE(rpmsign({"sign", "-k", "packages/key.pem", "-c", "packages/cert.pem", path}, answer)
                 .exitCode,
             0);
    QCOMPARE(rpmsign({"verify", "--root-cert", "packages/cert.pem", path}).exitCode, 0);
}

void EngineTest::customerSignAsksForTheBinariesKey_data()
{
    QTest::addColumn<QString>("binariesKey");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("error");

    QTest::newRow("key in the clear") << "client_key.pem" << QByteArray() << "";
    QTest::newRow("right answer") << "encrypted_key.pem" << QByteArray("demo\n") << "";
    QTest::newRow("wrong answer") << "encrypted_key.pem" << QByteArray("dem\n")
                                  << "wrong pass phrase for the key: ";
    QTest::newRow("no answer") << "encrypted_key.pem" << QByteArray()
                               << "no pass phrase given for the key: ";
    QTest::newRow("no key") << "client_cert.pem" << QByteArray()
                            << "cannot read a private key from: ";
}

void EngineTest::customerSignAsksForTheBinariesKey()
{
    QFETCH(QString, binariesKey);
    QFETCH(QByteArray, answer);
    QFETCH(QString, error);
    const QString path = addPackage("a.rpm");
    const Files before = packageFiles();
    const QString keys = m_sdk.path() + "/workspace/home/.kilnsdk/";

    const Run result = run(CUSTOMER_TARGET,
                           {"customer-sign",
                            "--binaries-key",
                            key(binariesKey),
                            "--packages-key",
                            keys + "packages-key.pem",
                            "--packages-cert",
                            keys + "packages-cert.pem",
                            "--packages-client-cert",
                            keys + "packages-client-cert.pem",
                            path},
                           answer);
    QString out;
    if (binariesKey == "encrypted_key.pem")
        out = "Enter passphrase for binaries key " + key(binariesKey) + ": \n";
    if (!error.isEmpty()) {
        QCOMPARE(result.out, out + "customer-sign: error: " + error + key(binariesKey) + '\n');
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(packageFiles(), before);
        return;
    }
    QCOMPARE(result.out, out + "Signed: " + path + '\n');
    const QString dump = run(CUSTOMER_TARGET, {"nxvcert-cli", "dump", path}).out;
    static const QRegularExpression groups("^Group: .*$", QRegularExpression::MultilineOption);
    QStringList found;
    for (auto it = groups.globalMatch(dump); it.hasNext();)
        found << it.next().captured();
    QCOMPARE(found, QStringList({"Group: developer", "Group: client"}));
    QCOMPARE(
        run(CUSTOMER_TARGET, {"nxvcert-cli", "verify", "--root-cert-file-path", "", path}).exitCode,
        0);
    QCOMPARE(run(CUSTOMER_TARGET, {"nxvcert-cli", "delete", path}).exitCode, 0);
    QCOMPARE(packageFiles(), before);
}

void EngineTest::dumpTellsSubjectAndUnits_data()
{
    QTest::addColumn<QString>("subject");
    QTest::addColumn<QString>("lines");

    QTest::newRow("Cyrillic, separators and backslash")
        << R"(/CN=Рога, и "копыта"\+x/OU=a\\b, c/OU=d\+e=f)"
        << R"(Subject: OU=d\+e=f,OU=a\\b\, c,CN=Рога\, и \"копыта\"\+x)"
           "\nGroup: a\\b, c\nSubgroup: d+e=f\n";
    QTest::newRow("no units") << "/CN=A"
                              << "Subject: CN=A\nGroup: none\nSubgroup: none\n";
    QTest::newRow("line break in a name")
        << "/OU=a\nSubject: b/CN=A"
        << "Subject: CN=A,OU=a\\0ASubject: b\nGroup: a\\0ASubject: b\nSubgroup: none\n";
}

void EngineTest::dumpTellsSubjectAndUnits()
{
    QFETCH(QString, subject);
    QFETCH(QString, lines);
    const QString certificate = package("cert.pem");
    const Run issue =
        run(RPMSIGN_TARGET,
            QString("openssl req -x509 -new -utf8 -key keys/client_key.pem").split(' ')
                + QStringList{"-subj", subject, "-out", certificate});
    QCOMPARE(issue.exitCode, 0);
    const QString path = addPackage("a.rpm");
    QCOMPARE(rpmsign({"sign", "-k", key("client_key.pem"), "-c", certificate, path}).exitCode, 0);
    const QString dump = rpmsign({"dump", path}).out;
    QCOMPARE(dump.left(dump.indexOf("Key ID")), lines);
    QVERIFY(dump.endsWith('\n' + path + '\n'));
}

void EngineTest::wordsAndExitCodes_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QString>("err");

    const QString target = RPMSIGN_TARGET;
    QTest::newRow("words stay whole")
        << target << QStringList{"probe", "a b", "", "$HOME 'x' \"y\" \\", "*", "й"} << 7
        << "<a b><><$HOME 'x' \"y\" \\><*><й>\n"
        << "";
    QTest::newRow("one word with blanks is a shell line")
        << target << QStringList{"probe 'a b' c || echo \"ended by $?\""} << 0
        << "<a b><c>\nended by 7\n"
        << "";
    QTest::newRow("shell line finds the target's tools only")
        << target << QStringList{"ls /"} << 127 << "/bin/sh: 1: ls: not found\n"
        << "";
    QTest::newRow("a program of this computer") << target << QStringList{"ls"} << 127 << ""
                                                << "brisk: ls: command not found\n";
    QTest::newRow("a path is no tool") << target << QStringList{"/bin/ls"} << 127 << ""
                                       << "brisk: /bin/ls: command not found\n";
    QTest::newRow("a tool of another target")
        << target << QStringList{"nxvcert-cli", "--help"} << 127 << ""
        << "brisk: nxvcert-cli: command not found\n";
    QTest::newRow("ended by a signal") << target << QStringList{"killed"} << 128 + SIGKILL << ""
                                       << "";
    QTest::newRow("unknown target") << "none" << QStringList{"probe"} << 1 << ""
                                    << "brisk: no such build target: none\n";
    QTest::newRow("a target outside the engine") << ".." << QStringList{"probe"} << 1 << ""
                                                 << "brisk: no such build target: ..\n";
    QTest::newRow("no command") << target << QStringList() << 2 << ""
                                << "usage: brisk engine start\n"
                                   "       brisk engine exec -tt sb2 -t TARGET COMMAND...\n";
}

void EngineTest::wordsAndExitCodes()
{
    QFETCH(QString, target);
    QFETCH(QStringList, words);
    QFETCH(int, exitCode);
    QFETCH(QString, out);
    QFETCH(QString, err);
    addTool("probe", "printf '<%s>' \"$@\"; echo; exit 7");
    addTool("killed", "kill -KILL $$");

    const Run result = run(target, words);
    QCOMPARE(result.out, out);
    QCOMPARE(result.err, err);
    QCOMPARE(result.exitCode, exitCode);
}

void EngineTest::engineThatCannotStart_data()
{
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QString>("fault");

    QTest::newRow("shared source folder") << "/workspace"
                                          << "the shared source folder is missing";
    QTest::newRow("targets") << "/engine/targets"
                             << "there are no build targets in";
}

void EngineTest::engineThatCannotStart()
{
    QFETCH(QString, missing);
    QFETCH(QString, fault);
    const Run started = runBrisk({"engine", "start"});
    QCOMPARE(started.exitCode, 0);
    QCOMPARE(started.out, "Veyra OS Build Engine is ready\n");

    const QString folder = m_sdk.path() + missing;
    QVERIFY(QDir().rename(folder, folder + ".away"));
    QProcess process;
    process.start(brisk(), {"engine", "start"});
    const bool finished = process.waitForFinished(RUN_TIMEOUT_MS);
    QVERIFY(QDir().rename(folder + ".away", folder));
    QVERIFY(finished);
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(process.readAllStandardError()),
             QStringLiteral("brisk: cannot start the build engine: %1%2%3\n")
                 .arg(fault, missing == "/workspace" ? ": " : " ", folder));
}

void EngineTest::answersNeverShow()
{
    // The answer is there long before the tool asks.
    addTool("asking", "sleep 0.3; printf 'Enter pass phrase: '; read -r a; echo; echo ${#a}");
    QProcess process;
    start(process, execWords(RPMSIGN_TARGET, {"asking"}));
    process.write("secret\n");
    QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));
    QCOMPARE(process.readAllStandardOutput(), "Enter pass phrase: \r\n6\r\n");
}

void EngineTest::endedInputStaysEnded()
{
    addTool("reading", "cat; stty -F /dev/tty -icanon icanon; cat; read -r line || echo end");
    QCOMPARE(run(RPMSIGN_TARGET, {"reading"}, "a\nb").out, "a\nbend\n");
}

void EngineTest::floodAndUnreadInput()
{
    addTool("flood", "yes 123456789 | head -n 200000; read -r line; echo \"$line\"");
    QByteArray input("first\n");
    for (int i = 0; i < 20'000; ++i)
        input += "never read\n";
    const Run result = run(RPMSIGN_TARGET, {"flood"}, input);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out.size(), 200'000 * 10 + 6);
    QVERIFY(result.out.endsWith("123456789\nfirst\n"));
}

void EngineTest::leftProcessesAreNotWaitedFor()
{
    addTool("leaving", "(trap '' HUP; sleep 60) & echo $!; exit 3");
    const QElapsedTimer timer = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    const Run result = run(RPMSIGN_TARGET, {"leaving"});
    QCOMPARE(result.exitCode, 3);
    QVERIFY(timer.elapsed() < 10'000);
    QTRY_VERIFY(!isAlive(result.out.toLongLong()));
}

void EngineTest::nothingOutlivesBrisk_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::addColumn<QByteArray>("tool");

    const QByteArray stubborn("trap '' HUP TERM INT; (while :; do sleep 60; done) & echo $$ $!\n"
                              "while :; do sleep 60; done");
    const QByteArray tidy("trap 'rm -f \"$TMPDIR/left\"; exit' HUP; : >\"$TMPDIR/left\"\n"
                          "sleep 60 & echo $$ $!; wait");
    QTest::newRow("brisk killed, stubborn tool") << SIGKILL << stubborn;
    QTest::newRow("brisk terminated, stubborn tool") << SIGTERM << stubborn;
    QTest::newRow("brisk killed, tool that cleans up") << SIGKILL << tidy;
    QTest::newRow("brisk interrupted, tool that cleans up") << SIGINT << tidy;
}

void EngineTest::nothingOutlivesBrisk()
{
    QFETCH(int, signalNumber);
    QFETCH(QByteArray, tool);
    addTool("staying", tool);
    QProcess process;
    start(process, execWords(RPMSIGN_TARGET, {"staying"}));
    QTRY_VERIFY(process.canReadLine() || !process.waitForReadyRead(100));
    const QList<QByteArray> pids = process.readLine().trimmed().split(' ');
    QCOMPARE(pids.size(), 2);
    const QByteArray children =
        contents(QStringLiteral("/proc/%1/task/%1/children").arg(process.processId()));

    QCOMPARE(kill(pid_t(process.processId()), signalNumber), 0);
    QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));
    if (signalNumber != SIGKILL)
        QCOMPARE(process.exitCode(), 128 + signalNumber);
    // The tool, what it started, and what brisk started to watch over them
    for (const QByteArray &pid : pids + children.trimmed().split(' '))
        QTRY_VERIFY2(!isAlive(pid.toLongLong()), pid.constData());
}

void EngineTest::demoSdkIsRefreshed()
{
    const QString certificate = m_sdk.path() + "/package-signing/regular_cert.pem";
    const QString tool =
        m_sdk.path() + "/engine/targets/" + RPMSIGN_TARGET + "/bin/rpmsign-external";
    const QByteArray toolBefore = contents(tool);
    const QByteArray keyBefore = contents(key("client_key.pem"));
    const QByteArray projectFile("changed by its owner");
    write(m_sdk.workspace() + "/hello-veyra/hello-veyra.c", projectFile);
    write(tool, "outdated");
    // As after an interrupted first run
    QVERIFY(QFile::remove(certificate));
    write(certificate + ".new", "half");

    QCOMPARE(QProcess::execute(MAKE_DEMO_SDK, {"--brisk", BRISK_EXECUTABLE, m_sdk.path()}), 0);
    QCOMPARE(contents(tool), toolBefore);
    QCOMPARE(contents(key("client_key.pem")), keyBefore);
    QCOMPARE(contents(m_sdk.workspace() + "/hello-veyra/hello-veyra.c"), projectFile);
    const QString path = addPackage("a.rpm");
    QCOMPARE(rpmsign({"sign",
                      "-k",
                      m_sdk.path() + "/package-signing/regular_key.pem",
                      "-c",
                      certificate,
                      path})
                 .exitCode,
             0);
    QCOMPARE(rpmsign({"verify", path}).exitCode, 0);
}

QTEST_GUILESS_MAIN(EngineTest)
#include "tst_engine.moc"
