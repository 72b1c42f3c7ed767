#include "files.h"
#include "processes.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <QtCore>
#include <QTest>

#include <csignal>

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
    void newSignatureIsLookedAt();
    void endedSigningLeavesWholeSignatures();

    void briskRunsATool_data();
    void briskRunsATool();
    void nothingOutlivesBrisk();
    void demoSdkIsRefreshed();

private:
    void start(QProcess &process,
               const QStringList &words,
               const QString &target = RPMSIGN_TARGET) const;
    /// What the tool prints, with "\n" at the line ends, and its exit code where that is not 0.
    QString run(const QStringList &words,
                const QByteArray &input = {},
                const QString &target = RPMSIGN_TARGET) const;
    QStringList signing(const QString &pair) const;
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
        writeFile(path(name), "\xed\xab\xee\xdb" + QByteArray(100'000, name[0]));
    writeFile(path("text"), "no package at all");
    QVERIFY(QFile::link(path("text"), path("-c.rpm.1.p7s.new")));
    QVERIFY(QDir(m_packages).mkdir("blocked.rpm.1.p7s.new"));
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

QStringList EngineTest::signing(const QString &pair) const
{
    return {
        "rpmsign-external", "sign", "-k", key(pair + "_key.pem"), "-c", key(pair + "_cert.pem")};
}

Files EngineTest::files(const QStringList &filters) const
{
    Files files;
    const QStringList names = QDir(m_packages).entryList(filters, QDir::Files);
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

/// A command that fails leaves all files as they were, and none but "damage" changes a package.
void EngineTest::toolsTalk()
{
    QFETCH(const QString, talk);
    addTool("copy", "cp \"$@\"");
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
    QVERIFY2(heard == talk, qPrintable(heard));
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
    QVERIFY(files({"*.p7s"}).isEmpty());
}

// On a disk that loses what is written, and tells nobody.
void EngineTest::newSignatureIsLookedAt()
{
    writeFile(path("disk.c"),
              "#include <sys/stat.h>\n#include <sys/syscall.h>\n#include <unistd.h>\n"
              "ssize_t write(int file, const void *bytes, size_t size) {\n"
              "    struct stat status;\n"
              "    return fstat(file, &status) == 0 && S_ISREG(status.st_mode)\n"
              "        ? (ssize_t)size : syscall(SYS_write, file, bytes, size); }\n");
    const QString library = path("disk.so");
    QCOMPARE(QProcess::execute("cc", {"-shared", "-fPIC", "-o", library, path("disk.c")}), 0);
    const QString tool = "LD_PRELOAD=" + library + " ASAN_OPTIONS=verify_asan_link_order=0 ";
    QCOMPARE(run({tool + signing("client").join(' ') + " a.rpm"}),
             "rpmsign-external: error: the new signature is not one of the package: a.rpm\n"
             "exit code 1\n");
    QVERIFY(files({"*.p7s"}).isEmpty());
}

void EngineTest::endedSigningLeavesWholeSignatures()
{
    QStringList packages;
    for (int i = 0; i < 20; ++i) {
        packages << QString::number(i) + ".rpm";
        QVERIFY(QFile::copy(path("a.rpm"), path(packages.last())));
    }
    for (int round = 0; round < 40; ++round) {
        const int signalNumber = round % 2 == 0 ? SIGKILL : SIGTERM;
        if (round == 39)
            QVERIFY(QFile::resize(path("19.rpm"), 1'000'000'000)); // takes a while to read
        QProcess process;
        process.setWorkingDirectory(m_packages);
        process.start(m_sdk.tool("rpmsign-external"), signing("client").mid(1) + packages);
        QVERIFY(process.waitForStarted());
        QTest::qSleep(QRandomGenerator::global()->bounded(20));
        QTRY_VERIFY(round < 39 || !files({"?.rpm.1.p7s.new"}).isEmpty());
        kill(pid_t(process.processId()), signalNumber);
        QVERIFY(process.waitForFinished(RUN_TIMEOUT_MS));

        QStringList isSigned = files({"*.p7s"}).keys().replaceInStrings(".1.p7s", "");
        if (!isSigned.isEmpty())
            QVERIFY(!run(QStringList{"rpmsign-external", "verify"} + isSigned).contains("NOT"));
        if (signalNumber == SIGTERM) {
            QVERIFY(isSigned.isEmpty() || (isSigned.size() == packages.size() && round < 39));
            QVERIFY(files({"?.rpm.1.p7s.new"}).isEmpty());
        }
        QVERIFY(run(QStringList{"rpmsign-external", "delete"} + packages).contains("removed"));
        QVERIFY(files({"?.rpm.1.p7s*"}).isEmpty());
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
    QTEST(run(words.mid(1), input, words.first()), "output");
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
