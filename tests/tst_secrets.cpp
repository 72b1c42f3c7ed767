#include "customersealkit.h"
#include "customersignstep.h"
#include "dialogdriver.h"
#include "files.h"
#include "messages.h"
#include "promptanswers.h"
#include "rpmpackage.h"
#include "rpmsignexternal.h"
#include "rpmsignexternalstep.h"
#include "signdata.h"
#include "signdialog.h"
#include "stepfactory.h"
#include "straywarnings.h"
#include "testrow.h"
#include "workplace.h"

#include <host/buildmanager.h>
#include <host/userproject.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/project.h>

#include <QSignalSpy>
#include <QTest>
#include <QtWidgets>

#include <atomic>
#include <thread>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;

// Part of every secret: where the mark is not, the secret is not.
constexpr char MARK[] = "Wq7zMark";
const QString SECRET = QStringLiteral(" p\"a's $HOME & \\n %s Wq7zMark Пароль ");

/// Also in UTF-16.
static bool hasMark(QByteArray bytes)
{
    bytes.removeIf([](char byte) { return byte == '\0'; });
    return bytes.contains(MARK);
}

/// The files with the mark below \a folder.
static QStringList filesWithMark(const QString &folder, qint64 maximumSize)
{
    QStringList paths;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        if (files.fileInfo().size() <= maximumSize && hasMark(readFile(file)))
            paths << file;
    }
    return paths;
}

/// Becomes the folder for all temporary files, of this program and of the programs that it starts.
struct TemporaryFolder : QTemporaryDir
{
    TemporaryFolder() { qputenv("TMPDIR", path().toUtf8()); }
};

/// Looks, over and over again, at what others could see while tools run: the arguments and the
/// environments of processes, and their temporary files.
class Onlooker
{
public:
    explicit Onlooker(const QString &folder)
        : m_folder(folder)
        , m_foreign(pids())
        , m_thread([this](const std::stop_token &end) {
            while (!end.stop_requested())
                look();
        })
    {
    }

    /// The arguments and environments of what ran, and which files had the mark.
    QByteArrayList stop()
    {
        m_thread.request_stop();
        m_thread.join();
        return m_seen.values();
    }

private:
    static QSet<QString> pids()
    {
        const QStringList names = QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs);
        return {names.begin(), names.end()};
    }

    void look()
    {
        for (int i = 0; i < 20; ++i) { // processes can be short
            for (const QString &pid : pids() - m_foreign) {
                const QByteArray words = readFile("/proc/" + pid + "/cmdline").replace('\0', ' ');
                // A tool hides its environment even from its own user, once it has keys.
                const QByteArray environment = readFile("/proc/" + pid + "/environ");
                if ((words + environment).contains(m_folder.toUtf8())) // not somebody else's
                    m_seen << words + environment;
            }
        }
        for (const QString &file : filesWithMark(m_folder, 100'000))
            m_seen << MARK + (" is in " + file.toUtf8());
    }

    const QString m_folder;
    const QSet<QString> m_foreign;
    QSet<QByteArray> m_seen;
    std::jthread m_thread; // the last one: it uses the others
};

static std::atomic<int> s_marksInLog;

static void readLog(QtMsgType, const QMessageLogContext &, const QString &message)
{
    s_marksInLog += message.contains(MARK);
}

/// Whether any text of any widget, shown or not, has the mark.
static bool isMarkInWidgets()
{
    for (const QWidget *widget : QApplication::allWidgets()) {
        for (int i = 0; i < widget->metaObject()->propertyCount(); ++i) {
            if (widget->metaObject()->property(i).read(widget).toString().contains(MARK))
                return true;
        }
    }
    return false;
}

class SecretsTest : public QObject, private DialogDriver
{
    Q_OBJECT

private slots:
    void init() { failOnStrayWarnings(); }
    void cleanup() { m_workplace.closeProjects(); }

    void leavesNoTraceOfPassPhrases_data();
    void leavesNoTraceOfPassPhrases();
    void passPhrasesArriveAsTyped_data();
    void passPhrasesArriveAsTyped();

private:
    QString inWorkspace(const QString &name) const { return m_sdk.workspace() + '/' + name; }
    void makeKeyPair(const QString &passPhrase) const;
    // These return whether they succeeded.
    bool deploy(const QString &target);
    bool signInDialog();
    bool requestInDialog();

    TemporaryFolder m_folder; // the first one: all others use it
    Workplace m_workplace;
    const TemporarySdk &m_sdk = m_workplace.sdk();
    DeployStepFactory<CustomerSignStep> m_customerFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignFactory;
};

/// Makes key.pem, encrypted, and cert.pem in the workspace.
void SecretsTest::makeKeyPair(const QString &passPhrase) const
{
    QProcess openssl;
    openssl.setWorkingDirectory(m_sdk.workspace());
    openssl.startCommand("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 "
                         "-subj /CN=x -passout stdin -keyout key.pem -out cert.pem");
    openssl.write(passPhrase.toUtf8() + '\n');
    openssl.closeWriteChannel();
    QVERIFY(openssl.waitForFinished() && openssl.exitCode() == 0);
}

bool SecretsTest::deploy(const QString &target)
{
    Project *project = m_workplace.openProject(target);
    const QString package = m_workplace.makePackages(project, {"a.rpm"}).first();
    BuildStepList *steps = deploySteps(project);
    steps->at(0)->setStepEnabled(false); // the package is there already
    steps->appendStep(target == RPMSIGN_TARGET ? RpmsignExternalStep::stepId()
                                               : CustomerSignStep::stepId());
    steps->at(1)->fromMap({{"Sealkit.UseDefaultValues", false},
                           {"Sealkit.Key", inWorkspace("key.pem")},
                           {"Sealkit.Cert", inWorkspace("cert.pem")},
                           {"Sealkit.BinariesKey", inWorkspace("key.pem")},
                           {"Sealkit.PackagesKey", inWorkspace("key.pem")},
                           {"Sealkit.PackagesCert", inWorkspace("cert.pem")},
                           {"Sealkit.PackagesClientCert", ""}});
    BuildManager::buildList(steps);
    QString error;
    [&] { QTRY_VERIFY_WITH_TIMEOUT(!BuildManager::isBuilding(), RUN_TIMEOUT); }();
    [&] { QVERIFY(static_cast<Host::UserProject *>(project)->saveSettings(&error)); }();
    return isSigned(package);
}

bool SecretsTest::signInDialog()
{
    const QString package = inWorkspace("dialog.rpm");
    writePackage(package);
    open(new SignDialog(nullptr));
    enter("developerKeyPathChooser", inWorkspace("key.pem"));
    enter("developerCertificatePathChooser", inWorkspace("cert.pem"));
    enter("rpmPathChooser", package);
    click("addSignaturePushButton");
    return isSigned(package);
}

bool SecretsTest::requestInDialog()
{
    const QString request = inWorkspace("request.pem");
    QFile::remove(inWorkspace("new_key.pem"));
    open(new SignDialog(nullptr));
    enter("generatedKeyPathChooser", inWorkspace("new_key.pem"));
    enter("generatedReqPathChooser", request);
    child<QLineEdit>("generateCompanyNameLineEdit")->setText("Company");
    child<QComboBox>("generationKeyAlgoComboBox")->setCurrentIndex(RSA);
    click("genReqButton");
    return QFile::exists(request);
}

void SecretsTest::leavesNoTraceOfPassPhrases_data()
{
    addColumns<QString, int, QString>("operation", "prompts", "tool");

    addRow("rpmsign-external step", RPMSIGN_TARGET, 1, "/rpmsign-external sign ");
    addRow("customer-sign step", CUSTOMER_TARGET, 2, "/customer-sign --binaries-key ");
    addRow("dialog signs", "sign", 1, "/rpmsign-external sign ");
    addRow("dialog makes a key", "request", 3, "openssl genpkey ");
}

void SecretsTest::leavesNoTraceOfPassPhrases()
{
    QFETCH(QString, operation);
    QFETCH(int, prompts);
    QFETCH(QString, tool);
    makeKeyPair(SECRET);
    const QStringList right(prompts, SECRET);
    const QStringList wrong = right.mid(1) << SECRET + '!';
    const QStringList halfTyped = right.mid(1) << QString(SECRET).replace(" Пароль ", ESCAPE);

    s_marksInLog = 0;
    QLoggingCategory::setFilterRules("*=true");
    const auto endLog = qScopeGuard([previous = qInstallMessageHandler(readLog)] {
        qInstallMessageHandler(previous);
        QLoggingCategory::setFilterRules({});
    });
    Messages messages;
    const QSignalSpy output(BuildManager::instance(), &BuildManager::outputAdded);
    Onlooker onlooker(m_folder.path());
    for (const QStringList &answers : {halfTyped, wrong, right}) {
        const PromptAnswers user(answers);
        const bool isDone = operation == "sign"      ? signInDialog()
                            : operation == "request" ? requestInDialog()
                                                     : deploy(operation);
        QVERIFY(user.prompts().size() >= prompts);
        QCOMPARE(isDone, answers == right);
        QVERIFY(!isMarkInWidgets());
        delete dialog;
    }
    const QByteArrayList seen = onlooker.stop();

    QVERIFY(seen.join('\n').contains(tool.toUtf8()));
    for (const QByteArray &thing : seen)
        QVERIFY2(!hasMark(thing), thing.constData());
    QSettings().sync();
    QCOMPARE(filesWithMark(m_folder.path(), INT_MAX), QStringList());
    const QString written = messages.take().join('\n');
    QVERIFY(written.contains("[$] 0") && !written.contains(MARK));
    for (const QVariantList &text : output)
        QVERIFY(!text.first().toString().contains(MARK));
    QCOMPARE(s_marksInLog, 0);
}

void SecretsTest::passPhrasesArriveAsTyped_data()
{
    QTest::addColumn<QString>("passPhrase");

    QString ascii;
    for (char character = ' '; character <= '~'; ++character)
        ascii += character;
    addRow("all ASCII characters and blanks around", ' ' + ascii + ' ');
    addRow("256 Cyrillic letters", QString("Ёжик и Ы").repeated(32));
    addRow("emoji, blanks", "🔑 👩🏽‍💻 e\u0301 и\u0306 \ta\tb\u00a0\u3000\ufeff");
}

void SecretsTest::passPhrasesArriveAsTyped()
{
    QFETCH(QString, passPhrase);
    const QStringList packages{inWorkspace("a.rpm"), inWorkspace("b.rpm")};
    for (const QString &package : packages)
        writePackage(package);
    makeKeyPair(passPhrase);
    SignData data;
    data.key = data.binariesKey = inWorkspace("key.pem");
    data.certificate = inWorkspace("cert.pem");
    const PromptAnswers user(QStringList(3, passPhrase));
    QVERIFY(RpmsignExternal(nullptr).addSignature(RPMSIGN_TARGET, packages, data).succeeded());
    QVERIFY(CustomerSealkit().addSignature(CUSTOMER_TARGET, packages, data).succeeded());
    QCOMPARE(user.prompts().size(), 3); // one for each key, however many packages there are
}

QTEST_MAIN(SecretsTest)
#include "tst_secrets.moc"
