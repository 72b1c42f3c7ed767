#include "customersignstep.h"
#include "dialogdriver.h"
#include "files.h"
#include "messages.h"
#include "promptanswers.h"
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
Q_DECLARE_METATYPE(Fault)

enum class Place { RpmsignStep, CustomerStep, Dialog, BackEnd };

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
    QString inWorkspace(const QString &path) const
    {
        return m_workplace.sdk().workspace() + '/' + path;
    }
    int runTool(const QStringList &words) const
    {
        return QProcess::execute(m_workplace.sdk().path() + "/bin/brisk",
                                 QStringList{"engine", "exec", "-tt", "sb2", "-t", m_target}
                                     + words);
    }

    void openProject(const QString &target);
    QStringList sign(Place place);
    QStringList takeTexts();

    void setBrisk(const QString &path) const { QSettings().setValue("Kiln.BriskPath", path); }
    void moveAway(const QString &path);
    void closeSdk();
    void inTool(const QString &tool, const QByteArray &command, const QByteArray &script);
    void inBrisk(const QByteArray &script);
    void endFaults();

    Workplace m_workplace;
    DeployStepFactory<CustomerSignStep> m_customerFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignFactory;
    Messages m_messages;
    QString m_target;
    Project *m_project = nullptr;
    QStringList m_packages;
    QString m_keys; // the pair's name in the workspace, up to "_key.pem" and "_cert.pem"
    std::unique_ptr<WrappedProgram> m_wrapped;
    QList<std::function<void()>> m_ends;
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

/// What the dialog shows, and what came to the General Messages since the last time.
QStringList FailuresTest::takeTexts()
{
    return (dialog ? texts() : QStringList()) + m_messages.take();
}

void FailuresTest::moveAway(const QString &path)
{
    QVERIFY(QFile::rename(path, path + ".away"));
    m_ends << [path] { QFile::rename(path + ".away", path); };
}

void FailuresTest::closeSdk()
{
    Brisk::closeInstallation();
    m_ends << [this] {
        QString error;
        QVERIFY(
            Brisk::openInstallation(Utils::FilePath::fromString(m_workplace.sdk().path()), &error));
    };
}

void FailuresTest::inTool(const QString &tool, const QByteArray &command, const QByteArray &script)
{
    m_wrapped =
        std::make_unique<WrappedProgram>(m_workplace.sdk().tool(tool, m_target), command, script);
}

/// In place of brisk, where it runs a tool.
void FailuresTest::inBrisk(const QByteArray &script)
{
    const QString brisk = m_workplace.sdk().path() + "/bin/brisk";
    m_wrapped = std::make_unique<WrappedProgram>(brisk, "engine exec", script);
}

void FailuresTest::endFaults()
{
    m_wrapped.reset();
    for (const auto &end : std::exchange(m_ends, {}))
        end();
}

/// Returns all that was said meanwhile.
QStringList FailuresTest::sign(Place place)
{
    QStringList output;
    if (place == Place::BackEnd) {
        RpmsignExternal tool(nullptr);
        SignData data;
        data.key = m_keys + "_key.pem";
        data.certificate = m_keys + "_cert.pem";
        output << (tool.addSignature(m_target, m_packages, data).succeeded() ? "back end OK"
                                                                             : "back end BROKEN");
    } else if (place == Place::Dialog) {
        enter("rpmPathChooser", m_packages.first());
        enter("developerKeyPathChooser", m_keys + "_key.pem");
        enter("developerCertificatePathChooser", m_keys + "_cert.pem");
        click("addSignaturePushButton");
    } else {
        BuildStepList *steps = deploySteps(m_project);
        steps->appendStep(place == Place::RpmsignStep ? RpmsignExternalStep::stepId()
                                                      : CustomerSignStep::stepId());
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
    addColumns<Place, QString, Fault>("place", "told", "fault");

    const std::pair<Place, const char *> places[] = {{Place::RpmsignStep, "rpmsign-external step"},
                                                     {Place::CustomerStep, "customer-sign step"},
                                                     {Place::Dialog, "dialog"},
                                                     {Place::BackEnd, "back end"}};
    for (const auto &[place, name] : places) {
        const auto row = [&](const char *ending, const QString &told, const Fault &fault) {
            QTest::addRow("%s, %s", name, ending) << place << told << fault;
        };
        const auto toolRow =
            [&](const char *ending, const QString &told, const QByteArray &script) {
                row(ending, told, [this, script] {
                    const bool isCustomers = m_target == CUSTOMER_TARGET;
                    inTool(isCustomers ? "customer-sign" : "rpmsign-external",
                           isCustomers ? "--binaries-key" : "sign",
                           script);
                });
            };
        row("not started", "cannot start \"/none\": .*No such file", [this] { setBrisk("/none"); });
        row("no SDK", "cannot start \"\": |the kit has no build engine", [this] { closeSdk(); });
        row("workspace gone", "No such file or directory|no package for sign found", [this] {
            moveAway(inWorkspace({}).chopped(1));
        });
        row("target gone", "no such build target|kit has no build target", [this] {
            moveAway(m_workplace.sdk().path() + "/engine/targets/" + m_target);
        });
        // brisk writes errors of its own to its error output
        const bool isStep = place == Place::RpmsignStep || place == Place::CustomerStep;
        row("tool missing", isStep ? "Stderr: brisk: " : "\\[E\\]\tbrisk: ", [this] {
            const bool isCustomers = m_target == CUSTOMER_TARGET;
            moveAway(m_workplace.sdk().tool(isCustomers ? "customer-sign" : "rpmsign-external",
                                            m_target));
        });
        toolRow("failed", "out of ink", "echo 'error: out of ink'; exit 3");
        toolRow("failed without a word", "its exit code was 1|\\[\\$\\] 1\t", "exit 1");
        toolRow("disk full", "cannot", DISK_FULL);
        toolRow("tool killed", "\\[\\$\\] 137\t", "kill -9 $$");
        row("brisk killed", "\\[\\$\\] 9\t", [this] {
            inBrisk("printf 'cut off in the mid'; kill -9 $$");
        });
        row("prompt declined", "\\[\\$\\] 9\t", [this] { m_keys = inWorkspace("keys/encrypted"); });
    }
}

void FailuresTest::signingIsNotCalledDone()
{
    QFETCH(Place, place);
    QFETCH(QString, told);
    QFETCH(Fault, fault);
    openProject(place == Place::CustomerStep ? CUSTOMER_TARGET : RPMSIGN_TARGET);
    if (place == Place::Dialog)
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
        QCOMPARE(readFile(package), "\xed\xab\xee\xdb" + QFileInfo(package).fileName().toUtf8());
        const QDir folder = QFileInfo(package).dir();
        QCOMPARE(folder.entryList({"*.p7s*"}, QDir::Files | QDir::Hidden), QStringList());
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
    QCOMPARE(runTool({"rpmsign-external",
                      "sign",
                      "-k",
                      m_keys + "_key.pem",
                      "-c",
                      m_keys + "_cert.pem",
                      m_packages.first()}),
             0);
    m_target = target;
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
    addColumns<QString, Fault>("told", "fault");

    const auto row = [](const char *name, const QString &told, const Fault &fault) {
        addRow(name, told, fault);
    };
    row("not started", "cannot start", [this] { setBrisk("/none"); });
    row("no engine for an old key", "No Build Engine found", [this] {
        writeFile(inWorkspace("own/key.pem"), "a key");
        closeSdk();
    });
    row("openssl killed", "\\[\\$\\] 137\t", [this] {
        inTool("openssl", "genpkey", "kill -9 $$");
    });
    row("openssl killed after the key", "\\[\\$\\] 137\t", [this] {
        inTool("openssl", "req", "kill -9 $$");
    });
    row("disk full after the key", "\nThe request is empty; is the disk full\\?\n", [this] {
        inTool("openssl", "req", DISK_FULL);
    });
}

void FailuresTest::requestIsNotCalledMade()
{
    QFETCH(QString, told);
    QFETCH(Fault, fault);
    openProject(RPMSIGN_TARGET);
    open(new SignDialog(nullptr));
    child<QLineEdit>("generateCompanyNameLineEdit")->setText("Company");
    child<QCheckBox>("generationKeyEncryptCheckBox")->setChecked(false);
    enter("generatedKeyPathChooser", inWorkspace("own/key.pem"));
    enter("generatedReqPathChooser", inWorkspace("own/request.pem"));
    QDir().mkpath(inWorkspace("own"));
    fault();
    click("genReqButton");

    QCOMPARE(icon("generateLabel"), "BROKEN");
    QVERIFY(status().startsWith("Failed to generate request: "));
    const QString texts = takeTexts().join('\n');
    QCOMPARE(texts.contains("![E]\tFiled to generate CSR"), told.startsWith("No Build Engine"));
    QVERIFY2(texts.contains(QRegularExpression(told)), qPrintable(texts));
    QVERIFY(!QFile::exists(inWorkspace("own/request.pem")));
}

void FailuresTest::toolsAreNotTrustedBlindly_data()
{
    addColumns<Place, QByteArray, QByteArray, QStringList>("place", "command", "script", "told");

    const QByteArray liar = "echo 'error: nothing signed'; exit 0";
    const QString note =
        "Stderr: Note: Packages %1 is not signed. Deployment to the device is not ";
    addRow("signs nothing, step",
           Place::RpmsignStep,
           QByteArray("sign"),
           liar,
           QStringList{note.arg("a.rpm"), note.arg("b c.rpm")});
    addRow("signs nothing, dialog",
           Place::Dialog,
           QByteArray("sign"),
           liar,
           QStringList{"Could not verify signatures",
                       "verifyIconLabel BROKEN",
                       "No signatures found in package"});
    addRow("cuts its dump off",
           Place::RpmsignStep,
           QByteArray("dump"),
           QByteArray("printf \"$2\\nGroup: cli\"; exit 0"),
           QStringList{note.arg("a.rpm"), "Stderr: Failed to verify signature dump"});
}

/// A tool that ends well, and has not done its work.
void FailuresTest::toolsAreNotTrustedBlindly()
{
    QFETCH(Place, place);
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, script);
    QFETCH(QStringList, told);
    openProject(RPMSIGN_TARGET);
    if (place == Place::Dialog)
        open(new SignDialog(nullptr));
    inTool("rpmsign-external", command, script);
    const QString texts = '\n' + sign(place).join('\n');
    for (const QString &text : told)
        QVERIFY2(texts.contains('\n' + text), qPrintable(texts));
    QVERIFY(!texts.contains("Signatures successfully verified"));
}

QTEST_MAIN(FailuresTest)
#include "tst_failures.moc"
