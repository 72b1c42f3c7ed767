#include "messages.h"
#include "promptanswers.h"
#include "readingtool.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"
#include "workplace.h"

#include <QApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

using namespace Sealkit::Internal;

struct Chunks
{
    QByteArray out;
    QByteArray err;
};

/// What comes of a run: to the messages, to the user, and to the tool.
struct Outcome
{
    QStringList messages;
    QStringList prompts;
    QByteArray input;
    bool isKilled = false;

    friend bool operator==(const Outcome &, const Outcome &) = default;
    friend QDebug operator<<(QDebug debug, const Outcome &outcome)
    {
        return debug << outcome.messages << outcome.prompts << outcome.input << outcome.isKilled;
    }
};

class PromptsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }

    void recognisesThoseOfOpenssl_data();
    void recognisesThoseOfOpenssl();
    void readsOutputHoweverItIsCut();
};

/// Runs openssl on a terminal in the build target, and answers whatever it asks. Returns what it
/// asked for, behind "+" when that is taken for a pass-phrase prompt and behind "-" when not.
static QStringList promptsOf(const QStringList &words)
{
    QStringList prompts;
    QByteArray line;
    const auto handler = [&](const QByteArray &out, const QByteArray &, QByteArray &input) {
        line += out;
        line.remove(0, line.lastIndexOf('\n') + 1);
        if (line.endsWith(':') || line.endsWith(": ")) {
            const QString prompt = QString::fromUtf8(std::exchange(line, {}));
            prompts << (isPasswordReq(prompt) ? u'+' : u'-') + prompt;
            input = "demo\n";
        }
        return true;
    };
    const QStringList target = Command::compose<Command::brisk::engine::target>(RPMSIGN_TARGET);
    const Command::Result result = Command::exec(handler, target + QStringList("openssl") + words);
    if (!result.succeeded())
        QTest::qFail(result.stdOut, __FILE__, __LINE__);
    return prompts;
}

void PromptsTest::recognisesThoseOfOpenssl_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("prompts");

    const QString newKey = "+Enter PEM pass phrase:|+Verifying - Enter PEM pass phrase:";
    addRow("new RSA key", "genpkey -algorithm rsa -out new.pem -aes256", newKey);
    addRow("new GOST key",
           "genpkey -engine gost -algorithm gost2012_256 -pkeyopt paramset:A -out new.pem -aes256",
           newKey);
    addRow("request with a new key", "req -new -batch -subj /CN=x -keyout new.pem", newKey);

    const QString key = "+Enter pass phrase for keys/encrypted_key.pem:";
    addRow("key", "pkey -in keys/encrypted_key.pem -noout", key);
    addRow(
        "key with a foreign name", "pkey -in ключ.pem -noout", "+Enter pass phrase for ключ.pem:");
    addRow("request", "req -new -batch -subj /CN=x -key keys/encrypted_key.pem", key);
    addRow("signature",
           "cms -sign -in /dev/null -signer keys/encrypted_cert.pem -inkey keys/encrypted_key.pem",
           key);

    addRow("key that gets a pass phrase",
           "ec -in keys/client_key.pem -aes256",
           "+Enter pass phrase for PEM:|-Verifying - Enter pass phrase for PEM:");
    addRow("key that gets a password",
           "pkcs8 -topk8 -in keys/encrypted_key.pem",
           key + "|-Enter Encryption Password:|-Verifying - Enter Encryption Password:");
    addRow("container of a key",
           "pkcs12 -export -inkey keys/encrypted_key.pem -in keys/encrypted_cert.pem -out new.p12",
           key + "|-Enter Export Password:|-Verifying - Enter Export Password:");
    addRow("encrypted file",
           "enc -aes-256-cbc -pbkdf2 -in /dev/null",
           "-enter AES-256-CBC encryption password:|"
           "-Verifying - enter AES-256-CBC encryption password:");
    addRow("hash of a password", "passwd -6", "-Password: |-Verifying - Password: ");
}

void PromptsTest::recognisesThoseOfOpenssl()
{
    if (lacksGost())
        QSKIP("The targets' openssl knows no GOST.");
    QFETCH(const QString, words);
    QFETCH(const QString, prompts);

    static const Workplace workplace;
    const QString folder = workplace.workspace().toFSPathString();
    QFile::copy(folder + "/keys/encrypted_key.pem", folder + "/ключ.pem");
    QCOMPARE(promptsOf(words.split(' ')), prompts.split('|'));
}

static bool oneIn(int count, QRandomGenerator &random)
{
    return random.bounded(count) == 0;
}

static QByteArray randomOutput(QRandomGenerator &random)
{
    static const QByteArrayList usual{"\n",
                                      "\r\n",
                                      "\r",
                                      "\n\n",
                                      "signing a.rpm",
                                      "Я字🔏",
                                      QByteArray("\0", 1),
                                      "\xef\xbb\xbf",
                                      "\xff\xd0",
                                      "<b>%1</b>",
                                      " ",
                                      " Enter pass phrase:",
                                      "Verifying - Enter pass phrase:",
                                      "Enter passphrase:"};
    static const QByteArrayList prompts{"Enter passphrase for binaries key k.pem:",
                                        "Enter PEM pass phrase:",
                                        "Verifying - Enter PEM pass phrase: ",
                                        "Enter pass phrase for /w/ключ.pem:"};
    QByteArray output;
    for (int pieces = random.bounded(12); pieces > 0; --pieces) {
        if (oneIn(15, random))
            output += '\n' + prompts.at(random.bounded(int(prompts.size())));
        else
            output += usual.at(random.bounded(int(usual.size())));
    }
    return output;
}

/// Anything from nothing to all of the text.
static QByteArray takeChunk(QByteArray &text, QRandomGenerator &random)
{
    const int size = oneIn(4, random) ? int(text.size()) : random.bounded(int(text.size()) + 1);
    const QByteArray chunk = text.left(size);
    text.remove(0, size);
    return chunk;
}

static QList<Chunks> randomRun(QRandomGenerator &random)
{
    QByteArray out = randomOutput(random);
    QByteArray err = randomOutput(random);
    QList<Chunks> run;
    while (!out.isEmpty() || !err.isEmpty())
        run.append({takeChunk(out, random), takeChunk(err, random)});
    return run;
}

/// Null where the user declines.
static QStringList randomAnswers(QRandomGenerator &random)
{
    static const QStringList typed{"demo", " Я \"字\" 🔏\t", "-"};
    QStringList answers;
    for (int i = 0; i < 30; ++i)
        answers << (oneIn(8, random) ? QString() : typed.at(random.bounded(int(typed.size()))));
    return answers;
}

static Outcome expectedOutcome(const QList<Chunks> &run, QStringList answers)
{
    Outcome outcome;
    for (const Chunks &chunks : run) {
        QByteArray input;
        for (const bool isError : {false, true}) {
            const QStringList lines = plainLines(isError ? chunks.err : chunks.out);
            for (const QString &line : lines) {
                if (!isPlainPrompt(line)) {
                    outcome.messages << (isError ? "![E]\t" : "[I]\t") + line;
                    continue;
                }
                outcome.prompts << line;
                const QString answer = answers.takeFirst();
                outcome.isKilled = answer.isNull();
                if (outcome.isKilled)
                    return outcome;
                input += answer.toUtf8() + '\n';
            }
        }
        outcome.input += input;
    }
    return outcome;
}

static Outcome actualOutcome(const QList<Chunks> &run, const QStringList &answers)
{
    Outcome outcome;
    ReadingTool tool;
    Messages messages;
    const PromptAnswers user(answers, std::chrono::milliseconds(0));
    for (const Chunks &chunks : run) {
        QByteArray input;
        outcome.isKilled = !tool.handleIO(chunks.out, chunks.err, input);
        if (outcome.isKilled)
            break;
        outcome.input += input;
    }
    outcome.messages = messages.take();
    outcome.prompts = user.prompts();
    return outcome;
}

void PromptsTest::readsOutputHoweverItIsCut()
{
    int prompts = 0;
    for (quint32 seed = 0; seed < 10'000; ++seed) {
        QRandomGenerator random(seed);
        const QList<Chunks> run = randomRun(random);
        const QStringList answers = randomAnswers(random);
        const Outcome expected = expectedOutcome(run, answers);
        const Outcome actual = actualOutcome(run, answers);
        if (actual != expected) {
            qCritical() << "actual:  " << actual << "\nexpected:" << expected;
            QFAIL(qPrintable(QStringLiteral("seed %1").arg(seed)));
        }
        prompts += int(actual.prompts.size());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        qDeleteAll(QApplication::topLevelWidgets()); // declined dialogs stay
    }
    QVERIFY2(prompts > 1'000, qPrintable(QString::number(prompts)));
}

QTEST_MAIN(PromptsTest)
#include "tst_prompts.moc"
