#include "command.h"
#include "messages.h"
#include "ownprogram.h"
#include "promptanswers.h"
#include "readingtool.h"
#include "sealkitplugin.h"
#include "settingsscope.h"
#include "signdata.h"
#include "straywarnings.h"
#include "testrow.h"

#include <coreplugin/icore.h>

#include <QSettings>
#include <QTest>

#include <csignal>

using namespace Sealkit::Internal;
using Command::Result;
using Target = Command::brisk::engine::target;

static Result runFakeTool(const QStringList &actions)
{
    return ReadingTool().run(QStringList{FAKE_TOOL} + actions);
}

class CommandTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QSettings().setValue("Kiln.BriskPath", "/b/brisk"); }
    void init() { failOnStrayWarnings(); }

    void composes_data();
    void composes();

    void reportsHowARunEnds_data();
    void reportsHowARunEnds();
    void reportsAProgramThatCannotStart_data();
    void reportsAProgramThatCannotStart();
    void keepsBothStreamsWhole();
    void deliversLastWordsOfAProgramThatEndsWhileAnswered();
    void readsNothingWithoutAHandler();
    void killsWhenTheHandlerSaysSo();
    void readsOnAfterAHandlerThatWaited();
    void runsWithinARun();

    void answersPrompts();
    void stopsAtADeclinedPrompt_data();
    void stopsAtADeclinedPrompt();
    void survivesItsToolBeingDeletedWhileAsking();
    void survivesItsToolBeingDeletedByAReader();

    void killsWhenTheIdeCloses();
    void startsNothingAfterTheIdeHasClosed();

private:
    SettingsScope m_settings;
};

void CommandTest::composes_data()
{
    QTest::addColumn<QStringList>("commandLine");
    QTest::addColumn<QString>("words");

    const QString target = QStringLiteral("T 1");
    const QString none;
    const QStringList files{QStringLiteral("a.rpm"), QStringLiteral("b c.rpm")};
    SignData data;
    SignData dataWithClient;
    dataWithClient.binariesKey = QStringLiteral("b.pem");
    dataWithClient.key = QStringLiteral("k.pem");
    dataWithClient.certificate = QStringLiteral("c.pem");
    dataWithClient.clientCertificate = QStringLiteral("cc.pem");
    dataWithClient.clientKey = QStringLiteral("unused");
    dataWithClient.rootCertificate = QStringLiteral("unused");

    const auto key = QStringLiteral("k.pem");
    const auto certificate = QStringLiteral("c.pem");
    const auto root = QStringLiteral("r.pem");
    const auto request = QStringLiteral("q.csr");
    const auto config = QStringLiteral("q.conf");

    QTest::newRow("start") << Command::compose<Command::brisk::engine::start>()
                           << "/b/brisk|engine|start";

    const auto row = [](const char *name, const QStringList &commandLine, const QString &words) {
        QTest::newRow(name) << commandLine
                            << QStringLiteral("/b/brisk|engine|exec|-tt|sb2|-t|T 1|") + words;
    };
    using Nxvcert = Target::nxvcert_cli;
    row("nxvcert remove",
        Command::compose<Nxvcert::remove>(target, files),
        "nxvcert-cli|delete|a.rpm|b c.rpm");
    row("nxvcert dump",
        Command::compose<Nxvcert::dump>(target, files),
        "nxvcert-cli|dump|a.rpm|b c.rpm");
    row("nxvcert help", Command::compose<Nxvcert::help>(target), "nxvcert-cli|--help");
    row("nxvcert verify",
        Command::compose<Nxvcert::verify>(target, root, files),
        "nxvcert-cli|verify|--root-cert-file-path|r.pem|a.rpm|b c.rpm");
    row("nxvcert verify, default root",
        Command::compose<Nxvcert::verify>(target, none, files),
        "nxvcert-cli|verify|--root-cert-file-path||a.rpm|b c.rpm");

    using Openssl = Target::openssl;
    row("openssl version", Command::compose<Openssl::version>(target), "openssl version");
    row("GOST key",
        Command::compose<Openssl::generateKeyGost>(target, key, false),
        "openssl|genpkey|-engine|gost|-algorithm|gost2012_256|-pkeyopt|paramset:A|-out|k.pem");
    row("GOST key, encrypted",
        Command::compose<Openssl::generateKeyGost>(target, key, true),
        "openssl|genpkey|-engine|gost|-algorithm|gost2012_256|-pkeyopt|paramset:A|-out|k.pem|"
        "-aes256");
    row("RSA key",
        Command::compose<Openssl::generateKeyRSA>(target, key, false),
        "openssl|genpkey|--algorithm|rsa|-pkeyopt|rsa_keygen_bits:2048|-out|k.pem");
    row("RSA key, encrypted",
        Command::compose<Openssl::generateKeyRSA>(target, key, true),
        "openssl|genpkey|--algorithm|rsa|-pkeyopt|rsa_keygen_bits:2048|-out|k.pem|-aes256");
    row("request",
        Command::compose<Openssl::generateRequest>(target, key, request, config),
        "openssl|req|-new|-utf8|-batch|-config|q.conf|-key|k.pem|-out|q.csr");

    using Rpmsign = Target::rpmsign_external;
    row("rpmsign remove",
        Command::compose<Rpmsign::remove>(target, files),
        "rpmsign-external|delete|a.rpm|b c.rpm");
    row("rpmsign dump",
        Command::compose<Rpmsign::dump>(target, QStringList()),
        "rpmsign-external|dump");
    row("rpmsign version",
        Command::compose<Rpmsign::version>(target),
        "rpmsign-external|--version");
    row("rpmsign sign",
        Command::compose<Rpmsign::sign>(target, key, certificate, files),
        "rpmsign-external|sign|-k|k.pem|-c|c.pem|a.rpm|b c.rpm");
    row("rpmsign verify",
        Command::compose<Rpmsign::verify>(target, root, files),
        "rpmsign-external|verify|--root-cert|r.pem|a.rpm|b c.rpm");
    row("rpmsign verify, default root",
        Command::compose<Rpmsign::verify>(target, none, files),
        "rpmsign-external|verify|a.rpm|b c.rpm");

    using Customer = Target::customer_sign;
    row("customer help", Command::compose<Customer::help>(target), "customer-sign|--help");
    row("customer sign",
        Command::compose<Customer::sign>(target, dataWithClient, files),
        "customer-sign|--binaries-key|b.pem|--packages-key|k.pem|--packages-cert|c.pem|"
        "--packages-client-cert|cc.pem|a.rpm|b c.rpm");
    row("customer sign, nothing given",
        Command::compose<Customer::sign>(target, data, files),
        "customer-sign|--binaries-key||--packages-key||--packages-cert||a.rpm|b c.rpm");
}

void CommandTest::composes()
{
    QFETCH(const QStringList, commandLine);
    QFETCH(const QString, words);
    QCOMPARE(commandLine, words.split('|'));
}

void CommandTest::reportsHowARunEnds_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<bool>("crashed");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("success") << "exit:0" << false << 0;
    QTest::newRow("failure") << "exit:3" << false << 3;
    QTest::newRow("ended by a signal") << "signal:9" << true << 9;
}

void CommandTest::reportsHowARunEnds()
{
    QFETCH(const QString, action);
    QFETCH(const bool, crashed);
    QFETCH(const int, exitCode);

    Messages messages;
    const Result result = runFakeTool({action});
    QCOMPARE(result.crashed, crashed);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(messages.take(),
             QStringList{QStringLiteral("[$] %1\t%2 %3").arg(exitCode).arg(FAKE_TOOL, action)});
}

void CommandTest::reportsAProgramThatCannotStart_data()
{
    QTest::addColumn<QStringList>("commandLine");

    addRow("no such program", QStringList{"/no/such tool", "x"});
    addRow("no program at all", QStringList()); // QProcess says that it ended with 0
}

void CommandTest::reportsAProgramThatCannotStart()
{
    QFETCH(const QStringList, commandLine);
    Messages messages;
    bool called = false;
    const auto handler = [&called](const QByteArray &, const QByteArray &, QByteArray &) {
        return called = true;
    };
    const Result result = Command::exec(handler, commandLine);
    QVERIFY(!result.succeeded());
    QVERIFY(!called);
    const QStringList lines = messages.take();
    QCOMPARE(lines.size(), 2);
    QVERIFY(
        lines.first().startsWith("![E]\tError: cannot start \"" + commandLine.value(0) + "\": "));
    QCOMPARE(lines.last(),
             QStringLiteral("[$] %1\t%2").arg(result.exitCode).arg(commandLine.join(' ')));
}

void CommandTest::keepsBothStreamsWhole()
{
    const Result result = runFakeTool({"lines:20000", "err:no end", "out:x"});
    QVERIFY(result.succeeded());
    QCOMPARE(result.stdOut.size(), 20000 * 80 + 1);
    QCOMPARE(result.stdErr, QByteArray("no end"));
}

void CommandTest::deliversLastWordsOfAProgramThatEndsWhileAnswered()
{
    // The answer is larger than a pipe, so writing it lasts until the program has gone.
    QByteArray received;
    bool answered = false;
    const auto handler = [&](const QByteArray &out, const QByteArray &err, QByteArray &input) {
        received += out + err;
        if (!answered)
            input = QByteArray(1 << 20, 'y');
        answered = true;
        return true;
    };
    const Result result = Command::exec(
        handler, {FAKE_TOOL, "out:first", "sleep:200", "out:last", "err:words", "exit:4"});
    QCOMPARE(result.exitCode, 4);
    QCOMPARE(received, QByteArray("firstlastwords"));
    QCOMPARE(result.stdOut, QByteArray("firstlast"));
    QCOMPARE(result.stdErr, QByteArray("words"));
}

void CommandTest::readsNothingWithoutAHandler()
{
    const Result result = Command::exec({}, {FAKE_TOOL, "lines:5000", "exit:2"});
    QCOMPARE(result, (Result{false, 2, {}, {}}));
}

void CommandTest::killsWhenTheHandlerSaysSo()
{
    // While it makes up its mind, the program goes on.
    int calls = 0;
    const auto handler = [&calls](const QByteArray &out, const QByteArray &, QByteArray &) {
        if (out.isEmpty())
            return true;
        ++calls;
        QTest::qWait(200);
        return false;
    };
    const Result result =
        Command::exec(handler, {FAKE_TOOL, "ignore-term", "out:x", "sleep:50", "out:y", "hang"});
    QVERIFY(result.crashed);
    QCOMPARE(result.exitCode, SIGKILL);
    QCOMPARE(result.stdOut, QByteArray("xy"));
    QCOMPARE(calls, 1);
}

void CommandTest::readsOnAfterAHandlerThatWaited()
{
    // All output is there while the handler waits, and no event tells of it afterwards.
    QByteArray received;
    const auto handler = [&received](const QByteArray &out, const QByteArray &, QByteArray &input) {
        received += out;
        if (out.contains("first"))
            QTest::qWait(300);
        if (out.contains("second"))
            input = "answer\n";
        return true;
    };
    QTimer watchdog;
    watchdog.callOnTimeout([] { QFAIL("The program waits for an answer that never comes"); });
    watchdog.start(5000);
    Command::exec(handler, {FAKE_TOOL, "out:first", "sleep:100", "prompt:second"});
    QCOMPARE(received, QByteArray("firstsecond: \ngot [answer]\n"));
}

void CommandTest::runsWithinARun()
{
    Result inner;
    QTimer::singleShot(20, [&inner] { inner = runFakeTool({"out:inner", "exit:5"}); });
    const Result outer = runFakeTool({"out:outer", "sleep:150", "out:!", "exit:6"});
    QCOMPARE(inner, (Result{false, 5, {}, "inner"}));
    QCOMPARE(outer, (Result{false, 6, {}, "outer!"}));
}

void CommandTest::answersPrompts()
{
    const QString first = QStringLiteral(" p\"a's $&\\% Я ");
    PromptAnswers user({first, QStringLiteral("second")});
    Messages messages;
    const Result result = runFakeTool({"out:hello\\n",
                                       "prompt:Enter PEM pass phrase",
                                       "prompt:Verifying - Enter PEM pass phrase"});
    QVERIFY(result.succeeded());
    QCOMPARE(user.prompts(),
             (QStringList{"Enter PEM pass phrase: ", "Verifying - Enter PEM pass phrase: "}));

    QStringList lines = messages.take();
    QVERIFY(lines.takeLast().startsWith("[$] 0\t"));
    QCOMPARE(lines, (QStringList{"[I]\thello", "[I]\tgot [" + first + "]", "[I]\tgot [second]"}));
}

void CommandTest::stopsAtADeclinedPrompt_data()
{
    QTest::addColumn<QStringList>("answers");
    QTest::addColumn<int>("prompts");

    QTest::newRow("first") << QStringList() << 1;
    QTest::newRow("second") << QStringList{"x"} << 2;
}

void CommandTest::stopsAtADeclinedPrompt()
{
    QFETCH(const QStringList, answers);

    PromptAnswers user(answers);
    const Result result = runFakeTool({"ignore-term",
                                       "prompt:Enter pass phrase for a",
                                       "prompt:Enter pass phrase for b",
                                       "hang"});
    QVERIFY(result.crashed);
    QTEST(int(user.prompts().size()), "prompts");
}

void CommandTest::survivesItsToolBeingDeletedWhileAsking()
{
    auto *tool = new ReadingTool;
    const PromptAnswers user({"answer"});
    QTimer::singleShot(0, [tool] { delete tool; });
    QByteArray input;
    QVERIFY(!tool->handleIO("Enter pass phrase\nand there is more\n", {}, input));
    QCOMPARE(user.prompts().size(), 1);
}

void CommandTest::survivesItsToolBeingDeletedByAReader()
{
    for (const auto signal : {&SignTool::addOutput, &SignTool::addError}) {
        auto tool = std::make_unique<ReadingTool>();
        QStringList lines;
        connect(tool.get(), signal, this, [&tool, &lines](const QString &line) {
            lines << line;
            tool.reset();
        });
        const bool isError = signal == &SignTool::addError;
        const QString text = QString(isError ? "err:" : "out:") + "first\\nsecond\\n";
        QVERIFY(tool->run({FAKE_TOOL, text, "hang"}).crashed);
        QCOMPARE(lines, QStringList{"first"});
    }
}

void CommandTest::killsWhenTheIdeCloses()
{
    if (ranInOwnProgram())
        return;
    // What it printed before may be a prompt; there is nobody left to answer it.
    QTimer::singleShot(0, [] {
        QTest::qSleep(200);
        emit Core::ICore::instance()->coreAboutToClose();
    });
    QByteArray received;
    const auto handler = [&received](const QByteArray &out, const QByteArray &, QByteArray &) {
        received += out;
        return true;
    };
    QVERIFY(Command::exec(handler, {FAKE_TOOL, "out:x", "hang"}).crashed);
    QCOMPARE(received, QByteArray());

    Messages messages;
    const Result later = Command::exec({}, {FAKE_TOOL, "hang"});
    QVERIFY(later.crashed);
    QVERIFY(later.exitCode != 0);
    QCOMPARE(messages.take(), QStringList());
}

void CommandTest::startsNothingAfterTheIdeHasClosed()
{
    if (ranInOwnProgram())
        return;
    SealkitPlugin plugin;
    QString error;
    QVERIFY(plugin.initialize({}, &error));
    emit Core::ICore::instance()->coreAboutToClose();
    QVERIFY(!Command::exec({}, {FAKE_TOOL}).started);
}

QTEST_MAIN(CommandTest)
#include "tst_command.moc"
