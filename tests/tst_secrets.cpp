#include "customersealkit.h"
#include "customersignstep.h"
#include "dialogdriver.h"
#include "files.h"
#include "messages.h"
#include "promptanswers.h"
#include "rpmsignexternal.h"
#include "rpmsignexternalstep.h"
#include "signdata.h"
#include "signdialog.h"
#include "stepfactory.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"
#include "workplace.h"

#include <host/buildmanager.h>
#include <host/userproject.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/project.h>

#include <QTest>
#include <QtWidgets>

#include <atomic>
#include <functional>
#include <thread>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;

// Part of every secret. Whoever knows it is not there has not seen the secret, either.
constexpr char MARK[] = "Wq7zMark";
const QString SECRET = QStringLiteral(" p\"a's $HOME & \\n %s Wq7zMark Пароль ");

static bool hasMark(const QByteArray &bytes)
{
    static const QByteArray wide = [] {
        const QString mark(MARK);
        return QByteArray(reinterpret_cast<const char *>(mark.utf16()), mark.size() * 2).chopped(1);
    }();
    return bytes.contains(MARK) || bytes.contains(wide);
}

/// The files with the mark below \a folder.
static QStringList filesWithMark(const QString &folder,
                                 qint64 maximumSize = std::numeric_limits<qint64>::max())
{
    QStringList paths;
    QDirIterator files(
        folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
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
        , m_thread([this] {
            while (!m_stops)
                look();
        })
    {
    }
    ~Onlooker() { stop(); }

    /// The command lines of what ran, and what was found with the mark.
    QByteArrayList stop()
    {
        m_stops = true;
        if (m_thread.joinable())
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
        // More often than at files, for processes can be short.
        for (int i = 0; i < 20; ++i) {
            const QSet<QString> newPids = pids() - m_foreign;
            for (const QString &pid : newPids)
                lookAt("/proc/" + pid);
        }
        const QStringList files = filesWithMark(m_folder, 100'000);
        for (const QString &file : files)
            m_seen << MARK + (" is in " + file.toUtf8());
    }

    void lookAt(const QString &process)
    {
        // A tool hides its environment even from its own user, once it has keys.
        const QByteArray environment = readFile(process + "/environ");
        const QByteArray commandLine = readFile(process + "/cmdline").replace('\0', ' ');
        if (!(environment + commandLine).contains(m_folder.toUtf8())) // somebody else's
            return;
        m_seen << commandLine;
        if (hasMark(environment))
            m_seen << MARK + (" is in the environment of " + commandLine);
    }

    const QString m_folder;
    const QSet<QString> m_foreign;
    QSet<QByteArray> m_seen;
    std::atomic<bool> m_stops = false;
    std::thread m_thread; // the last one: it uses the others
};

/// Everything that is logged, whatever its category, while this object lives.
class LogOfAll
{
public:
    LogOfAll()
    {
        s_log.clear();
        QLoggingCategory::setFilterRules("*=true");
        m_previous = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &message) {
                const QMutexLocker locker(&s_mutex);
                s_log += message + '\n';
            });
    }
    ~LogOfAll()
    {
        qInstallMessageHandler(m_previous);
        QLoggingCategory::setFilterRules({});
    }
    QString text() const
    {
        const QMutexLocker locker(&s_mutex);
        return s_log;
    }

private:
    static inline QString s_log;
    static inline QMutex s_mutex;
    QtMessageHandler m_previous;
};

/// All texts of all widgets, shown or not.
static QString textsOfWidgets()
{
    QString texts;
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget *widget : widgets) {
        const QMetaObject *type = widget->metaObject();
        for (int i = 0; i < type->propertyCount(); ++i) {
            const QVariant value = type->property(i).read(widget);
            if (value.typeId() == QMetaType::QString)
                texts += value.toString() + '\n';
        }
    }
    return texts;
}

class SecretsTest : public QObject
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
    QString inWorkspace(const QString &name) const
    {
        return m_workplace.sdk().workspace() + '/' + name;
    }
    void makeKeyPair(const QString &passPhrase) const;
    QString deploy(const QString &target);
    QString signInDialog();
    QString requestInDialog(KeyAlgorithm algorithm);

    TemporaryFolder m_folder; // the first one: all others use it
    Workplace m_workplace;
    DeployStepFactory<CustomerSignStep> m_customerFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignFactory;
};

/// Makes key.pem, encrypted, and cert.pem in the workspace.
void SecretsTest::makeKeyPair(const QString &passPhrase) const
{
    const QString key = inWorkspace("key.pem");
    const QString commands[] = {
        "genpkey -quiet -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -aes256 -pass stdin -out "
            + key,
        "req -x509 -new -subj /CN=x -key " + key + " -passin stdin -out "
            + inWorkspace("cert.pem")};
    for (const QString &command : commands) {
        QProcess openssl;
        openssl.start("openssl", command.split(' '));
        openssl.write(passPhrase.toUtf8() + '\n');
        openssl.closeWriteChannel();
        QVERIFY(openssl.waitForFinished() && openssl.exitCode() == 0);
    }
}

/// These return the file that is there after a success.
QString SecretsTest::deploy(const QString &target)
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
    [&] { QVERIFY(static_cast<Host::UserProject *>(project)->saveSettings(&error)); }();
    return package + ".1.p7s";
}

QString SecretsTest::signInDialog()
{
    const QString package = inWorkspace("dialog.rpm");
    writeFile(package, "\xed\xab\xee\xdb");
    QFile::remove(package + ".1.p7s");
    DialogDriver user;
    user.open(new SignDialog(nullptr));
    user.enter("developerKeyPathChooser", inWorkspace("key.pem"));
    user.enter("developerCertificatePathChooser", inWorkspace("cert.pem"));
    user.enter("rpmPathChooser", package);
    user.click("addSignaturePushButton");
    [&] { QVERIFY(!hasMark(textsOfWidgets().toUtf8())); }();
    return package + ".1.p7s";
}

QString SecretsTest::requestInDialog(KeyAlgorithm algorithm)
{
    const QString request = inWorkspace("request.pem");
    QFile::remove(request);
    QFile::remove(inWorkspace("new_key.pem"));
    DialogDriver user;
    user.open(new SignDialog(nullptr));
    user.enter("generatedKeyPathChooser", inWorkspace("new_key.pem"));
    user.enter("generatedReqPathChooser", request);
    user.child<QLineEdit>("generateCompanyNameLineEdit")->setText("Company");
    user.child<QComboBox>("generationKeyAlgoComboBox")->setCurrentIndex(algorithm);
    user.click("genReqButton");
    [&] { QVERIFY(!hasMark(textsOfWidgets().toUtf8())); }();
    return request;
}

void SecretsTest::leavesNoTraceOfPassPhrases_data()
{
    addColumns<std::function<QString()>, int, QByteArray>("operate", "prompts", "tool");

    const auto row = [](const char *name, int prompts, const char *tool, const auto &operate) {
        QTest::newRow(name) << std::function<QString()>(operate) << prompts << QByteArray(tool);
    };
    const char *rpmsign = "/rpmsign-external sign ";
    row("rpmsign-external step", 1, rpmsign, [this] { return deploy(RPMSIGN_TARGET); });
    row("customer-sign step", 2, "/customer-sign --binaries-key ", [this] {
        return deploy(CUSTOMER_TARGET);
    });
    row("dialog signs", 1, rpmsign, [this] { return signInDialog(); });
    row("dialog makes an RSA key", 3, "openssl genpkey ", [this] { return requestInDialog(RSA); });
    row("dialog makes a GOST key", 3, "openssl genpkey ", [this] { return requestInDialog(GOST); });
}

void SecretsTest::leavesNoTraceOfPassPhrases()
{
    if (lacksGost())
        QSKIP("The targets' openssl knows no GOST.");
    QFETCH(std::function<QString()>, operate);
    QFETCH(int, prompts);
    QFETCH(QByteArray, tool);
    makeKeyPair(SECRET);
    const QStringList right(prompts, SECRET);
    QStringList wrong = right;
    wrong.last() += '!';
    QStringList halfTyped = right;
    halfTyped.last().replace(" Пароль ", ESCAPE);

    const LogOfAll log;
    Messages messages;
    QString output;
    const QObject listener;
    connect(BuildManager::instance(),
            &BuildManager::outputAdded,
            &listener,
            [&output](const QString &text) { output += text; });
    Onlooker onlooker(m_folder.path());
    for (const QStringList &answers : {halfTyped, wrong, right}) {
        const PromptAnswers user(answers);
        const QString result = operate();
        QVERIFY(user.prompts().size() >= prompts);
        QCOMPARE(QFile::exists(result), answers == right);
    }
    const QByteArrayList seen = onlooker.stop();

    QVERIFY(seen.join('\n').contains(tool));
    for (const QByteArray &thing : seen)
        QVERIFY2(!hasMark(thing), thing.constData());
    QSettings().sync();
    QCOMPARE(filesWithMark(m_folder.path()), QStringList());
    const QString written = messages.take().join('\n');
    QVERIFY(written.contains("[$] 0") && !written.contains(MARK));
    QVERIFY(!output.contains(MARK));
    QVERIFY(!log.text().contains(MARK));
    QVERIFY(!hasMark(textsOfWidgets().toUtf8()));
}

void SecretsTest::passPhrasesArriveAsTyped_data()
{
    QTest::addColumn<QString>("passPhrase");

    QString ascii;
    for (char character = ' '; character <= '~'; ++character)
        ascii += character;
    addRow("all ASCII characters and blanks around", ' ' + ascii + ' ');
    addRow("one character", "x");
    QString cyrillic;
    for (char16_t letter = 0x400; letter < 0x500; ++letter)
        cyrillic += letter;
    addRow("256 Cyrillic letters", cyrillic);
    addRow("emoji and combining characters",
           QString("🔑 👩🏽‍💻 é й ") + "e\u0301 и\u0306");
    addRow("tabs and other blanks", "\ta\tb\u00a0\u2003\u3000\ufeff");
}

void SecretsTest::passPhrasesArriveAsTyped()
{
    QFETCH(QString, passPhrase);
    RpmsignExternal rpmsign(nullptr);
    CustomerSealkit customer(nullptr);
    const QStringList packages{inWorkspace("a.rpm"), inWorkspace("b.rpm")};
    for (const QString &package : packages)
        writeFile(package, "\xed\xab\xee\xdb");
    makeKeyPair(passPhrase);
    const SignData data{.binariesKey = inWorkspace("key.pem"),
                        .clientKey = {},
                        .clientCertificate = {},
                        .certificate = inWorkspace("cert.pem"),
                        .key = inWorkspace("key.pem"),
                        .rootCertificate = {}};
    const PromptAnswers user(QStringList(3, passPhrase));
    QVERIFY(rpmsign.addSignature(RPMSIGN_TARGET, packages, data).succeeded());
    QVERIFY(customer.addSignature(CUSTOMER_TARGET, packages, data).succeeded());
    QCOMPARE(user.prompts().size(), 3); // one for each key, however many packages there are
}

QTEST_MAIN(SecretsTest)
#include "tst_secrets.moc"
