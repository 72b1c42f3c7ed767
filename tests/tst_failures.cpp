#include "customersignstep.h"
#include "dialogdriver.h"
#include "files.h"
#include "messages.h"
#include "promptanswers.h"
#include "rpmpackage.h"
#include "rpmsignexternalstep.h"
#include "signdialog.h"
#include "stepfactory.h"
#include "straywarnings.h"
#include "testrow.h"
#include "workplace.h"
#include "wrappedprogram.h"

#include <brisk/installation.h>
#include <projectexplorer/buildsteplist.h>

#include <QtWidgets>

#include <functional>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;

using Fault = std::function<void()>;

const QByteArray DISK_FULL = "trap '' XFSZ; ulimit -f 0";

/// Whatever ends a tool's run, nobody is told of a success that is none, and somebody is told what
/// it was; packages are as before or carry whole signatures. What makes a tool fail is the
/// engine's affair.
class FailuresTest : public QObject, private DialogDriver
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void cleanup();

    void signingIsNotCalledDone_data();
    void signingIsNotCalledDone();
    void packageIsNotCalledVerified_data();
    void packageIsNotCalledVerified();
    void requestIsNotCalledMade_data();
    void requestIsNotCalledMade();
    void toolsAreNotTrustedBlindly_data();
    void toolsAreNotTrustedBlindly();

private:
    QString inWorkspace(const QString &path) const { return m_sdk.workspace() + '/' + path; }
    void openProject(const QString &target);
    QStringList sign(const QString &place);
    /// What the dialog shows, and what came to the General Messages since the last time.
    QStringList takeTexts() { return (dialog ? texts() : QStringList()) + m_messages.take(); }

    void setBrisk(const QString &path) const { QSettings().setValue("Kiln.BriskPath", path); }
    void moveAway(const QString &path);
    void wrap(const QString &program, const QByteArray &words, const QByteArray &script)
    {
        m_wrapped = std::make_unique<WrappedProgram>(program, words, script);
    }
    void inBrisk(const QByteArray &script)
    {
        wrap(m_sdk.path() + "/bin/brisk", "engine exec", script);
    }
    QString signingTool() const
    {
        return m_sdk.tool(m_target == CUSTOMER_TARGET ? "customer-sign" : "rpmsign-external",
                          m_target);
    }
    void inSigning(const QByteArray &script)
    {
        wrap(signingTool(), m_target == CUSTOMER_TARGET ? "--binaries-key" : "sign", script);
    }
    void endFaults();

    Workplace m_workplace;
    const TemporarySdk &m_sdk = m_workplace.sdk();
    DeployStepFactory<CustomerSignStep> m_customerFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignFactory;
    Messages m_messages;
    QString m_target;
    Project *m_project = nullptr;
    QStringList m_packages;
    QString m_keys; // the pair's name in the workspace, up to "_key.pem" and "_cert.pem"
    std::unique_ptr<WrappedProgram> m_wrapped;
    QString m_moved;
};

void FailuresTest::cleanup()
{
    endFaults();
    delete dialog;
    m_workplace.closeProjects();
    QSettings().clear();
    QDir(inWorkspace("own")).removeRecursively();
}

void FailuresTest::openProject(const QString &target)
{
    m_target = target;
    m_project = m_workplace.openProject(target);
    m_packages = m_workplace.makePackages(m_project, {"a.rpm", "b c.rpm"});
    m_keys = inWorkspace("keys/client");
    QSettings().setValue("KilnRpmSign.History.TargetName", target);
}

void FailuresTest::moveAway(const QString &path)
{
    QVERIFY(QFile::rename(path, path + ".away"));
    m_moved = path;
}

void FailuresTest::endFaults()
{
    m_wrapped.reset();
    if (const QString path = std::exchange(m_moved, {}); !path.isEmpty())
        QFile::rename(path + ".away", path);
    QString error;
    QVERIFY(Brisk::openInstallation(Utils::FilePath::fromString(m_sdk.path()), &error));
}

/// Returns all that was said meanwhile.
QStringList FailuresTest::sign(const QString &place)
{
    QStringList output;
    if (place == "back end") {
        SignData data;
        data.key = m_keys + "_key.pem";
        data.certificate = m_keys + "_cert.pem";
        const auto result = RpmsignExternal(nullptr).addSignature(m_target, m_packages, data);
        output << (result.succeeded() ? "back end OK" : "back end BROKEN");
    } else if (place == "dialog") {
        enter("rpmPathChooser", m_packages.first());
        enter("developerKeyPathChooser", m_keys + "_key.pem");
        enter("developerCertificatePathChooser", m_keys + "_cert.pem");
        click("addSignaturePushButton");
    } else {
        BuildStepList *steps = deploySteps(m_project);
        steps->appendStep(place == "customer-sign step" ? CustomerSignStep::stepId()
                                                        : RpmsignExternalStep::stepId());
        steps->steps().last()->fromMap({{"Sealkit.UseDefaultValues", false},
                                        {"Sealkit.Key", m_keys + "_key.pem"},
                                        {"Sealkit.Cert", m_keys + "_cert.pem"},
                                        {"Sealkit.BinariesKey", m_keys + "_key.pem"},
                                        {"Sealkit.PackagesKey", m_keys + "_key.pem"},
                                        {"Sealkit.PackagesCert", m_keys + "_cert.pem"},
                                        {"Sealkit.PackagesClientCert", ""}});
        output = runStep(steps->steps().last());
    }
    return output + takeTexts();
}

void FailuresTest::signingIsNotCalledDone_data()
{
    addColumns<QString, QString, Fault>("place", "told", "fault");

    const QStringList places{"rpmsign-external step", "customer-sign step", "dialog", "back end"};
    for (const QString &place : places) {
        const auto row = [&](const char *ending, const QString &told, const Fault &fault) {
            QTest::addRow("%s, %s", qPrintable(place), ending) << place << told << fault;
        };
        row("not started", "cannot start \"/none\": .*No such file", [this] { setBrisk("/none"); });
        row("no SDK", "cannot start \"\": |the kit has no build engine", Brisk::closeInstallation);
        row("workspace gone", "No such file|no package", [this] { moveAway(m_sdk.workspace()); });
        const bool isStep = place.endsWith("step");
        row("target gone", isStep ? "kit has no build target" : "no such build target", [this] {
            moveAway(m_sdk.path() + "/engine/targets/" + m_target);
        });
        // brisk writes errors of its own to its error output
        const QString told = isStep ? "Stderr: brisk: " : "\\[E\\]\tbrisk: ";
        row("tool missing", told, [this] { moveAway(signingTool()); });
        row("failed", "out of ink", [this] { inSigning("echo 'error: out of ink'; exit 3"); });
        row("failed without a word", "code was 1|\\[\\$\\] 1\t", [this] { inSigning("exit 1"); });
        row("disk full", "cannot", [this] { inSigning(DISK_FULL); });
        row("tool killed", "\\[\\$\\] 137\t", [this] { inSigning("kill -9 $$"); });
        row("brisk killed", "\\[\\$\\] 9\t", [this] { inBrisk("printf 'cut off'; kill -9 $$"); });
        row("prompt declined", "\\[\\$\\] 9\t", [this] { m_keys = inWorkspace("keys/encrypted"); });
    }
}

void FailuresTest::signingIsNotCalledDone()
{
    QFETCH(QString, place);
    QFETCH(QString, told);
    QFETCH(Fault, fault);
    openProject(place == "customer-sign step" ? CUSTOMER_TARGET : RPMSIGN_TARGET);
    if (place == "dialog")
        open(new SignDialog(nullptr));
    takeTexts();
    fault();
    const PromptAnswers user({});
    const QString texts = sign(place).join('\n');
    endFaults();

    static const QRegularExpression success(
        "Package sign completed successfully\\.|Signatures successfully verified|Label OK|end OK");
    static const QRegularExpression failure(
        "ErrorMessage: Error: |signStateLabel BROKEN|back end BROKEN");
    QVERIFY2(!texts.contains(success), qPrintable(texts));
    QVERIFY2(texts.contains(failure), qPrintable(texts));
    QVERIFY2(texts.contains(QRegularExpression(told)), qPrintable(texts));
    for (const QString &package : std::as_const(m_packages)) {
        QCOMPARE(readFile(package), rpmPackage(QFileInfo(package).fileName().toUtf8()));
        const QDir folder = QFileInfo(package).dir();
        QCOMPARE(folder.entryList({"*.rpm?*", ".*"}, QDir::Files | QDir::Hidden), QStringList());
    }
}

void FailuresTest::packageIsNotCalledVerified_data()
{
    addColumns<QString, QString, Fault>("target", "told", "fault");

    for (const QString &target : {RPMSIGN_TARGET, CUSTOMER_TARGET}) {
        const auto row = [&](const char *ending, const QString &told, const Fault &fault) {
            QTest::addRow("%s, %s", ending, qPrintable(target)) << target << told << fault;
        };
        row("refused", "changed after it was signed", [this] {
            writeFile(m_packages.first(), readFile(m_packages.first()) + 'x');
        });
        row("not started", "cannot start", [this] { setBrisk("/none"); });
        row("killed", "\\[\\$\\] 9\t", [this] { inBrisk("kill -9 $$"); });
    }
}

void FailuresTest::packageIsNotCalledVerified()
{
    QFETCH(QString, target);
    QFETCH(QString, told);
    QFETCH(Fault, fault);
    openProject(RPMSIGN_TARGET);
    QVERIFY(sign("back end").contains("back end OK"));
    QSettings().setValue("KilnRpmSign.History.TargetName", target);
    open(new SignDialog(nullptr));
    enter("rpmPathChooser", m_packages.first());
    QCOMPARE(icon("verifyIconLabel"), "OK");

    takeTexts();
    fault();
    click("verifySignaturePushButton");
    QCOMPARE(text("verifyLabel"), "Could not verify signatures");
    QCOMPARE(icon("verifyIconLabel"), "BROKEN");
    const QString texts = takeTexts().join('\n');
    QVERIFY2(texts.contains(QRegularExpression(told)), qPrintable(texts));
}

void FailuresTest::requestIsNotCalledMade_data()
{
    addColumns<QByteArray, QByteArray, QString>("command", "script", "told");

    const QByteArray kill = "kill -9 $$";
    addRow("openssl killed", QByteArray("genpkey"), kill, "[$] 137\t");
    addRow("openssl killed after the key", QByteArray("req"), kill, "[$] 137\t");
    const char *empty = "\nThe request is empty; is the disk full?\n";
    addRow("disk full after the key", QByteArray("req"), DISK_FULL, empty);
}

void FailuresTest::requestIsNotCalledMade()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, script);
    QFETCH(QString, told);
    openProject(RPMSIGN_TARGET);
    open(new SignDialog(nullptr));
    child<QLineEdit>("generateCompanyNameLineEdit")->setText("Company");
    child<QCheckBox>("generationKeyEncryptCheckBox")->setChecked(false);
    enter("generatedKeyPathChooser", inWorkspace("own/key.pem"));
    enter("generatedReqPathChooser", inWorkspace("own/request.pem"));
    QDir().mkpath(inWorkspace("own"));
    wrap(m_sdk.tool("openssl"), command, script);
    click("genReqButton");

    QCOMPARE(icon("generateLabel"), "BROKEN");
    QVERIFY(status().startsWith("Failed to generate request: "));
    const QString texts = takeTexts().join('\n');
    QVERIFY2(texts.contains(told), qPrintable(texts));
    QVERIFY(!QFile::exists(inWorkspace("own/request.pem")));
}

void FailuresTest::toolsAreNotTrustedBlindly_data()
{
    addColumns<QString, QByteArray, QByteArray, QString>("place", "command", "script", "told");

    const QByteArray sign = "sign";
    const QByteArray liar = "echo 'error: nothing signed'; exit 0";
    const QByteArray cutOff = "printf \"$2\\nGroup: cli\"; exit 0";
    const QString note =
        "Stderr: Note: Packages %1 is not signed. Deployment to the device is not ";
    const QString notes = note.arg("a.rpm") + '|' + note.arg("b c.rpm");
    addRow("signs nothing, step", "rpmsign-external step", sign, liar, notes);
    const QString notFound = "verifyIconLabel BROKEN|No signatures found in package";
    addRow("signs nothing, dialog", "dialog", sign, liar, notFound);
    const QString noteAndError = note.arg("a.rpm") + "|Stderr: Failed to verify signature dump";
    addRow("cuts its dump off", "rpmsign-external step", QByteArray("dump"), cutOff, noteAndError);
}

/// A tool that ends well, and has not done its work.
void FailuresTest::toolsAreNotTrustedBlindly()
{
    QFETCH(QString, place);
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, script);
    QFETCH(QString, told);
    openProject(RPMSIGN_TARGET);
    if (place == "dialog")
        open(new SignDialog(nullptr));
    wrap(m_sdk.tool("rpmsign-external"), command, script);
    const QString texts = '\n' + sign(place).join('\n');
    for (const QString &text : told.split('|'))
        QVERIFY2(texts.contains('\n' + text), qPrintable(texts));
    QVERIFY(!texts.contains("Signatures successfully verified"));
}

QTEST_MAIN(FailuresTest)
#include "tst_failures.moc"
