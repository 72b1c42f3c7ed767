#include "files.h"
#include "messages.h"
#include "processes.h"
#include "promptanswers.h"
#include "realpackage.h"
#include "settingsscope.h"
#include "signdata.h"
#include "signdialog.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"

#include <brisk/installation.h>
#include <utils/pathchooser.h>
#include <utils/utilsicons.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QSet>
#include <QSettings>
#include <QStatusBar>
#include <QTabWidget>
#include <QTextBrowser>

#include <sys/stat.h>

using namespace Sealkit::Internal;
using Utils::FilePath;
using Utils::PathChooser;

constexpr int RUN_TIMEOUT = 20'000;
const QStringList ENCRYPTED_KEY{"", "keys/encrypted_key.pem", "keys/encrypted_cert.pem"};

class SignDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void summarizesDumps();
    void offersWhatTheTargetHas_data();
    void offersWhatTheTargetHas();
    void forgetsWhatWasSaidOfAHiddenTab();
    void saysWhyThereAreNoTargets_data();
    void saysWhyThereAreNoTargets();
    void tabKeyFollowsTheEye();
    void everyControlHasItsMnemonic();
    void offersTheRegularPair();
    void takesADroppedPackage();
    void opensItsHelp();
    void judgesPaths_data();
    void judgesPaths();
    void signsVerifiesAndRemoves_data();
    void signsVerifiesAndRemoves();
    void saysWhyFieldsAreAtFault_data();
    void saysWhyFieldsAreAtFault();
    void saysThatHalfAClientPairIsSkipped();
    void leavesRealPackagesAsTheyWere();
    void refusesRequests();
    void makesKeysAndRequests_data();
    void makesKeysAndRequests();
    void writesCompanyNames_data();
    void writesCompanyNames();
    void cleansUpAfterADeclinedPrompt_data();
    void cleansUpAfterADeclinedPrompt();
    void saysWhatOpensslCouldNotDo();
    void remembersChoices();
    void locksItselfDuringARun();
    void showsNoVerdictBesideAnotherPackage();
    void looksAgainWhenFilesChange();
    void showsTheLastChoice();
    void letsThePackageBeTyped();

private:
    template<class Widget>
    Widget *child(const QString &name = {}) const
    {
        return m_dialog->findChild<Widget *>(name);
    }
    QString text(const QString &label) const { return child<QLabel>(label)->text(); }
    QString status() const { return child<QStatusBar>()->currentMessage(); }
    QString inWorkspace(const QString &path) const { return m_sdk.workspace() + '/' + path; }
    QComboBox *targets() const { return child<QComboBox>("m_comboBoxBuildTargets"); }
    bool isBusy() const { return !child<QWidget>("busyIndicator")->isHidden(); }
    QString dump() const
    {
        return child<QTextBrowser>("developerSignatureTextBrowser")->toPlainText();
    }
    QString icon(const QString &label) const
    {
        const QImage image = child<QLabel>(label)->pixmap().toImage();
        if (image == Utils::Icons::OK.pixmap().toImage())
            return "OK";
        if (image == Utils::Icons::BROKEN.pixmap().toImage())
            return "BROKEN";
        return image.isNull() ? QString() : "unknown";
    }

    void openDialog(const QString &target = RPMSIGN_TARGET)
    {
        QSettings().setValue("KilnRpmSign.History.TargetName", target);
        m_dialog = new SignDialog(nullptr);
        m_dialog->show();
        QCOMPARE(status(), "Updating targets...");
        QTRY_COMPARE_WITH_TIMEOUT(status(), QString(), RUN_TIMEOUT);
        QCOMPARE(targets()->currentText(), target);
    }

    void waitUntilIdle() const
    {
        QCoreApplication::processEvents();
        QTRY_VERIFY_WITH_TIMEOUT(!isBusy(), RUN_TIMEOUT);
    }

    void enter(const QString &chooser, const QString &path) const
    {
        QLineEdit *edit = child<PathChooser>(chooser)->lineEdit();
        edit->selectAll();
        edit->insert(path);
        waitUntilIdle();
    }

    /// In the workspace: binaries key, developer's key and certificate, client's key and
    /// certificate.
    void enterKeys(const QStringList &paths) const
    {
        const QStringList choosers{
            "binaryKey", "developerKey", "developerCertificate", "clientKey", "clientCertificate"};
        for (int i = 0; i < paths.size(); ++i) {
            if (!paths.at(i).isEmpty())
                enter(choosers.at(i) + "PathChooser", inWorkspace(paths.at(i)));
        }
    }

    void enterRequest(const QString &company, const QString &key) const
    {
        child<QLineEdit>("generateCompanyNameLineEdit")->setText(company);
        enter("generatedKeyPathChooser", key);
        enter("generatedReqPathChooser", inWorkspace("request.pem"));
    }

    void click(const QString &button) const
    {
        auto *pushButton = child<QPushButton>(button);
        auto *tabs = child<QTabWidget>("tabWidget");
        for (QWidget *page = pushButton; page; page = page->parentWidget()) {
            if (tabs->indexOf(page) >= 0)
                tabs->setCurrentWidget(page);
        }
        waitUntilIdle();
        QTest::mouseClick(pushButton, Qt::LeftButton);
        waitUntilIdle();
    }

    QString freshPackage(const QString &name = "hello.rpm") const
    {
        writeFile(inWorkspace(name), "\xed\xab\xee\xdb" + name.toUtf8());
        return inWorkspace(name);
    }

    /// Checks the request's signature with the target's openssl, which knows GOST, and shows more
    /// of it.
    QString describeRequest(const QStringList &options) const
    {
        QProcess openssl;
        openssl.setProcessChannelMode(QProcess::MergedChannels);
        openssl.start(m_sdk.tool("openssl"),
                      QStringList{"req", "-verify", "-noout", "-in", inWorkspace("request.pem")}
                          + options);
        openssl.waitForFinished(RUN_TIMEOUT);
        return QString::fromUtf8(openssl.readAll());
    }

    QStringList configurations() const
    {
        return QDir(m_sdk.workspace()).entryList({".csr_*"}, QDir::Files | QDir::Hidden);
    }

    /// Calls \a action once, from the event loop, when \a condition holds.
    template<class Condition, class Action>
    void when(Condition condition, Action action)
    {
        auto *timer = new QTimer(this);
        connect(timer, &QTimer::timeout, this, [timer, condition, action] {
            if (!condition())
                return;
            timer->stop();
            timer->deleteLater();
            action();
        });
        timer->start(0);
    }

    SettingsScope m_settings;
    TemporarySdk m_sdk;
    QPointer<SignDialog> m_dialog;
    std::unique_ptr<PromptAnswers> m_answers;
};

void SignDialogTest::initTestCase()
{
    QString error;
    QVERIFY2(Brisk::openInstallation(FilePath::fromString(m_sdk.path()), &error),
             qPrintable(error));
}

void SignDialogTest::init()
{
    failOnStrayWarnings();
    m_settings.clear();
}

void SignDialogTest::cleanup()
{
    delete m_dialog;
    m_answers.reset();
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_sdk.path()), QStringList(), RUN_TIMEOUT);
    for (const QString &file : QDir(m_sdk.workspace()).entryList(QDir::Files | QDir::Hidden))
        QFile::remove(inWorkspace(file));
}

void SignDialogTest::summarizesDumps()
{
    QCOMPARE(parseDumpForSort("1. Subject: CN=A\nSubgroup: s"), "Subject: CN=A\n");
    QCOMPARE(parseDumpForSort("Key ID: Subject: x\nGroup:"), "Group:\n"); // the line's first word
    QCOMPARE(parseDumpForSort("subject: a\nGROUP: b"), "");
}

void SignDialogTest::offersWhatTheTargetHas_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("offered");
    QTest::addColumn<QString>("opensslNotice");
    QTest::addColumn<QString>("missing");

    const QString buttons = "addSignaturePushButton removeSignaturePushButton "
                            "verifySignaturePushButton dumpPushButton";
    const QString binaryKey = " binaryKeyLabel binaryKeyPathChooser";
    addRow("rpmsign-external", RPMSIGN_TARGET, buttons + " requests", "", "");
    addRow("customer-sign", CUSTOMER_TARGET, buttons + binaryKey, "", "");
    addRow("no tools",
           BARE_TARGET,
           "",
           "OpenSSL not found in target 'VeyraOS-3.4-x86_64', please install it.\n"
           "Available in: Tools - Options - Veyra OS - Manage Build Targets",
           "Target VeyraOS-3.4-x86_64 cannot sign: it has neither rpmsign-external nor "
           "customer-sign");
}

void SignDialogTest::offersWhatTheTargetHas()
{
    QFETCH(QString, target);
    QFETCH(QString, offered);
    QDir(m_sdk.workspace()).mkdir(".veyraos-regular-keys");
    openDialog(target);

    QStringList shown{"addSignaturePushButton",
                      "removeSignaturePushButton",
                      "verifySignaturePushButton",
                      "dumpPushButton",
                      "binaryKeyLabel",
                      "binaryKeyPathChooser"};
    shown.removeIf([this](const QString &name) { return child<QWidget>(name)->isHidden(); });
    if (child<QTabWidget>("tabWidget")->isTabVisible(2))
        shown << "requests";
    QCOMPARE(shown.join(' '), offered);
    QTEST(child<QTextEdit>("opensslStatusLabel")->toPlainText(), "opensslNotice");
    QTEST(text("toolsNoteLabel"), "missing");
    QVERIFY(text("regularKeysLabel").contains("<a href=\"" + inWorkspace(".veyraos-regular-keys")));
    const QSize least = m_dialog->minimumSizeHint();
    QVERIFY2(least.width() <= 1024 && least.height() <= 700, qPrintable(QDebug::toString(least)));

    Messages messages;
    enter("rpmPathChooser", freshPackage());
    const bool canSign = !offered.isEmpty();
    const QString error = "!Error: unable to find signing tools for the selected target";
    QCOMPARE(messages.take().contains(error), !canSign);
    QCOMPARE(text("verifyLabel"),
             canSign ? "Could not verify signatures" : "Package can't be verified");
    QCOMPARE(icon("verifyIconLabel"), "BROKEN");
    QCOMPARE(dump(), canSign ? "No signatures found in package" : "Package can't be dumped");
}

void SignDialogTest::forgetsWhatWasSaidOfAHiddenTab()
{
    const QString nxvcert = m_sdk.tool("nxvcert-cli", CUSTOMER_TARGET);
    QVERIFY(QFile::rename(nxvcert, nxvcert + ".away"));
    openDialog();
    click("genReqButton");
    QCOMPARE(icon("generateLabel"), "BROKEN");
    targets()->setCurrentText(CUSTOMER_TARGET);
    waitUntilIdle();
    QVERIFY(QFile::rename(nxvcert + ".away", nxvcert));
    QCOMPARE(status() + icon("generateLabel") + text("generateReasonLabel"), "");
    QCOMPARE(text("toolsNoteLabel"),
             "Target VeyraOS-4.0-x86_64 can only sign: without nxvcert-cli, signatures are neither "
             "shown nor removed");
}

void SignDialogTest::saysWhyThereAreNoTargets_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("problem");

    addRow("no engine", "no engine", "There is no build engine: open or repair the SDK");
    addRow("engine does not start",
           "no start",
           "The build engine did not start; see the General Messages");
    addRow("no targets", "no targets", "The build engine has no targets: install one");
}

void SignDialogTest::saysWhyThereAreNoTargets()
{
    QFETCH(QString, obstacle);
    const QString folder = m_sdk.path() + "/engine/targets";
    const auto mend = qScopeGuard([&] {
        if (obstacle == "no targets" && QDir().rmdir(folder))
            QFile::rename(folder + ".away", folder);
        if (obstacle == "no engine")
            initTestCase();
    });
    if (obstacle == "no targets")
        QVERIFY(QFile::rename(folder, folder + ".away") && QDir().mkdir(folder));
    if (obstacle == "no start")
        QSettings().setValue("Kiln.BriskPath", "/none");
    if (obstacle == "no engine")
        Brisk::closeInstallation();

    m_dialog = new SignDialog(nullptr);
    m_dialog->show();
    QTRY_VERIFY_WITH_TIMEOUT(status() != "Updating targets...", RUN_TIMEOUT);
    QTEST(status(), "problem");
    child<QTabWidget>("tabWidget")->setCurrentIndex(2);
    waitUntilIdle();
    QCOMPARE(child<QTextEdit>("opensslStatusLabel")->toPlainText(), "");
}

void SignDialogTest::tabKeyFollowsTheEye()
{
    openDialog();
    m_dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog));
    QStringList lastOfTabs;
    for (int tab = 0; tab < 3; ++tab) {
        child<QTabWidget>("tabWidget")->setCurrentIndex(tab);
        waitUntilIdle();

        QList<QWidget *> visited{targets()};
        visited.first()->setFocus();
        for (int keys = 0; keys < 50; ++keys) {
            QTest::keyClick(visited.last(), Qt::Key_Tab);
            QWidget *next = QApplication::focusWidget();
            if (next == visited.last()) // a link in it
                continue;
            if (next == visited.first())
                break;
            const QRect from(visited.last()->mapToGlobal(QPoint()), visited.last()->size());
            const QRect to(next->mapToGlobal(QPoint()), next->size());
            QVERIFY2(to.top() > from.bottom() || to.left() > from.right(),
                     qPrintable(visited.last()->objectName() + " -> " + next->objectName()));
            visited << next;
        }
        // At the end, on each tab, come the buttons below.
        QCOMPARE(visited.takeLast()->parent(), child<QDialogButtonBox>());
        QCOMPARE(visited.takeLast()->parent(), child<QDialogButtonBox>());
        lastOfTabs << visited.last()->objectName();
    }
    QCOMPARE(lastOfTabs,
             (QStringList{"regularKeysButton", "developerSignatureTextBrowser", "genReqButton"}));
}

void SignDialogTest::everyControlHasItsMnemonic()
{
    openDialog();
    child<QWidget>("binaryKeyLabel")->show(); // as with another target
    auto *tabs = child<QTabWidget>("tabWidget");
    QStringList tabTexts;
    for (int tab = 0; tab < tabs->count(); ++tab)
        tabTexts << tabs->tabText(tab);
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        waitUntilIdle();
        QStringList texts = tabTexts;
        for (const QLabel *label : m_dialog->findChildren<QLabel *>()) {
            if (label->buddy() && label->isVisible())
                texts << label->text();
        }
        for (const QAbstractButton *button : m_dialog->findChildren<QAbstractButton *>()) {
            // Qt and the IDE see to those of their own.
            const bool isOwn =
                button->objectName().contains("utton") || button->inherits("QCheckBox");
            if (isOwn && button->isVisible())
                texts << button->text();
        }
        QSet<QKeySequence> mnemonics;
        for (const QString &label : texts) {
            const QKeySequence mnemonic = QKeySequence::mnemonic(label);
            QVERIFY2(!mnemonic.isEmpty() && !mnemonics.contains(mnemonic), qPrintable(label));
            mnemonics << mnemonic;
        }
    }
}

void SignDialogTest::offersTheRegularPair()
{
    openDialog();
    enter("rpmPathChooser", freshPackage());
    const QString folder = inWorkspace(".veyraos-regular-keys/");
    for (const QString name : {"regular_key.pem", "regular_cert.pem"})
        writeFile(folder + name, readFile(m_sdk.path() + "/package-signing/" + name));
    click("regularKeysButton");
    QCOMPARE(m_dialog->data().key, folder + "regular_key.pem");
    QCOMPARE(m_dialog->data().certificate, folder + "regular_cert.pem");
    QCOMPARE(
        text("developerCertificateNoteLabel"),
        "Valid until 2043-12-31: CN=Regular Developer, OU=regular, OU=developer, O=Veyra OS Demo");
    QVERIFY(child<QLabel>("developerCertificateNoteLabel")->width() > m_dialog->width() / 2);
    enter("developerCertificatePathChooser", "");
    QCOMPARE(text("developerCertificateNoteLabel"), "");
}

void SignDialogTest::takesADroppedPackage()
{
    openDialog();
    const auto drop = [this](const QString &path) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        QDragEnterEvent enters({}, Qt::CopyAction, &data, Qt::LeftButton, {});
        enters.ignore();
        QApplication::sendEvent(m_dialog, &enters);
        QDropEvent drops({}, Qt::CopyAction, &data, Qt::LeftButton, {});
        if (enters.isAccepted())
            QApplication::sendEvent(m_dialog, &drops);
        waitUntilIdle();
        return child<PathChooser>("rpmPathChooser")->filePath().toFSPathString();
    };
    QCOMPARE(drop(inWorkspace("keys/client_key.pem")), "");
    const QString package = freshPackage();
    QCOMPARE(drop(package), package);
    QCOMPARE(dump(), "No signatures found in package");
}

/// Stands in for the user's browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler("https", this, "show"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler("https"); }

    QList<QUrl> shown;

public slots:
    void show(const QUrl &url) { shown << url; }
};

void SignDialogTest::opensItsHelp()
{
    openDialog();
    const Browser browser;
    auto *buttons = child<QDialogButtonBox>();
    QTest::mouseClick(buttons->button(QDialogButtonBox::Help), Qt::LeftButton);
    QCOMPARE(browser.shown.size(), 1);
    QVERIFY(browser.shown.first().path().endsWith("/package_signing"));
    QTest::mouseClick(buttons->button(QDialogButtonBox::Close), Qt::LeftButton);
    QVERIFY(!m_dialog->isVisible());
}

void SignDialogTest::judgesPaths_data()
{
    QTest::addColumn<QStringList>("choosers");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("problem");

    const QStringList existing{"rpm",
                               "binaryKey",
                               "developerKey",
                               "developerCertificate",
                               "clientKey",
                               "clientCertificate",
                               "caCertificate"};
    const QStringList made{"generatedKey", "generatedReq"};
    const QString outside = "The path must be inside workspace folder:\n" + m_sdk.workspace();
    addRow("existing: there", existing, inWorkspace("keys/client_key.pem"), "");
    addRow("existing: missing", existing, inWorkspace("missing"), "File does not exist");
    addRow("existing: outside", existing, "/etc/passwd", outside);
    addRow("made: missing", made, inWorkspace("missing"), "");
    addRow("made: outside", made, "/tmp/new.pem", outside);
}

void SignDialogTest::judgesPaths()
{
    QFETCH(QStringList, choosers);
    QFETCH(QString, path);
    openDialog(BARE_TARGET); // looks at packages without running a tool

    for (const QString &name : choosers) {
        const auto *chooser = child<PathChooser>(name + "PathChooser");
        QCOMPARE(chooser->errorMessage(), QString()); // of no text
        enter(name + "PathChooser", path);
        QTEST(chooser->errorMessage(), "problem");
        QCOMPARE(chooser->isValid(), chooser->errorMessage().isEmpty());
    }
}

void SignDialogTest::signsVerifiesAndRemoves_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QString>("developer");
    QTest::addColumn<QString>("client");

    const auto summary = [](const QString &group, const QString &name, const QString &unit) {
        return QStringLiteral("Subject: CN=%2, OU=%3, OU=%1, O=Veyra OS Demo\nGroup: %1\n")
            .arg(group, name, unit);
    };
    const QStringList clientKey{"keys/client_key.pem", "keys/client_cert.pem"};
    const QStringList allKeys = ENCRYPTED_KEY + clientKey;
    const QString careful = summary("developer", "Careful Developer", "extended");
    const QString client = summary("client", "Demo Client", "shop");
    addRow("rpmsign-external", RPMSIGN_TARGET, allKeys, careful, client);
    addRow("developer only", RPMSIGN_TARGET, ENCRYPTED_KEY, careful, "");
    const QString home = "home/.kilnsdk/";
    addRow("customer-sign",
           CUSTOMER_TARGET,
           QStringList{"keys/encrypted_key.pem",
                       home + "packages-key.pem",
                       home + "packages-cert.pem",
                       "",
                       home + "packages-client-cert.pem"},
           summary("developer", "Customer", "customer"),
           summary("client", "Customer of the Client", "customer"));
}

void SignDialogTest::signsVerifiesAndRemoves()
{
    QFETCH(QString, target);
    QFETCH(QStringList, keys);
    QFETCH(QString, client);
    openDialog(target);
    enter("rpmPathChooser", freshPackage());
    enterKeys(keys);

    m_answers = std::make_unique<PromptAnswers>(QStringList(3, "wrong"));
    click("addSignaturePushButton");
    QCOMPARE(m_answers->prompts().size(), 3);
    QCOMPARE(icon("signStateLabel"), "BROKEN");
    QVERIFY2(text("signReasonLabel").contains("error: wrong pass phrase for the key: "),
             qPrintable(text("signReasonLabel")));
    QCOMPARE(dump(), "No signatures found in package");

    m_answers = std::make_unique<PromptAnswers>(QStringList{"demo"});
    click("addSignaturePushButton");
    QCOMPARE(m_answers->prompts().size(), 1);
    QCOMPARE(icon("signStateLabel") + text("signReasonLabel"), "OK");
    QCOMPARE(text("verifyLabel"), "Signatures successfully verified");
    QCOMPARE(icon("verifyIconLabel") + text("verifyReasonLabel"), "OK");
    QTEST(text("developerSignatureShortLabel"), "developer");
    QCOMPARE(text("clientSignatureShortLabel"), client);
    QVERIFY(dump().contains("Key ID: "));
    QCOMPARE(child<QWidget>("clientSignatureTextBrowser")->isHidden(), client.isEmpty());

    enter("caCertificatePathChooser", inWorkspace("keys/foreign_root.pem"));
    click("verifySignaturePushButton");
    QCOMPARE(text("verifyLabel"), "Could not verify signatures");
    QCOMPARE(icon("verifyIconLabel"), "BROKEN");
    QVERIFY2(
        text("verifyReasonLabel")
            .startsWith("signature 1 is NOT valid: its certificate is not issued by a trusted"),
        qPrintable(text("verifyReasonLabel")));
    enter("caCertificatePathChooser", inWorkspace("keys/demo_root.pem"));
    click("verifySignaturePushButton");
    QCOMPARE(icon("verifyIconLabel"), "OK");

    click("removeSignaturePushButton");
    QCOMPARE(icon("signStateLabel"), "OK"); // still of the last signing
    QCOMPARE(text("verifyLabel"), "Could not verify signatures");
    QCOMPARE(text("verifyReasonLabel").section('\n', 0, 0), "not signed");
    QCOMPARE(dump(), "No signatures found in package");
    QCOMPARE(text("developerSignatureShortLabel") + text("clientSignatureShortLabel"), "");

    // Without a package nothing is judged, and the dump stays.
    enter("rpmPathChooser", "");
    click("addSignaturePushButton");
    QCOMPARE(icon("signStateLabel"), "OK");
    QCOMPARE(text("verifyLabel") + icon("verifyIconLabel") + text("verifyReasonLabel"), "");
    QCOMPARE(dump(), "No signatures found in package");
}

void SignDialogTest::saysWhyFieldsAreAtFault_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("certificate");
    QTest::addColumn<QString>("problem");

    const QString outside = m_sdk.path() + "/ca/demo_root.pem";
    const QString folder = " must be inside workspace folder: "
                           + FilePath::fromString(m_sdk.workspace()).shortNativePath();
    const QString empty = " can't be empty";
    addRow("no certificate", RPMSIGN_TARGET, "", "Error: key and certificate" + empty);
    addRow("certificate outside", RPMSIGN_TARGET, outside, "Error: key and certificate" + folder);
    addRow("no binary key", CUSTOMER_TARGET, outside, "Error: keys and certificate" + empty);
}

void SignDialogTest::saysWhyFieldsAreAtFault()
{
    QFETCH(QString, target);
    QFETCH(QString, certificate);
    QFETCH(QString, problem);
    openDialog(target);
    enter("rpmPathChooser", freshPackage());
    enterKeys({"", "keys/client_key.pem"});
    enter("developerCertificatePathChooser", certificate);

    Messages messages;
    click("addSignaturePushButton");
    QCOMPARE(icon("signStateLabel"), "BROKEN");
    QCOMPARE(text("signReasonLabel"), problem);
    QCOMPARE(status(), problem);
    QVERIFY(messages.take().filter(QRegularExpression(" sign | --binaries-key ")).isEmpty());

    // Gone with the next run, whatever comes of it.
    enterKeys({"keys/client_key.pem", "keys/client_key.pem", "keys/foreign_cert.pem"});
    click("addSignaturePushButton");
    QVERIFY2(text("signReasonLabel").contains("error: the key does not fit the certificate"),
             qPrintable(text("signReasonLabel")));
    QCOMPARE(status(), "");
}

void SignDialogTest::saysThatHalfAClientPairIsSkipped()
{
    openDialog();
    enter("rpmPathChooser", freshPackage());
    enterKeys({"", "keys/client_key.pem", "keys/client_cert.pem", "keys/client_key.pem"});
    Messages messages;
    click("addSignaturePushButton");
    const QString note = "No client signature was added: it needs a client key and its certificate";
    QCOMPARE(icon("signStateLabel"), "OK");
    QCOMPARE(status(), note);
    QCOMPARE(messages.take().filter(note), QStringList("[W]\t" + note));

    enterKeys({"", "", "", "", "keys/client_cert.pem"});
    click("addSignaturePushButton");
    QCOMPARE(status(), "");
    QCOMPARE(messages.take().filter(note), QStringList());
}

void SignDialogTest::leavesRealPackagesAsTheyWere()
{
    const QTemporaryDir folder(inWorkspace("real"));
    const QString package = buildPackage(folder.path());
    const QDir packages = QFileInfo(package).dir();
    const QByteArray bytes = readFile(package);
    const QStringList files = packages.entryList(QDir::Files);
    openDialog();
    enter("rpmPathChooser", package);
    enterKeys({"", "keys/client_key.pem", "keys/client_cert.pem"});
    click("addSignaturePushButton");
    QCOMPARE(icon("verifyIconLabel"), "OK");
    QCOMPARE(readFile(package), bytes);

    const QList<qsizetype> parts = partsOfPackage(bytes);
    for (const qsizetype part : parts) {
        QByteArray changed = bytes;
        changed[part + 20] = char(changed.at(part + 20) ^ 1);
        writeFile(package, changed);
        click("verifySignaturePushButton");
        QCOMPARE(text("verifyLabel"), "Could not verify signatures");
        QCOMPARE(icon("verifyIconLabel"), "BROKEN");
    }

    writeFile(package, bytes);
    click("verifySignaturePushButton");
    QCOMPARE(icon("verifyIconLabel"), "OK");
    click("removeSignaturePushButton");
    QCOMPARE(readFile(package), bytes);
    QCOMPARE(packages.entryList(QDir::Files), files);
}

void SignDialogTest::refusesRequests()
{
    openDialog();
    QStringList shown;
    connect(child<QStatusBar>(), &QStatusBar::messageChanged, this, [&](const QString &message) {
        if (!message.isEmpty())
            shown << message;
    });
    click("genReqButton");
    QCOMPARE(icon("generateLabel"), "BROKEN");
    child<QLineEdit>("generateCompanyNameLineEdit")->setText("Company");
    click("genReqButton");
    enter("generatedKeyPathChooser", inWorkspace("key.pem"));
    click("genReqButton");
    enter("generatedReqPathChooser", inWorkspace("keys/../key.pem"));
    click("genReqButton");
    QCOMPARE(shown,
             (QStringList{"Company name field cannot be empty",
                          "Key field cannot be empty",
                          "Request field cannot be empty",
                          "Key and request cannot be the same file"}));
    QCOMPARE(icon("generateLabel"), "BROKEN");
    QVERIFY(!QFile::exists(inWorkspace("key.pem")));
    delete m_dialog; // before what it reports to
}

void SignDialogTest::makesKeysAndRequests_data()
{
    QTest::addColumn<int>("algorithm");
    QTest::addColumn<bool>("encrypt");
    QTest::addColumn<QString>("publicKey");

    addRow("RSA", int(RSA), false, "rsaEncryption");
    addRow("RSA, encrypted", int(RSA), true, "rsaEncryption");
    addRow("GOST", int(GOST), false, "GOST R 34.10-2012 with 256 bit modulus");
    addRow("GOST, encrypted", int(GOST), true, "GOST R 34.10-2012 with 256 bit modulus");
}

void SignDialogTest::makesKeysAndRequests()
{
    if (lacksGost())
        QSKIP("The targets' openssl knows no GOST.");
    QFETCH(bool, encrypt);
    QFETCH(int, algorithm);
    QFETCH(QString, publicKey);
    openDialog();
    const QString key = inWorkspace("new key.pem");
    enterRequest("Company", key);
    child<QComboBox>("generationKeyAlgoComboBox")->setCurrentIndex(algorithm);
    child<QCheckBox>("generationKeyEncryptCheckBox")->setChecked(encrypt);

    // The key is for its owner only, also before it is complete, and whatever the user allows.
    QFile::Permissions permissions;
    QTimer watch;
    watch.callOnTimeout([&] { permissions |= QFile::permissions(key); });
    watch.start(1);
    const mode_t mask = umask(0);
    const PromptAnswers prompts({"Пароль 1", "Пароль 1", "Пароль 1"});
    click("genReqButton");
    umask(mask);
    permissions |= QFile::permissions(key);
    constexpr int USER_FLAGS = 0x0700; // the same once more, for this process
    QCOMPARE(permissions & ~USER_FLAGS, QFile::ReadOwner | QFile::WriteOwner);
    QCOMPARE(prompts.prompts(),
             encrypt ? QStringList({"Enter PEM pass phrase:",
                                    "Verifying - Enter PEM pass phrase:",
                                    "Enter pass phrase for " + key + ":"})
                     : QStringList());
    QCOMPARE(icon("generateLabel"), "OK");
    QCOMPARE(status(), "");
    const QString request = describeRequest({"-text"});
    for (const QString &part : {QString("verify OK"), QString("Company"), publicKey})
        QVERIFY2(request.contains(part), qPrintable(part + " is not in " + request));
    QCOMPARE(readFile(key).contains("ENCRYPTED"), encrypt);
    QCOMPARE(configurations(), QStringList());
}

void SignDialogTest::writesCompanyNames_data()
{
    QTest::addColumn<QString>("company");

    addRow("Cyrillic", "ООО «Ромашка»");
    addRow("Chinese", "北京有限公司");
    addRow("plain signs", "A=B, C/D; E+F <%COMPANY_NAME%> @{1}");
    addRow("64 characters", QString(64, QChar(0x416)));
}

void SignDialogTest::writesCompanyNames()
{
    QFETCH(QString, company);
    openDialog();
    const QString key = inWorkspace("keys/client_key.pem");
    const QByteArray keyBefore = readFile(key);
    enterRequest(company, key);
    click("genReqButton");

    QCOMPARE(readFile(key), keyBefore);
    QCOMPARE(configurations(), QStringList());
    QCOMPARE(icon("generateLabel"), "OK");
    QCOMPARE(describeRequest({"-subject", "-nameopt", "sname,sep_multiline,utf8"}),
             "Certificate request self-signature verify OK\nsubject=\n    CN=" + company + '\n');
}

void SignDialogTest::cleansUpAfterADeclinedPrompt_data()
{
    QTest::addColumn<QStringList>("answers");
    QTest::addColumn<int>("promptsOfNextTry");

    addRow("first", QStringList(), 3);
    addRow("repetition", QStringList{"pass"}, 3);
    addRow("use of the complete key", QStringList{"pass", "pass"}, 1);
}

void SignDialogTest::cleansUpAfterADeclinedPrompt()
{
    QFETCH(QStringList, answers);
    openDialog();
    enterRequest("Company", inWorkspace("key.pem"));
    Messages messages;
    {
        const PromptAnswers prompts(answers);
        click("genReqButton");
        QCOMPARE(prompts.prompts().size(), answers.size() + 1);
    }
    QCOMPARE(icon("generateLabel"), "BROKEN");
    QCOMPARE(text("generateReasonLabel"), "Cancelled: no pass phrase was given");
    QCOMPARE(messages.take().filter("Cancelled"),
             QStringList("[W]\tCancelled: no pass phrase was given"));
    QVERIFY2(status().startsWith("Failed to generate request: "), qPrintable(status()));
    QVERIFY(!QFile::exists(inWorkspace("request.pem")));
    QCOMPARE(configurations(), QStringList());

    const PromptAnswers prompts({"pass", "pass", "pass"});
    click("genReqButton");
    QTEST(int(prompts.prompts().size()), "promptsOfNextTry");
    QCOMPARE(icon("generateLabel") + text("generateReasonLabel"), "OK");
    QCOMPARE(status(), "");
}

void SignDialogTest::saysWhatOpensslCouldNotDo()
{
    openDialog();
    enterRequest("Company", inWorkspace("key.pem"));
    Messages messages;
    const PromptAnswers prompts({"one phrase", "another"});
    click("genReqButton");
    QCOMPARE(text("generateReasonLabel"), "Verify failure");
    QVERIFY2(status().startsWith("Failed to generate request: Enter PEM pass phrase:\r\n"),
             qPrintable(status()));
    const QStringList dots = messages.take().filter(QRegularExpression("^\\[I\\]\t[.+*]+$"));
    QCOMPARE(dots, QStringList());
}

void SignDialogTest::remembersChoices()
{
    openDialog(CUSTOMER_TARGET);
    QCOMPARE(child<QComboBox>("generationKeyAlgoComboBox")->currentIndex(), int(RSA));
    QVERIFY(child<QCheckBox>("generationKeyEncryptCheckBox")->isChecked());
    child<QComboBox>("generationKeyAlgoComboBox")->setCurrentIndex(GOST);
    child<QCheckBox>("generationKeyEncryptCheckBox")->setChecked(false);
    targets()->setCurrentText(BARE_TARGET);
    waitUntilIdle();
    const QSize size = m_dialog->size() + QSize(30, 20);
    m_dialog->resize(size);
    delete m_dialog;

    delete new SignDialog(nullptr); // gone before it knows a target
    const QSettings settings;
    QCOMPARE(settings.value("KilnRpmSign.History.TargetName"), BARE_TARGET);
    QCOMPARE(settings.value("KilnRpmSign.History.GenerationAlgorythm"), int(GOST));
    QCOMPARE(settings.value("KilnRpmSign.History.GenerationEncrypt"), false);

    openDialog(BARE_TARGET);
    QCOMPARE(child<QComboBox>("generationKeyAlgoComboBox")->currentText(),
             "GOST R 34.10-2012 (256)");
    QVERIFY(!child<QCheckBox>("generationKeyEncryptCheckBox")->isChecked());
    QCOMPARE(m_dialog->size(), size);
    delete m_dialog;

    QSettings().setValue("KilnRpmSign.History.TargetName", "VeyraOS-1.0");
    m_dialog = new SignDialog(nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(targets()->currentText(), RPMSIGN_TARGET, RUN_TIMEOUT);
    waitUntilIdle();
}

void SignDialogTest::locksItselfDuringARun()
{
    openDialog();
    enter("rpmPathChooser", freshPackage());
    enterKeys(ENCRYPTED_KEY);
    const QStringList lockable{"addSignaturePushButton",
                               "removeSignaturePushButton",
                               "dumpPushButton",
                               "verifySignaturePushButton",
                               "genReqButton",
                               "m_comboBoxBuildTargets",
                               "rpmPathChooser"};
    const auto enabled = [&] {
        QStringList names = lockable;
        names.removeIf([&](const QString &name) { return !child<QWidget>(name)->isEnabled(); });
        return names;
    };
    when(QApplication::activeModalWidget, [&] {
        QCOMPARE(enabled(), QStringList());
        QVERIFY(isBusy());
        child<QStatusBar>()->showMessage("message");
        child<QTabWidget>("tabWidget")->setCurrentIndex(2); // asks for openssl, after the run
        m_answers = std::make_unique<PromptAnswers>(QStringList());
    });
    auto *button = child<QPushButton>("addSignaturePushButton");
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    waitUntilIdle();
    QCOMPARE(m_answers->prompts().size(), 1);
    QCOMPARE(icon("signStateLabel"), "BROKEN");
    QCOMPARE(enabled(), lockable);
    QCOMPARE(status(), "message");

    // The keyboard stays where the user left it.
    targets()->setFocus();
    bool locked = false;
    when([this] { return !targets()->isEnabled(); }, [&] { locked = enabled().isEmpty(); });
    QTest::keyClick(targets(), Qt::Key_Down);
    waitUntilIdle();
    QVERIFY(locked);
    QCOMPARE(targets()->currentText(), CUSTOMER_TARGET);
    QCOMPARE(m_dialog->focusWidget(), targets());
}

void SignDialogTest::showsNoVerdictBesideAnotherPackage()
{
    openDialog();
    enterKeys({"", "keys/client_key.pem", "keys/client_cert.pem"});
    const QString good = freshPackage("signed.rpm");
    const QString bad = freshPackage("unsigned.rpm");
    enter("rpmPathChooser", good);
    click("addSignaturePushButton");
    QCOMPARE(text("verifyLabel"), "Signatures successfully verified");

    auto *path = child<PathChooser>("rpmPathChooser")->lineEdit();
    bool lied = false;
    QTimer watch;
    watch.callOnTimeout([&] {
        lied |= path->text() == bad && text("verifyLabel") == "Signatures successfully verified";
    });
    watch.start(0);
    QTimer::singleShot(0, m_dialog, [path, &bad] { path->setText(bad); });
    click("verifySignaturePushButton");
    waitUntilIdle();
    QVERIFY(!lied);
    QCOMPARE(text("verifyLabel"), "Could not verify signatures");
}

void SignDialogTest::looksAgainWhenFilesChange()
{
    openDialog();
    enterKeys({"", "keys/client_key.pem", "keys/client_cert.pem"});
    const QString package = freshPackage("build/RPMS/a.rpm");
    const QString signature = package + ".1.p7s";
    enter("rpmPathChooser", package);
    click("addSignaturePushButton");
    const QByteArray goodPackage = readFile(package);
    const QByteArray goodSignature = readFile(signature);
    const auto shows = [this](const QString &verdict, const QString &reason) {
        [&] {
            QTRY_COMPARE_WITH_TIMEOUT(text("verifyLabel") + '|'
                                          + text("verifyReasonLabel").section('\n', 0, 0),
                                      verdict + '|' + reason,
                                      RUN_TIMEOUT);
            QTRY_COMPARE_WITH_TIMEOUT(dump().startsWith("Subject"),
                                      verdict.startsWith("Sig") || reason.startsWith("sig"),
                                      RUN_TIMEOUT);
        }();
        waitUntilIdle();
    };
    const QString good = "Signatures successfully verified";
    const QString bad = "Could not verify signatures";
    const QString changed = "signature 1 is NOT valid: the package was changed after it was signed";
    shows(good, "");

    writeFile(package, goodPackage + 'x');
    shows(bad, changed);
    writeFile(package + ".new", goodPackage);
    QVERIFY(QFile::remove(package) && QFile::rename(package + ".new", package));
    shows(good, "");
    QVERIFY(QFile::remove(signature));
    shows(bad, "not signed");
    writeFile(signature, goodSignature);
    shows(good, "");

    // A clean build, and one that the dialog sees nothing of
    QVERIFY(QDir(inWorkspace("build")).removeRecursively());
    shows(bad, "rpmsign-external: error: package not found: " + package);
    writeFile(package, goodPackage);
    shows(bad, "not signed");
    writeFile(signature, goodSignature);
    shows(good, "");
    m_dialog->hide();
    writeFile(package, goodPackage + 'x');
    m_dialog->show();
    QCOMPARE(text("verifyLabel"), "");
    shows(bad, changed);
    QVERIFY(QDir(inWorkspace("build")).removeRecursively());
}

void SignDialogTest::showsTheLastChoice()
{
    openDialog();
    const auto showsSignedPackageOfCustomerTarget = [this] {
        return !child<QWidget>("binaryKeyLabel")->isHidden()
               && text("developerSignatureShortLabel").startsWith("Subject: CN=Foreign Developer,");
    };
    enterKeys({"", "keys/foreign_key.pem", "keys/foreign_cert.pem"});
    enter("rpmPathChooser", freshPackage("signed.rpm"));
    click("addSignaturePushButton");
    enter("rpmPathChooser", freshPackage("unsigned.rpm"));
    QCOMPARE(dump(), "No signatures found in package");

    // During a run
    enterKeys(ENCRYPTED_KEY);
    when(QApplication::activeModalWidget, [&] {
        child<PathChooser>("rpmPathChooser")->lineEdit()->setText(inWorkspace("signed.rpm"));
        targets()->setCurrentText(CUSTOMER_TARGET);
        m_answers = std::make_unique<PromptAnswers>(QStringList());
    });
    click("addSignaturePushButton");
    QVERIFY(showsSignedPackageOfCustomerTarget());

    // Back and forth while a new target is looked at
    QTimer::singleShot(0, m_dialog, [this] { targets()->setCurrentText(CUSTOMER_TARGET); });
    targets()->setCurrentText(BARE_TARGET);
    waitUntilIdle();
    QCOMPARE(targets()->currentText(), CUSTOMER_TARGET);
    QVERIFY(showsSignedPackageOfCustomerTarget());
}

void SignDialogTest::letsThePackageBeTyped()
{
    openDialog();
    m_dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog));
    const QString path = freshPackage();
    QLineEdit *edit = child<PathChooser>("rpmPathChooser")->lineEdit();
    edit->setFocus();
    int letters = 0;
    QTimer typing;
    connect(&typing, &QTimer::timeout, edit, [&] {
        QTest::keyClick(edit, path.at(letters++).toLatin1());
        if (letters == path.size())
            typing.stop();
    });
    typing.start(20);
    QTRY_COMPARE_WITH_TIMEOUT(edit->text(), path, RUN_TIMEOUT);
    waitUntilIdle();
    QTRY_COMPARE_WITH_TIMEOUT(dump(), "No signatures found in package", RUN_TIMEOUT);
    QVERIFY(edit->hasFocus());
}

QTEST_MAIN(SignDialogTest)
#include "tst_signdialog.moc"
