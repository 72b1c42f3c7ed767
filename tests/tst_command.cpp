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
    void succeedsOnlyWithoutACrash();
    void keepsBothStreamsWhole();
    void deliversLastWordsOfAProgramThatEndsWhileAnswered();
    void readsNothingWithoutAHandler();
    void killsWhenTheHandlerSaysSo();
    void readsOnAfterAHandlerThatWaited();
    void runsWithinARun();

    void cutsOutputIntoLines_data();
    void cutsOutputIntoLines();
    void answersPrompts();
    void stopsAtADeclinedPrompt();
    void survivesItsToolBeingDeletedWhileAsking();
    void survivesItsToolBeingDeletedByAReader();

    void killsWhenTheIdeCloses_data();
    void killsWhenTheIdeCloses();
    void startsNothingAfterTheIdeHasClosed();

private:
    SettingsScope m_settings;
};

void CommandTest::composes_data()
{
    addColumns<QStringList, QString>("commandLine", "words");

    const QString target = "T 1";
    const QString none;
    const QStringList files{"a.rpm", "b c.rpm"};
    const QString key = "k.pem";
    const QString cert = "c.pem";
    const QString root = "r.pem";
    const QString request = "q.csr";
    const QString config = "q.conf";
    const SignData all{.binariesKey = "b.pem",
                       .clientKey = "unused",
                       .clientCertificate = "cc.pem",
                       .certificate = cert,
                       .key = key,
                       .rootCertificate = "unused"};
    const auto row = [](const char *words, const QStringList &commandLine) {
        addRow(words, commandLine, "/b/brisk|engine|exec|-tt|sb2|-t|T 1|" + QString(words));
    };
    addRow("start",
           Command::compose<Command::brisk::engine::start>(),
           QString("/b/brisk|engine|start"));

    using Nxvcert = Target::nxvcert_cli;
    row("nxvcert-cli|delete|a.rpm|b c.rpm", Command::compose<Nxvcert::remove>(target, files));
    row("nxvcert-cli|dump|a.rpm|b c.rpm", Command::compose<Nxvcert::dump>(target, files));
    row("nxvcert-cli|--help", Command::compose<Nxvcert::help>(target));
    row("nxvcert-cli|verify|--root-cert-file-path|r.pem|a.rpm|b c.rpm",
        Command::compose<Nxvcert::verify>(target, root, files));
    row("nxvcert-cli|verify|--root-cert-file-path||a.rpm|b c.rpm",
        Command::compose<Nxvcert::verify>(target, none, files));

    using Openssl = Target::openssl;
    row("openssl version", Command::compose<Openssl::version>(target));
    row("openssl|genpkey|-engine|gost|-algorithm|gost2012_256|-pkeyopt|paramset:A|-out|k.pem",
        Command::compose<Openssl::generateKeyGost>(target, key, false));
    row("openssl|genpkey|-engine|gost|-algorithm|gost2012_256|-pkeyopt|paramset:A|-out|k.pem|-"
        "aes256",
        Command::compose<Openssl::generateKeyGost>(target, key, true));
    row("openssl|genpkey|--algorithm|rsa|-pkeyopt|rsa_keygen_bits:2048|-out|k.pem",
        Command::compose<Openssl::generateKeyRSA>(target, key, false));
    row("openssl|genpkey|--algorithm|rsa|-pkeyopt|rsa_keygen_bits:2048|-out|k.pem|-aes256",
        Command::compose<Openssl::generateKeyRSA>(target, key, true));
    row("openssl|req|-new|-utf8|-batch|-config|q.conf|-key|k.pem|-out|q.csr",
        Command::compose<Openssl::generateRequest>(target, key, request, config));

    using Rpmsign = Target::rpmsign_external;
    row("rpmsign-external|delete|a.rpm|b c.rpm", Command::compose<Rpmsign::remove>(target, files));
    row("rpmsign-external|dump", Command::compose<Rpmsign::dump>(target, QStringList()));
    row("rpmsign-external|--version", Command::compose<Rpmsign::version>(target));
    row("rpmsign-external|sign|-k|k.pem|-c|c.pem|a.rpm|b c.rpm",
        Command::compose<Rpmsign::sign>(target, key, cert, files));
    row("rpmsign-external|verify|--root-cert|r.pem|a.rpm|b c.rpm",
        Command::compose<Rpmsign::verify>(target, root, files));
    row("rpmsign-external|verify|a.rpm|b c.rpm",
        Command::compose<Rpmsign::verify>(target, none, files));

    using Customer = Target::customer_sign;
    row("customer-sign|--help", Command::compose<Customer::help>(target));
    row("customer-sign|--binaries-key|b.pem|--packages-key|k.pem|--packages-cert|c.pem|"
        "--packages-client-cert|cc.pem|a.rpm|b c.rpm",
        Command::compose<Customer::sign>(target, all, files));
    row("customer-sign|--binaries-key||--packages-key||--packages-cert||a.rpm|b c.rpm",
        Command::compose<Customer::sign>(target, SignData(), files));
}

void CommandTest::composes()
{
    QFETCH(const QStringList, commandLine);
    QFETCH(const QString, words);
    QCOMPARE(commandLine, words.split('|'));
}

void CommandTest::reportsHowARunEnds_data()
{
    addColumns<QStringList, bool, bool, int>("commandLine", "started", "crashed", "exitCode");

    addRow("success", QStringList{FAKE_TOOL, "exit:0"}, true, false, 0);
    addRow("failure", QStringList{FAKE_TOOL, "exit:3"}, true, false, 3);
    addRow("ended by a signal", QStringList{FAKE_TOOL, "signal:9"}, true, true, 9);
    addRow("no such program", QStringList{"/no/such tool", "x"}, false, false, 255);
    addRow("no program at all", QStringList(), false, false, 0); // so QProcess has it
}

void CommandTest::reportsHowARunEnds()
{
    QFETCH(const QStringList, commandLine);
    QFETCH(const bool, started);
    QFETCH(const int, exitCode);
    Messages messages;
    const Result result = ReadingTool().run(commandLine);
    QCOMPARE(result.started, started);
    QTEST(result.crashed, "crashed");
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(result.succeeded(), started && exitCode == 0);
    QStringList lines = messages.take();
    QCOMPARE(lines.takeLast(),
             QStringLiteral("[$] %1\t%2").arg(exitCode).arg(commandLine.join(' ')));
    const QString reason = "![E]\tError: cannot start \"" + commandLine.value(0) + "\": ";
    QVERIFY(started ? lines.isEmpty() : lines.size() == 1 && lines.first().startsWith(reason));
}

void CommandTest::succeedsOnlyWithoutACrash()
{
    QVERIFY(Result().succeeded());
    QVERIFY(!(Result{.crashed = true, .stdErr = {}, .stdOut = {}}).succeeded());
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

void CommandTest::cutsOutputIntoLines_data()
{
    // lines: prompts behind "?"
    addColumns<QByteArrayList, QStringList>("chunks", "lines");

    using Chunks = QByteArrayList;
    addRow("all line ends", Chunks{"a\nb\rc\r\nd"}, QStringList{"a", "b", "c", "d"});
    addRow("empty lines", Chunks{"\n\r\n\na\n\n"}, QStringList{"a"});
    addRow("nothing", Chunks{""}, QStringList());
    addRow("each chunk by itself", Chunks{"a", "b\n", "\nc"}, QStringList{"a", "b", "c"});
    addRow("other scripts", Chunks{"Я字🔏\n"}, QStringList{"Я字🔏"});
    addRow("no UTF-8", Chunks{"\xff\n"}, QStringList{"\ufffd"});
    addRow("markup", Chunks{"<b>%1</b> \\n"}, QStringList{"<b>%1</b> \\n"});
    for (const QByteArray prompt : {"Enter passphrase for binaries key k.pem: ",
                                    "Enter PEM pass phrase:",
                                    "Verifying - Enter PEM pass phrase:",
                                    "Enter pass phrase for /w/ключ.pem:"}) {
        const QString line = QString::fromUtf8(prompt);
        addRow(prompt, Chunks{"a\n" + prompt, "\nb"}, QStringList{"a", '?' + line, "b"});
    }
    addRow("twice in a chunk",
           Chunks{"Enter PEM pass phrase:\nEnter PEM pass phrase:"},
           QStringList{"?Enter PEM pass phrase:", "?Enter PEM pass phrase:"});
    for (const QByteArray line : {" Enter pass phrase:",
                                  "enter PEM pass phrase:",
                                  "a.rpm: Enter PEM pass phrase:",
                                  "Verifying - Enter pass phrase:",
                                  "Enter passphrase:",
                                  "Enter Export Password:"})
        addRow(line, Chunks{line + '\n'}, QStringList{line});
}

void CommandTest::cutsOutputIntoLines()
{
    QFETCH(const QByteArrayList, chunks);
    QFETCH(const QStringList, lines);
    for (const bool isError : {false, true}) {
        QStringList said;
        ReadingTool tool;
        const auto note = [&said](const QString &line) { said << line; };
        connect(&tool, isError ? &SignTool::addError : &SignTool::addOutput, this, note);
        const PromptAnswers user({"demo", "demo"}, std::chrono::milliseconds(0));
        QByteArray input;
        for (const QByteArray &chunk : chunks) {
            const qsizetype prompts = user.prompts().size();
            QVERIFY(tool.handleIO(isError ? "" : chunk, isError ? chunk : "", input));
            for (const QString &prompt : user.prompts().mid(prompts))
                said << '?' + prompt;
        }
        QCOMPARE(said.join('|'), lines.join('|'));
        QCOMPARE(input, QByteArray("demo\n").repeated(user.prompts().size()));
    }
}

void CommandTest::answersPrompts()
{
    const QString first = " p\"a's $&\\% Я ";
    const PromptAnswers user({first, "second"});
    Messages messages;
    const Result result = runFakeTool({"out:hello\\n",
                                       "prompt:Enter PEM pass phrase",
                                       "prompt:Verifying - Enter PEM pass phrase"});
    QVERIFY(result.succeeded());
    QStringList lines = messages.take();
    QVERIFY(lines.takeLast().startsWith("[$] 0\t"));
    QCOMPARE(lines, (QStringList{"[I]\thello", "[I]\tgot [" + first + "]", "[I]\tgot [second]"}));
}

void CommandTest::stopsAtADeclinedPrompt()
{
    const PromptAnswers user({"x"});
    const Result result = runFakeTool({"ignore-term",
                                       "prompt:Enter pass phrase for a",
                                       "prompt:Enter pass phrase for b",
                                       "exit:0"});
    QVERIFY(result.crashed && result.cancelled);
    QCOMPARE(user.prompts().size(), 2);
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

void CommandTest::killsWhenTheIdeCloses_data()
{
    QTest::addColumn<bool>("isRead");

    addRow("a program that is read", true);
    addRow("a silent one", false);
}

void CommandTest::killsWhenTheIdeCloses()
{
    if (ranInOwnProgram())
        return;
    QFETCH(bool, isRead);
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
    QVERIFY(
        Command::exec(isRead ? Command::Handler(handler) : nullptr, {FAKE_TOOL, "out:x", "hang"})
            .crashed);
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
