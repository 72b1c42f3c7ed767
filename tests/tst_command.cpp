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
using Command::compose;
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
    void readsAllForAHandlerOnly();
    void deliversLastWordsOfAProgramThatEndsWhileAnswered();
    void killsWhenTheHandlerSaysSo();
    void readsOnAfterAHandlerThatWaited();
    void runsWithinARun();

    void cutsOutputIntoLines_data();
    void cutsOutputIntoLines();
    void answersPrompts();
    void stopsAtADeclinedPrompt();
    void survivesItsToolBeingDeleted();

    void killsWhatIsNotWantedAnyMore_data();
    void killsWhatIsNotWantedAnyMore();
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
    const QString certificate = "c.pem";
    const SignData all{"b.pem", "unused", "cc.pem", certificate, key, "unused"};
    const auto row = [](const char *words, const QStringList &commandLine) {
        addRow(words, commandLine, "/b/brisk|engine|exec|-tt|sb2|-t|T 1|" + QString(words));
    };
    addRow("start", compose<Command::brisk::engine::start>(), QString("/b/brisk|engine|start"));

    using Nxvcert = Target::nxvcert_cli;
    row("nxvcert-cli|delete|a.rpm|b c.rpm", compose<Nxvcert::remove>(target, files));
    row("nxvcert-cli|--help", compose<Nxvcert::help>(target));
    row("nxvcert-cli|verify|--root-cert-file-path||a.rpm|b c.rpm",
        compose<Nxvcert::verify>(target, none, files));

    using Openssl = Target::openssl;
    row("openssl version", compose<Openssl::version>(target));
    row("openssl|genpkey|-engine|gost|-algorithm|gost2012_256|-pkeyopt|paramset:A|-out|k.pem|-"
        "aes256",
        compose<Openssl::generateKeyGost>(target, key, true));
    row("openssl|genpkey|--algorithm|rsa|-pkeyopt|rsa_keygen_bits:2048|-out|k.pem",
        compose<Openssl::generateKeyRSA>(target, key, false));
    row("openssl|req|-new|-utf8|-batch|-config|q.conf|-key|k.pem|-out|q.csr",
        compose<Openssl::generateRequest>(target, key, QString("q.csr"), QString("q.conf")));

    using Rpmsign = Target::rpmsign_external;
    row("rpmsign-external|--version", compose<Rpmsign::version>(target));
    row("rpmsign-external|sign|-k|k.pem|-c|c.pem|a.rpm|b c.rpm",
        compose<Rpmsign::sign>(target, key, certificate, files));
    row("rpmsign-external|verify|a.rpm|b c.rpm", compose<Rpmsign::verify>(target, none, files));

    using Customer = Target::customer_sign;
    row("customer-sign|--help", compose<Customer::help>(target));
    row("customer-sign|--binaries-key|b.pem|--packages-key|k.pem|--packages-cert|c.pem|"
        "--packages-client-cert|cc.pem|a.rpm|b c.rpm",
        compose<Customer::sign>(target, all, files));
    row("customer-sign|--binaries-key||--packages-key||--packages-cert||a.rpm|b c.rpm",
        compose<Customer::sign>(target, SignData(), files));
}

void CommandTest::composes()
{
    QFETCH(const QStringList, commandLine);
    QFETCH(const QString, words);
    QCOMPARE(commandLine, words.split('|'));
}

void CommandTest::reportsHowARunEnds_data()
{
    addColumns<QStringList, Result>("commandLine", "expected");

    addRow("failure", QStringList{FAKE_TOOL, "exit:3"}, Result{false, 3, {}, {}});
    addRow("ended by a signal", QStringList{FAKE_TOOL, "signal:9"}, Result{true, 9, {}, {}});
    addRow("no such program", QStringList{"/no/such tool", "x"}, Result{false, 255, {}, {}, false});
    // So QProcess has it.
    addRow("no program at all", QStringList(), Result{false, 0, {}, {}, false});
}

void CommandTest::reportsHowARunEnds()
{
    QFETCH(const QStringList, commandLine);
    QFETCH(const Result, expected);
    Messages messages;
    QCOMPARE(ReadingTool().run(commandLine), expected);
    QVERIFY(!expected.succeeded());
    QVERIFY(!(Result{true, 0, {}, {}}).succeeded()); // a crash, whatever the exit code
    QStringList lines = messages.take();
    QCOMPARE(lines.takeLast(),
             QStringLiteral("[$] %1\t%2").arg(expected.exitCode).arg(commandLine.join(' ')));
    const QString reason = "![E]\tError: cannot start \"" + commandLine.value(0) + "\": ";
    QCOMPARE(lines.filter(reason).size(), expected.started ? 0 : 1);
}

void CommandTest::readsAllForAHandlerOnly()
{
    const QStringList actions{FAKE_TOOL, "lines:20000", "err:no end", "out:x"};
    const Result result = ReadingTool().run(actions);
    QCOMPARE(result.stdOut.size(), 20000 * 80 + 1);
    QCOMPARE(result.stdErr, QByteArray("no end"));
    QCOMPARE(Command::exec({}, actions), Result());
}

void CommandTest::deliversLastWordsOfAProgramThatEndsWhileAnswered()
{
    // The answer is larger than a pipe, so writing it lasts until the program has gone.
    QByteArray received;
    const auto handler = [&](const QByteArray &out, const QByteArray &err, QByteArray &input) {
        input = received.isEmpty() ? QByteArray(1 << 20, 'y') : QByteArray();
        received += out + err;
        return true;
    };
    const Result result = Command::exec(
        handler, {FAKE_TOOL, "out:first", "sleep:0.2", "out:last", "err:words", "exit:4"});
    QCOMPARE(result.exitCode, 4);
    QCOMPARE(received, QByteArray("firstlastwords"));
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
        Command::exec(handler, {FAKE_TOOL, "ignore-term", "out:x", "sleep:0.05", "out:y", "hang"});
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
    Command::exec(handler, {FAKE_TOOL, "out:first", "sleep:0.1", "prompt:second"});
    QCOMPARE(received, QByteArray("firstsecond: \ngot [answer]\n"));
}

void CommandTest::runsWithinARun()
{
    Result inner;
    QTimer::singleShot(20, [&inner] { inner = runFakeTool({"out:inner", "exit:5"}); });
    const Result outer = runFakeTool({"out:outer", "sleep:0.15", "out:!", "exit:6"});
    QCOMPARE(inner, (Result{false, 5, {}, "inner"}));
    QCOMPARE(outer, (Result{false, 6, {}, "outer!"}));
}

void CommandTest::cutsOutputIntoLines_data()
{
    // Chunks and lines are parted by "|"; a prompt stands behind "?".
    addColumns<QString, QString>("chunks", "lines");

    addRow("all line ends", "a\nb\rc\r\nd\n\n", "a|b|c|d");
    addRow("each chunk by itself", "a|b\n|\nc", "a|b|c");
    addRow("prompts in chunks of their own",
           "a\nEnter passphrase for binaries key k.pem: |\nEnter pass phrase for ключ.pem:|\nb",
           "a|?Enter passphrase for binaries key k.pem: |?Enter pass phrase for ключ.pem:|b");
    addRow("prompts in one chunk",
           "Enter PEM pass phrase:\nVerifying - Enter PEM pass phrase:",
           "?Enter PEM pass phrase:|?Verifying - Enter PEM pass phrase:");
    for (const char *line : {" Enter pass phrase:",
                             "enter PEM pass phrase:",
                             "a.rpm: Enter PEM pass phrase:",
                             "Verifying - Enter pass phrase:",
                             "Enter passphrase:"})
        addRow(line, line, line);
}

void CommandTest::cutsOutputIntoLines()
{
    QFETCH(const QString, chunks);
    for (const bool isError : {false, true}) {
        QStringList said;
        ReadingTool tool;
        const auto note = [&said](const QString &line) { said << line; };
        connect(&tool, isError ? &SignTool::addError : &SignTool::addOutput, this, note);
        const PromptAnswers user({"demo", "demo"}, std::chrono::milliseconds(0));
        QByteArray input;
        for (const QByteArray &chunk : chunks.toUtf8().split('|')) {
            const qsizetype prompts = user.prompts().size();
            QVERIFY(tool.handleIO(isError ? "" : chunk, isError ? chunk : "", input));
            for (const QString &prompt : user.prompts().mid(prompts))
                said << '?' + prompt;
        }
        QTEST(said.join('|'), "lines");
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
    QVERIFY(result.crashed);
    QCOMPARE(result.cancelled, Command::PromptDeclined);
    QCOMPARE(user.prompts().size(), 2);
}

void CommandTest::survivesItsToolBeingDeleted()
{
    auto *asking = new ReadingTool;
    const PromptAnswers user({"answer"});
    QTimer::singleShot(0, [asking] { delete asking; });
    QByteArray input;
    QVERIFY(!asking->handleIO("Enter pass phrase\nand there is more\n", {}, input));
    QCOMPARE(user.prompts().size(), 1);

    auto telling = std::make_unique<ReadingTool>();
    QStringList lines;
    connect(telling.get(), &SignTool::addError, this, [&](const QString &line) {
        lines << line;
        telling.reset();
    });
    const Result result = telling->run({FAKE_TOOL, "err:first\\nsecond\\n", "sleep:5"});
    QVERIFY(result.crashed);
    QCOMPARE(result.cancelled, Command::ToolObjectGone);
    QCOMPARE(lines, QStringList{"first"});

    auto *waiting = new ReadingTool;
    QTimer::singleShot(100, [waiting] { delete waiting; });
    QCOMPARE(waiting->run({FAKE_TOOL, "out:a", "sleep:0.4", "out:b\\n", "hang"}).cancelled,
             Command::ToolObjectGone);
}

void CommandTest::killsWhatIsNotWantedAnyMore_data()
{
    addColumns<Command::Cancellation, bool>("why", "isRead");

    addRow("the IDE closes, a program that is read", Command::IdeClosing, true);
    addRow("the IDE closes, a silent one", Command::IdeClosing, false);
    addRow("a stop, a program that is read", Command::StoppedByUser, true);
    addRow("a stop, a silent one", Command::StoppedByUser, false);
}

void CommandTest::killsWhatIsNotWantedAnyMore()
{
    if (ranInOwnProgram())
        return;
    QFETCH(Command::Cancellation, why);
    QFETCH(bool, isRead);
    // What it printed before may be a prompt; there is nobody left to answer it.
    std::stop_source stop;
    QTimer::singleShot(0, [&] {
        QTest::qSleep(200);
        if (why == Command::IdeClosing)
            emit Core::ICore::instance()->coreAboutToClose();
        else
            stop.request_stop();
    });
    QByteArray received;
    const auto handler = [&received](const QByteArray &out, const QByteArray &, QByteArray &) {
        received += out;
        return true;
    };
    const QStringList program{FAKE_TOOL, "out:x", "hang"};
    const Result result =
        Command::exec(isRead ? Command::Handler(handler) : nullptr, program, stop.get_token());
    QVERIFY(result.crashed);
    QCOMPARE(result.cancelled, why);
    QCOMPARE(received, QByteArray());
    if (why == Command::StoppedByUser)
        QCOMPARE(Command::exec({}, program, stop.get_token()), Result::notRun(why));
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
