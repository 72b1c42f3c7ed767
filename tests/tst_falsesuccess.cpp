#include "customersignstep.h"
#include "faultyground.h"
#include "files.h"
#include "promptanswers.h"
#include "rpmsignexternalstep.h"
#include "signdialog.h"
#include "stepfactory.h"
#include "straywarnings.h"

#include <projectexplorer/buildsteplist.h>

#include <QDir>
#include <QSettings>
#include <QTest>

#include <csignal>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;

using Arrangement = std::function<void()>;
Q_DECLARE_METATYPE(Arrangement)

/// Who signs.
enum Place : char {
    RPMSIGN_STEP = 's',
    CUSTOMER_STEP = 'c',
    DIALOG = 'd',
    NEW_DIALOG = 'n', ///< opened when the fault is there already
    BACK_END = 'b',
};

/// Whatever keeps packages from being signed, nobody is told that they are, somebody is told what
/// it was, and the packages are as before or carry whole signatures.
class FalseSuccessTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void cleanup() { m_ground.closeProject(); }

    void failureIsTold_data();
    void failureIsTold();
    void toolsAreNotTrustedBlindly_data();
    void toolsAreNotTrustedBlindly();

private:
    void open(char place);
    QStringList sign(char place);
    template<class Step>
    Step *addStep() const
    {
        BuildStepList *steps = deploySteps(m_ground.project);
        steps->appendStep(Step::stepId());
        return qobject_cast<Step *>(steps->steps().last());
    }
    void checkPackages(const QMap<QString, QByteArray> &before) const;

    FaultyGround m_ground;
    DeployStepFactory<CustomerSignStep> m_customerFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignFactory;
    SignData m_data;
};

void FalseSuccessTest::open(char place)
{
    m_ground.openProject(place == CUSTOMER_STEP ? CUSTOMER_TARGET : RPMSIGN_TARGET);
    m_data = {};
    m_data.binariesKey = m_data.key = m_ground.inWorkspace("keys/client_key.pem");
    m_data.certificate = m_ground.inWorkspace("keys/client_cert.pem");
    if (place == DIALOG)
        m_ground.openDialog(new SignDialog(nullptr));
    m_ground.takeTexts();
}

/// Returns all that was said meanwhile.
QStringList FalseSuccessTest::sign(char place)
{
    QStringList output;
    if (place == RPMSIGN_STEP) {
        auto *step = addStep<RpmsignExternalStep>();
        step->setUseDefaultValues(false);
        step->setKey(m_data.key);
        step->setCertificate(m_data.certificate);
        output = runStep(step);
    } else if (place == CUSTOMER_STEP) {
        auto *step = addStep<CustomerSignStep>();
        step->setBinariesKey(m_data.binariesKey);
        step->setPackagesKey(m_data.key);
        step->setPackagesCert(m_data.certificate);
        step->setPackagesClientCert({});
        output = runStep(step);
    } else if (place == BACK_END) {
        RpmsignExternal tool(nullptr);
        const auto result = tool.addSignature(m_ground.target(), m_ground.packages, m_data);
        output << (result.succeeded() ? "back end OK" : "back end BROKEN");
    } else {
        if (place == NEW_DIALOG)
            m_ground.openDialog(new SignDialog(nullptr));
        m_ground.enter("rpmPathChooser", m_ground.packages.last());
        m_ground.enter("developerKeyPathChooser", m_data.key);
        m_ground.enter("developerCertificatePathChooser", m_data.certificate);
        m_ground.click("addSignaturePushButton");
    }
    return output + m_ground.takeTexts();
}

void FalseSuccessTest::failureIsTold_data()
{
    QTest::addColumn<char>("place");
    QTest::addColumn<QString>("told");
    QTest::addColumn<Arrangement>("arrange");
    QTest::addColumn<QStringList>("answers");

    const auto row = [](const QByteArray &places,
                        const QByteArray &name,
                        const QString &told,
                        const Arrangement &arrange,
                        const QStringList &answers = {}) {
        for (const char place : places)
            QTest::newRow(name + ", " + place) << place << told << arrange << answers;
    };
    FaultyGround &ground = m_ground;

    row("scdnb", "brisk missing", "cannot start \"/none\": .*No such file", [&] {
        ground.setBrisk("/none");
    });
    row("sd", "brisk not executable", "cannot start .*: .*Permission denied", [&] {
        ground.setBrisk(ground.makeFile("brisk"));
    });
    row("scdnb", "no SDK", "cannot start \"\": |the kit has no build engine", [&] {
        ground.closeSdk();
    });
    row("scb", "no file handles", "cannot start", [&] { ground.useUpFileHandles(); });
    row("sdn", "engine does not start", "\\[\\$\\] 1\t.* engine ", [&] {
        writeScript(ground.inWorkspace("own/brisk"), "exit 1");
        ground.setBrisk(ground.inWorkspace("own/brisk"));
    });
    row("scdb", "workspace gone", "No such file or directory|no package for sign found", [&] {
        ground.moveAway(ground.inWorkspace({}).chopped(1));
    });
    row("scdb", "target gone", "no such build target|kit has no build target", [&] {
        ground.moveAway(QFileInfo(ground.signTool()).path().chopped(4));
    });
    row("scd", "tool missing", "command not found", [&] { ground.moveAway(ground.signTool()); });
    row("n", "tool missing at first", "unable to find signing tools", [&] {
        ground.moveAway(ground.signTool());
    });

    const auto pair = [&](const QString &key, const QString &certificate) {
        return [this, key, certificate] {
            m_data.key = m_ground.inWorkspace("keys/" + key);
            m_data.certificate = m_ground.inWorkspace("keys/" + certificate);
        };
    };
    const QString noKey = "cannot read a private key";
    row("scd", "no key", "key not found", pair("none", "client_cert.pem"));
    row("s", "key is a folder", "key not found", pair("", "client_cert.pem"));
    row("s", "key is a dangling link", "key not found", [&] {
        m_data.key = ground.inWorkspace("own/link");
        QVERIFY(QFile::link("nowhere", m_data.key));
    });
    row("scd", "empty key", noKey, [&] { m_data.key = ground.makeFile("k"); });
    row("c", "empty binaries key", noKey, [&] { m_data.binariesKey = ground.makeFile("k"); });
    row("scd", "empty certificate", "cannot read a certificate", [&] {
        m_data.certificate = ground.makeFile("c");
    });
    row("s", "no certificate", "certificate not found", pair("client_key.pem", "none"));
    row("sd", "key and certificate swapped", noKey, pair("client_cert.pem", "client_key.pem"));
    const QString misfit = "does not fit the certificate";
    row("scd", "key of another certificate", misfit, pair("foreign_key.pem", "client_cert.pem"));
    const auto expired = pair("expired_key.pem", "expired_cert.pem");
    row("scd", "expired certificate", "certificate has expired", expired);
    row("b", "client's key of another certificate", misfit, [&] {
        m_data.clientKey = ground.inWorkspace("keys/foreign_key.pem");
        m_data.clientCertificate = m_data.certificate;
    });

    const auto encrypted = pair("encrypted_key.pem", "encrypted_cert.pem");
    const QStringList wrong{"wrong", "again", "wrong"};
    row("scd", "wrong pass phrase three times", "error: wrong pass phrase for", encrypted, wrong);
    const QString killed = "\\[\\$\\] 9\t";
    row("scd", "prompt cancelled", killed, encrypted);
    row("sd", "empty answer", killed, encrypted, {""});

    row("db", "package vanished", "package not found", [&] { QFile::remove(ground.packages[1]); });
    const QString noPackage = "not an RPM package";
    row("scd", "text", noPackage, [&] { writeFile(ground.packages[1], "text"); });
    row("s", "empty package", noPackage, [&] { writeFile(ground.packages[1], {}); });
    row("scd", "signature's name taken", "cannot write signatures beside", [&] {
        QVERIFY(QDir().mkdir(ground.packages[1] + ".1.p7s"));
    });
    row("b", "too many packages", "Argument list too long", [&] {
        ground.packages = QStringList(100'000, ground.packages.first());
    });
    row("scd", "disk full", "cannot", [&] { ground.inSignTool("trap '' XFSZ; ulimit -f 0"); });
    row("s", "disk full soon", "cannot", [&] { ground.inSignTool("trap '' XFSZ; ulimit -f 1"); });

    row("sc", "wordless", "Error: package sign failed", [&] { ground.inSignTool("exit 1"); });
    for (const int number : {SIGINT, SIGTERM, SIGKILL, SIGSEGV, SIGABRT, SIGPIPE, SIGHUP}) {
        const QByteArray code = QByteArray::number(number);
        const QByteArray script = "printf 'cut off in the mid'; kill -" + code + " $$";
        const auto ended = [](int exitCode) { return QStringLiteral("\\] %1\t").arg(exitCode); };
        row(number == SIGKILL ? "scd" : "s",
            "tool, signal " + code,
            ended(128 + number),
            [=, this] { m_ground.inSignTool(script); });
        row(number == SIGKILL ? "scdb" : "s", "brisk, signal " + code, ended(number), [=, this] {
            m_ground.inBrisk(script);
        });
    }
    row("sd", "brisk under its tool", killed, [&] {
        ground.inSignTool("kill -KILL $PPID; sleep 60");
    });
}

void FalseSuccessTest::failureIsTold()
{
    QFETCH(char, place);
    QFETCH(QString, told);
    QFETCH(Arrangement, arrange);
    QFETCH(QStringList, answers);
    open(place);
    auto before = m_ground.projectFiles();
    arrange();
    if (!m_ground.hasFaults()) // so it can be in the packages
        before = m_ground.projectFiles();

    const PromptAnswers user(answers);
    const QString texts = sign(place).join('\n');
    m_ground.endFaults();
    static const QRegularExpression success(
        "Package sign completed successfully\\.|Signatures successfully verified|Label OK|end OK");
    static const QRegularExpression failure(
        "ErrorMessage: Error: |verifyIconLabel BROKEN|back end BROKEN");
    QVERIFY2(!texts.contains(success), qPrintable(texts));
    QVERIFY2(texts.contains(failure), qPrintable(texts));
    QVERIFY2(texts.contains(QRegularExpression(told)), qPrintable(texts));
    checkPackages(before);
}

void FalseSuccessTest::checkPackages(const QMap<QString, QByteArray> &before) const
{
    auto after = m_ground.projectFiles();
    const QStringList files = after.keys();
    for (const QString &package : files.filter(QRegularExpression("\\.rpm$"))) {
        const QString signature = package + ".1.p7s";
        if (before.contains(signature) || !after.remove(signature))
            continue;
        QCOMPARE(m_ground.runTool({"rpmsign-external", "verify", package}), 0);
    }
    QCOMPARE(after, before);
}

void FalseSuccessTest::toolsAreNotTrustedBlindly_data()
{
    QTest::addColumn<char>("place");
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QStringList>("told");

    const QByteArray liar = "echo 'error: nothing signed'; exit 0";
    const QString note =
        "Stderr: Note: Packages %1 is not signed. Deployment to the device is not ";
    QTest::newRow("signs nothing, step") << char(RPMSIGN_STEP) << QByteArray("sign") << liar
                                         << QStringList{note.arg("a.rpm"), note.arg("b c.rpm")};
    QTest::newRow("signs nothing, dialog") << char(DIALOG) << QByteArray("sign") << liar
                                           << QStringList{"Could not verify signatures",
                                                          "verifyIconLabel BROKEN",
                                                          "No signatures found in package"};
    QTest::newRow("cuts its dump off")
        << char(RPMSIGN_STEP) << QByteArray("dump")
        << QByteArray("printf \"$2\\nGroup: cli\"; exit 0")
        << QStringList{note.arg("a.rpm"), "Stderr: Failed to verify signature dump"};
}

/// A tool that ends well, and has not done its work.
void FalseSuccessTest::toolsAreNotTrustedBlindly()
{
    QFETCH(char, place);
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, script);
    QFETCH(QStringList, told);
    open(place);
    m_ground.inTool("rpmsign-external", command, script);
    const QString texts = '\n' + sign(place).join('\n');
    for (const QString &text : told)
        QVERIFY2(texts.contains('\n' + text), qPrintable(texts));
    QVERIFY(!texts.contains("Signatures successfully verified"));
}

QTEST_MAIN(FalseSuccessTest)
#include "tst_falsesuccess.moc"
