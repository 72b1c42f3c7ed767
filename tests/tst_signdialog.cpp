#include "dialogdriver.h"
#include "files.h"
#include "messages.h"
#include "processes.h"
#include "promptanswers.h"
#include "rpmpackage.h"
#include "settingsscope.h"
#include "signdata.h"
#include "signdialog.h"
#include "straywarnings.h"
#include "temporarysdk.h"
#include "testrow.h"
#include "tooltips.h"
#include "wrappedprogram.h"

#include <brisk/installation.h>
#include <host/application.h>
#include <utils/pathchooser.h>

#include <QtWidgets>

#include <sys/stat.h>

using namespace Sealkit::Internal;
using Utils::PathChooser;

// Parts of what enterKeys() takes.
const QString ENCRYPTED_KEY = "|keys/encrypted_key.pem|keys/encrypted_cert.pem";
const QString CLIENT_KEY = "|keys/client_key.pem|keys/client_cert.pem";
const QString BUTTONS =
    "addSignaturePushButton removeSignaturePushButton verifySignaturePushButton dumpPushButton";
const QString VERIFIED = "Signatures successfully verified";
const QString NOT_VERIFIED = "Could not verify signatures";

class SignDialogTest : public QObject, private DialogDriver
{
    Q_OBJECT

public slots:
    void browse(const QUrl &url) { m_browsed = url; }

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void offersWhatTheTargetHas_data();
    void offersWhatTheTargetHas();
    void saysWhatTheNextTargetLacks();
    void saysWhyThereAreNoTargets();
    void worksByKeyboard();
    void offersTheRegularPair();
    void opensItsHelp();
    void takesADroppedPackage();
    void hasFieldsForPaths_data();
    void hasFieldsForPaths();
    void signsVerifiesAndRemoves_data();
    void signsVerifiesAndRemoves();
    void saysWhyFieldsAreAtFault();
    void refusesRequests();
    void makesKeysAndRequests_data();
    void makesKeysAndRequests();
    void cleansUpAfterAFailedRequest_data();
    void cleansUpAfterAFailedRequest();
    void remembersChoices();
    void locksItselfDuringARun();
    void takesNoPathForASignature();
    void showsNothingOfTheFormerPackage_data();
    void showsNothingOfTheFormerPackage();
    void looksAgainWhenFilesChange();

private:
    void openOn(const QString &target = RPMSIGN_TARGET)
    {
        QSettings().setValue("KilnRpmSign.History.TargetName", target);
        open(new SignDialog(nullptr));
        QCOMPARE(child<QComboBox>("m_comboBoxBuildTargets")->currentText(), target);
        QCOMPARE(status(), "");
    }
    QString verdict() const { return text("verifyLabel") + '|' + text("verifyReasonLabel"); }
    QString inWorkspace(const QString &path) const { return m_sdk.workspace() + '/' + path; }

    /// In the workspace, with '|' between them: binaries key, developer's key and certificate,
    /// client's key and certificate.
    void enterKeys(const QString &paths) const
    {
        QStringList choosers{
            "binaryKey", "developerKey", "developerCertificate", "clientKey", "clientCertificate"};
        for (const QString &path : paths.split('|')) {
            const QString chooser = choosers.takeFirst() + "PathChooser";
            if (!path.isEmpty())
                enter(chooser, inWorkspace(path));
        }
    }
    void enterRequest(const QString &company, const QString &key) const
    {
        child<QLineEdit>("generateCompanyNameLineEdit")->setText(company);
        enter("generatedKeyPathChooser", key);
        enter("generatedReqPathChooser", inWorkspace("request.pem"));
    }
    QString freshPackage(const QString &name = "hello.rpm") const
    {
        writePackage(inWorkspace(name));
        return inWorkspace(name);
    }
    /// Calls \a action once, from the event loop, when \a condition holds.
    template<class Condition, class Action>
    void when(const Condition &condition, const Action &action)
    {
        QTimer::singleShot(0, this, [this, condition, action] {
            condition() ? action() : when(condition, action);
        });
    }

    SettingsScope m_settings;
    TemporarySdk m_sdk;
    QUrl m_browsed;
    std::unique_ptr<PromptAnswers> m_answers;
};

void SignDialogTest::initTestCase()
{
    QString error;
    QVERIFY2(Brisk::openInstallation(Utils::FilePath::fromString(m_sdk.path()), &error),
             qPrintable(error));
}

void SignDialogTest::init()
{
    failOnStrayWarnings();
    m_settings.clear();
}

void SignDialogTest::cleanup()
{
    delete dialog;
    m_answers.reset();
    QTRY_COMPARE_WITH_TIMEOUT(processesOf(m_sdk.path()), QStringList(), RUN_TIMEOUT);
    const QStringList left = QDir(m_sdk.workspace()).entryList(QDir::Files | QDir::Hidden);
    for (const QString &file : left)
        QFile::remove(inWorkspace(file));
    QCOMPARE(left.filter(".csr_"), QStringList()); // the requests' configurations
}

void SignDialogTest::offersWhatTheTargetHas_data()
{
    addColumns<QString, QString, QString>("target", "offered", "missing");

    addRow("rpmsign-external", RPMSIGN_TARGET, BUTTONS + " requests", "");
    addRow("customer-sign", CUSTOMER_TARGET, BUTTONS + " binaryKeyLabel binaryKeyPathChooser", "");
    const QString missing =
        "Target %1 cannot sign: it has neither rpmsign-external nor customer-sign";
    addRow("no tools", BARE_TARGET, "", missing.arg(BARE_TARGET));
}

void SignDialogTest::offersWhatTheTargetHas()
{
    QFETCH(QString, target);
    QFETCH(QString, offered);
    openOn(target);
    QStringList shown = (BUTTONS + " binaryKeyLabel binaryKeyPathChooser").split(' ');
    shown.removeIf([this](const QString &name) { return child<QWidget>(name)->isHidden(); });
    if (child<QTabWidget>()->isTabVisible(2))
        shown << "requests";
    QCOMPARE(shown.join(' '), offered);
    QTEST(text("toolsNoteLabel"), "missing");
    QVERIFY(child<QLabel>("removeReasonLabel")->isHidden());
    const QSize least = dialog->minimumSizeHint();
    QVERIFY2(least.width() <= 1024 && least.height() <= 700, qPrintable(QDebug::toString(least)));

    Messages messages;
    enter("rpmPathChooser", freshPackage());
    const bool canSign = !offered.isEmpty();
    const QString error = "!Error: unable to find signing tools for the selected target";
    QCOMPARE(messages.take().contains(error), !canSign);
    QCOMPARE(child<QTextEdit>("opensslStatusLabel")->toPlainText().section('\n', 0, 0),
             canSign ? "" : "OpenSSL not found in target '" + target + "', please install it.");
    QCOMPARE(text("verifyLabel"), canSign ? NOT_VERIFIED : "Package can't be verified");
    QCOMPARE(icon("verifyIconLabel"), "BROKEN");
    QCOMPARE(dump(), canSign ? "No signatures found in package" : "Package can't be dumped");
}

void SignDialogTest::saysWhatTheNextTargetLacks()
{
    const QString nxvcert = m_sdk.tool("nxvcert-cli", CUSTOMER_TARGET);
    QVERIFY(QFile::rename(nxvcert, nxvcert + ".away"));
    openOn();
    choose("m_comboBoxBuildTargets", CUSTOMER_TARGET);
    QVERIFY(QFile::rename(nxvcert + ".away", nxvcert));
    QCOMPARE(text("toolsNoteLabel"),
             "Target VeyraOS-4.0-x86_64 can only sign: without nxvcert-cli, signatures are neither "
             "shown nor removed");

    Messages messages;
    choose("m_comboBoxBuildTargets", RPMSIGN_TARGET);
    QCOMPARE(messages.take().filter(" --version"), QStringList()); // it knows this target
}

void SignDialogTest::saysWhyThereAreNoTargets()
{
    const auto mend = qScopeGuard([this] { initTestCase(); });
    const QString targets = m_sdk.path() + "/engine/targets";
    QVERIFY(QFile::rename(targets, targets + ".away") && QDir().mkdir(targets));
    open(new SignDialog(nullptr));
    QVERIFY(QDir().rmdir(targets) && QFile::rename(targets + ".away", targets));
    QCOMPARE(status(), "The build engine has no targets: install one");
    delete dialog;

    QSettings().setValue("Kiln.BriskPath", "/none");
    open(new SignDialog(nullptr));
    QCOMPARE(status(), "The build engine did not start; see the General Messages");
    delete dialog;

    Brisk::closeInstallation();
    open(new SignDialog(nullptr));
    QCOMPARE(status(), "There is no build engine: open or repair the SDK");
    child<QTabWidget>()->setCurrentIndex(2);
    waitUntilIdle();
    QCOMPARE(child<QTextEdit>("opensslStatusLabel")->toPlainText(), "");
}

/// The tab key goes on to the right or down; and no two controls that show have one mnemonic.
void SignDialogTest::worksByKeyboard()
{
    openOn();
    child<QWidget>("binaryKeyLabel")->show(); // as with another target
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    auto *tabs = child<QTabWidget>();
    for (int tab = 0; tab < tabs->count(); ++tab) {
        tabs->setCurrentIndex(tab);
        waitUntilIdle();
        QStringList texts;
        for (int i = 0; i < tabs->count(); ++i)
            texts << tabs->tabText(i);
        for (const QWidget *widget : dialog->findChildren<QWidget *>()) {
            const auto *label = qobject_cast<const QLabel *>(widget);
            // Qt and the IDE see to the buttons inside of theirs.
            const bool isOurButton =
                widget->objectName().endsWith("Button") || widget->inherits("QCheckBox");
            if (widget->isVisible() && (isOurButton || (label && label->buddy())))
                texts << widget->property("text").toString();
        }
        QSet<QKeySequence> mnemonics{QKeySequence()}; // none
        for (const QString &text : std::as_const(texts))
            mnemonics << QKeySequence::mnemonic(text);
        QVERIFY2(mnemonics.size() == 1 + texts.size(), qPrintable(texts.join(", ")));

        QList<QWidget *> visited{child<QWidget>("m_comboBoxBuildTargets")};
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
        QCOMPARE(visited.last()->parent(), child<QDialogButtonBox>());
    }
}

void SignDialogTest::offersTheRegularPair()
{
    const QString folder = inWorkspace(".veyraos-regular-keys/");
    for (const QString name : {"regular_key.pem", "regular_cert.pem"})
        writeFile(folder + name, readFile(m_sdk.path() + "/package-signing/" + name));
    openOn();
    QVERIFY(text("regularKeysLabel").contains("<a href=\"" + folder.chopped(1)));
    const int width = dialog->minimumSizeHint().width();
    const int height = child<QWidget>("addSignaturePushButton")->y();
    click("regularKeysButton");
    QCOMPARE(qobject_cast<SignDialog *>(dialog)->data().key, folder + "regular_key.pem");
    QCOMPARE(
        text("developerCertificateNoteLabel"),
        "Valid until 2043-12-31: CN=Regular Developer, OU=regular, OU=developer, O=Veyra OS Demo");
    QCOMPARE(dialog->minimumSizeHint().width(), width); // the note takes what there is
    QCOMPARE(child<QWidget>("addSignaturePushButton")->y(), height);

    enter("developerKeyPathChooser", inWorkspace("keys/client_key.pem"));
    QVERIFY(text("developerCertificateNoteLabel").startsWith("It belongs to another key. Valid"));
    enter("developerKeyPathChooser", inWorkspace("keys/encrypted_key.pem")); // who knows
    QVERIFY(text("developerCertificateNoteLabel").startsWith("Valid until"));
    enter("developerKeyPathChooser", inWorkspace("keys/client_cert.pem"));
    QCOMPARE(text("developerKeyNoteLabel"), "There is no private key in this file");
    QCOMPARE(child<QWidget>("addSignaturePushButton")->y(), height);
    enter("developerCertificatePathChooser", "");
    QCOMPARE(text("developerCertificateNoteLabel"), "");
}

void SignDialogTest::opensItsHelp()
{
    openOn();
    auto *help = child<QDialogButtonBox>()->button(QDialogButtonBox::Help);
    for (const QString scheme : {"https", "file"})
        QDesktopServices::setUrlHandler(scheme, this, "browse");
    help->click();
    QVERIFY(m_browsed.path().endsWith("/package_signing"));
    const QTemporaryDir installed;
    const QString guide = installed.filePath("doc/qtcreator/sealkit/user-guide.html");
    writeFile(guide, "<html>");
    QVERIFY(QDir().mkpath(installed.filePath("qtcreator")));
    Core::Host::setResourcePath(Utils::FilePath::fromString(installed.filePath("qtcreator")));
    help->click();
    QCOMPARE(QDir::cleanPath(m_browsed.toLocalFile()), guide);
    for (const QString scheme : {"https", "file"})
        QDesktopServices::unsetUrlHandler(scheme);
    help->click();
    QVERIFY2(status().startsWith("No browser opened file:///"), qPrintable(status()));
    Core::Host::setResourcePath({});
    child<QDialogButtonBox>()->button(QDialogButtonBox::Close)->click();
    QVERIFY(!dialog->isVisible());
}

void SignDialogTest::takesADroppedPackage()
{
    openOn();
    const QString package = freshPackage();
    Messages messages;
    for (const QString &path : {inWorkspace("keys/client_key.pem"), package}) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        QDragEnterEvent enters({}, Qt::CopyAction, &data, Qt::LeftButton, {});
        enters.ignore();
        QApplication::sendEvent(dialog, &enters);
        QCOMPARE(enters.isAccepted(), path == package);
        QDropEvent drops({}, Qt::CopyAction, &data, Qt::LeftButton, {});
        if (enters.isAccepted())
            QApplication::sendEvent(dialog, &drops);
    }
    waitUntilIdle();
    QCOMPARE(child<PathChooser>("rpmPathChooser")->filePath().toFSPathString(), package);
    const QStringList looks = messages.take().filter(QRegularExpression(" (verify|dump) "));
    QCOMPARE(looks.size(), 2);
    QVERIFY(looks.last().contains(" dump "));
}

void SignDialogTest::hasFieldsForPaths_data()
{
    addColumns<QString, QString>("history", "hint");

    const QString key = "Select key file (*.pem)";
    const QString certificate = "Select certificate (*.pem)";
    addRow("rpm", "RpmPackage", "Select RPM package");
    addRow("binaryKey", "BinaryKey", key);
    addRow("developerKey", "DeveloperKey", key);
    addRow("developerCertificate", "DeveloperCertificate", certificate);
    addRow("clientKey", "ClientKey", key);
    addRow("clientCertificate", "ClientCertificate", certificate);
    addRow("caCertificate", "CaCertificate", "Select root certificate");
    const QString newKey = "Specify path to save key file or select existing key file";
    addRow("generatedKey", "GeneratedKey", newKey);
    addRow("generatedReq", "GeneratedCsr", "Specify path to save Certificate Signing Request file");
}

void SignDialogTest::hasFieldsForPaths()
{
    QFETCH(QString, history);
    const QString field = QTest::currentDataTag();
    openOn(BARE_TARGET); // looks at packages without running a tool
    const auto *chooser = child<PathChooser>(field + "PathChooser");
    QCOMPARE(chooser->promptDialogTitle() + '|' + chooser->promptDialogFilter(),
             field == "rpm" ? "Select RPM package|RPM package (*.rpm)"
                            : "Select Privacy-Enhanced Mail container|"
                              "Privacy-Enhanced Mail container (*.pem)");
    QTEST(chooser->lineEdit()->placeholderText(), "hint");

    enter(chooser->objectName(), inWorkspace("missing"));
    QCOMPARE(chooser->errorMessage(), field.startsWith("generated") ? "" : "File does not exist");
    enter(chooser->objectName(), "/etc/passwd");
    QCOMPARE(chooser->errorMessage(),
             "The path must be inside workspace folder:\n" + m_sdk.workspace());
    const QString file = inWorkspace("keys/client_key.pem");
    enter(chooser->objectName(), file);
    QVERIFY(chooser->isValid());

    QTest::keyClick(chooser->lineEdit(), Qt::Key_Return);
    QCOMPARE(QSettings().value("CompleterHistory/KilnRpmSign.Data.Completer." + history),
             QStringList(file));
}

void SignDialogTest::signsVerifiesAndRemoves_data()
{
    addColumns<QString, QString, QString, QString>("target", "keys", "developer", "client");

    const auto summary = [](const QString &group, const QString &name, const QString &unit) {
        return QStringLiteral("Subject: CN=%2, OU=%3, OU=%1, O=Veyra OS Demo\nGroup: %1\n")
            .arg(group, name, unit);
    };
    const QString careful = summary("developer", "Careful Developer", "extended");
    const QString client = summary("client", "Demo Client", "shop");
    addRow("rpmsign-external", RPMSIGN_TARGET, ENCRYPTED_KEY + CLIENT_KEY, careful, client);
    addRow("developer only", RPMSIGN_TARGET, ENCRYPTED_KEY, careful, "");
    addRow("customer-sign",
           CUSTOMER_TARGET,
           QString("keys/encrypted_key.pem|%1key.pem|%1cert.pem||%1client-cert.pem")
               .arg("home/.kilnsdk/packages-"),
           summary("developer", "Customer", "customer"),
           summary("client", "Customer of the Client", "customer"));
}

void SignDialogTest::signsVerifiesAndRemoves()
{
    QFETCH(QString, target);
    QFETCH(QString, keys);
    QFETCH(QString, client);
    openOn(target);
    enter("rpmPathChooser", freshPackage());
    enterKeys(keys);
    const PromptAnswers user({"wrong", "demo"});
    click("addSignaturePushButton");
    const QString wrong = "wrong pass phrase for the key: " + inWorkspace("keys/encrypted_key.pem");
    QCOMPARE(user.hints(), QStringList({"", wrong + ", try again"}));
    const QString signer = target == CUSTOMER_TARGET ? "CN=Customer" : "CN=Careful Developer";
    const QString second = client.section(',', 0, 0).replace("Subject: ", ", ");
    QVERIFY2(
        text("signReasonLabel").startsWith("hello.rpm: signed by " + signer + second + " at 2"),
        qPrintable(text("signReasonLabel")));
    QCOMPARE(icon("signStateLabel"), "OK");
    QCOMPARE(verdict() + icon("verifyIconLabel"), VERIFIED + "|OK");
    QTEST(text("developerSignatureShortLabel"), "developer");
    QCOMPARE(text("clientSignatureShortLabel"), client);
    QVERIFY(dump().contains("Key ID: "));
    const auto *clientDump = child<QTextEdit>("clientSignatureTextBrowser");
    QCOMPARE(clientDump->isHidden(), client.isEmpty());
    QVERIFY(clientDump->toPlainText().startsWith(client.section('\n', 0, 0)));

    // Another root, or other ones in its file, is another question.
    auto *root = child<PathChooser>("caCertificatePathChooser")->lineEdit();
    QVERIFY(shownToolTip(root).startsWith("Path to PEM-encoded bundle with root certificates. If"));
    const QString ownRoot = inWorkspace("root.pem");
    writeFile(ownRoot, readFile(inWorkspace("keys/foreign_root.pem")));
    root->setText(ownRoot);
    QCOMPARE(verdict() + icon("verifyIconLabel"), "|");
    waitUntilIdle();
    const QString foreign = "|signature 1 is NOT valid: its certificate is not issued by";
    QVERIFY2(verdict().startsWith(NOT_VERIFIED + foreign), qPrintable(verdict()));
    writeFile(ownRoot, readFile(inWorkspace("keys/demo_root.pem")));
    QTRY_COMPARE_WITH_TIMEOUT(verdict() + icon("verifyIconLabel"), VERIFIED + "|OK", RUN_TIMEOUT);

    {
        const WrappedProgram broken(
            m_sdk.tool(target == CUSTOMER_TARGET ? "nxvcert-cli" : "rpmsign-external", target),
            "delete",
            "echo 'error: no room'; exit 1");
        click("removeSignaturePushButton");
        QVERIFY(text("removeReasonLabel").startsWith("hello.rpm: removing failed at 2"));
        QCOMPARE(text("removeReasonLabel").section('\n', 1), "error: no room");
        QCOMPARE(icon("signStateLabel"), "OK"); // is of the signing
    }
    click("removeSignaturePushButton");
    QCOMPARE(text("removeReasonLabel"), "");
    QCOMPARE(verdict().section('\n', 0, 0), NOT_VERIFIED + "|not signed");
    QCOMPARE(dump(), "No signatures found in package");
    QCOMPARE(text("developerSignatureShortLabel") + text("clientSignatureShortLabel"), "");
    enter("rpmPathChooser", "");
    QCOMPARE(verdict(), "|");
}

void SignDialogTest::saysWhyFieldsAreAtFault()
{
    openOn(CUSTOMER_TARGET);
    enter("rpmPathChooser", freshPackage());
    enterKeys(ENCRYPTED_KEY + "|keys/client_key.pem");
    Messages messages;
    click("addSignaturePushButton");
    QCOMPARE(status(), "Error: keys and certificate can't be empty"); // the binaries key is
    QCOMPARE(icon("signStateLabel") + text("signReasonLabel").section('\n', 1),
             "BROKEN" + status());
    QVERIFY(text("signReasonLabel").startsWith("hello.rpm: signing failed at 2"));
    QCOMPARE(messages.take().filter(" --binaries-key "), QStringList());

    // What is said of fields goes with them; the line on the failure stays, like the mark.
    enter("binaryKeyPathChooser", "x");
    QCOMPARE(status() + text("signReasonLabel").section('\n', 1), "");
    QVERIFY(text("signReasonLabel").startsWith("hello.rpm: signing failed at 2"));
    enter("binaryKeyPathChooser", "");
    click("addSignaturePushButton");
    QVERIFY(!status().isEmpty());
    child<QPushButton>("dumpPushButton")->click(); // its tab stays where it is
    waitUntilIdle();
    QCOMPARE(status(), "");
    click("addSignaturePushButton");
    child<QTabWidget>()->setCurrentIndex(1);
    QCOMPARE(status(), "");

    // The other target needs no binaries key. The problem is gone while its tool asks.
    choose("m_comboBoxBuildTargets", RPMSIGN_TARGET);
    QString meanwhile;
    when(QApplication::activeModalWidget, [&] {
        meanwhile = icon("signStateLabel") + text("signReasonLabel") + status();
        m_answers = std::make_unique<PromptAnswers>(QStringList{"demo", "demo"});
    });
    click("addSignaturePushButton");
    QCOMPARE(meanwhile, "");
    const QString note = "No client signature was added: it needs a client key and its certificate";
    QCOMPARE(icon("signStateLabel"), "OK");
    QCOMPARE(status(), note);
    QCOMPARE(messages.take().filter(note), QStringList("[W]\t" + note));

    enterKeys("||||keys/client_cert.pem");
    click("addSignaturePushButton");
    QCOMPARE(status() + messages.take().filter(note).join('\n'), "");
}

void SignDialogTest::refusesRequests()
{
    openOn();
    click("genReqButton");
    QCOMPARE(status(), "Company name field cannot be empty");
    child<QLineEdit>("generateCompanyNameLineEdit")->setText("Company");
    click("genReqButton");
    QCOMPARE(status(), "Key field cannot be empty");
    enter("generatedKeyPathChooser", inWorkspace("key.pem"));
    click("genReqButton");
    QCOMPARE(status(), "Request field cannot be empty");
    QCOMPARE(icon("generateLabel") + text("generateReasonLabel"), "BROKEN" + status());
    child<QLineEdit>("generateCompanyNameLineEdit")->setText("Other");
    QCOMPARE(status() + icon("generateLabel") + text("generateReasonLabel"), "");
    click("genReqButton");
    QVERIFY(!status().isEmpty());
    choose("m_comboBoxBuildTargets", CUSTOMER_TARGET);
    QCOMPARE(status() + icon("generateLabel") + text("generateReasonLabel"), "");
}

void SignDialogTest::makesKeysAndRequests_data()
{
    addColumns<int, bool, QString, QString>("algorithm", "encrypt", "company", "publicKey");

    const QString gost = "GOST R 34.10-2012 with 256 bit modulus";
    addRow("RSA, encrypted", int(RSA), true, "ООО «Ромашка» O'Reilly's", "rsaEncryption");
    addRow("GOST", int(GOST), false, "A=B, C/D; E+F <%COMPANY_NAME%> @{1}", gost);
}

void SignDialogTest::makesKeysAndRequests()
{
    if (lacksGost())
        QSKIP("The targets' openssl knows no GOST.");
    QFETCH(bool, encrypt);
    QFETCH(int, algorithm);
    QFETCH(QString, company);
    QFETCH(QString, publicKey);
    openOn();
    const QString key = inWorkspace("new key.pem");
    enterRequest(company, key);
    child<QComboBox>("generationKeyAlgoComboBox")->setCurrentIndex(algorithm);
    child<QCheckBox>("generationKeyEncryptCheckBox")->setChecked(encrypt);

    // The key is for its owner only, also before it is complete, and whatever the user allows.
    QFile::Permissions permissions;
    QTimer watch;
    watch.callOnTimeout([&] { permissions |= QFile::permissions(key); });
    watch.start(1);
    const mode_t mask = umask(0);
    const PromptAnswers prompts(QStringList(4, "Пароль 1"));
    click("genReqButton");
    umask(mask);
    permissions |= QFile::permissions(key);
    constexpr int USER_FLAGS = 0x0700; // the same once more, for this process
    QCOMPARE(permissions & ~USER_FLAGS, QFile::ReadOwner | QFile::WriteOwner);
    const QString forKey = " of two times, for the new key " + key;
    QCOMPARE(prompts.hints(),
             encrypt ? QStringList({"First" + forKey, "Second" + forKey, ""}) : QStringList());
    QCOMPARE(icon("generateLabel") + text("generateReasonLabel") + status(), "OK");
    QCOMPARE(readFile(key).contains("ENCRYPTED"), encrypt);

    QProcess openssl; // the target's, which knows GOST
    openssl.setProcessChannelMode(QProcess::MergedChannels);
    const QString options =
        "req -verify -noout -text -subject -nameopt sname,sep_multiline,utf8 -in";
    openssl.start(m_sdk.tool("openssl"), options.split(' ') << inWorkspace("request.pem"));
    QVERIFY(openssl.waitForFinished(RUN_TIMEOUT));
    const QString request = QString::fromUtf8(openssl.readAll());
    // The key is there now: what is chosen for a new one does not matter any more.
    const QWidget *keyOptions[] = {child<QComboBox>("generationKeyAlgoComboBox"),
                                   child<QCheckBox>("generationKeyEncryptCheckBox")};
    for (const QWidget *option : keyOptions)
        QVERIFY(!option->isEnabled() && option->toolTip() == text("generatedKeyNoteLabel"));
    click("genReqButton");
    const QString kind = algorithm == GOST ? "GOST R 34.10-2012 (256)" : "RSA";
    QCOMPARE(text("generateReasonLabel"), "The existing key " + key + " was used (" + kind + ')');
    enter("generatedKeyPathChooser", inWorkspace("keys/client_cert.pem"));
    QCOMPARE(text("generatedKeyNoteLabel"), "There is no private key in this file");
    enter("generatedKeyPathChooser", inWorkspace("next.pem"));
    QVERIFY(keyOptions[0]->isEnabled() && keyOptions[1]->isEnabled());

    for (const QString &part : {QString("verify OK"), "\n    CN=" + company + '\n', publicKey})
        QVERIFY2(request.contains(part), qPrintable(part + " is not in " + request));
}

void SignDialogTest::cleansUpAfterAFailedRequest_data()
{
    addColumns<QStringList, QString, int>("answers", "reason", "promptsOfNextTry");

    const QString cancelled = "Cancelled: no pass phrase was given";
    addRow("first prompt declined", QStringList{{}}, cancelled, 3);
    addRow("repetition differs",
           QStringList{"pass", "another"},
           "The two pass phrases differ (Verify failure)",
           3);
    addRow(
        "too short", QStringList{"abc"}, "A pass phrase has 4 to 1024 bytes (result too small)", 3);
    addRow("use of the complete key declined", QStringList{"pass", "pass", {}}, cancelled, 1);
}

void SignDialogTest::cleansUpAfterAFailedRequest()
{
    QFETCH(QStringList, answers);
    QFETCH(QString, reason);
    openOn();
    enterRequest("Company", inWorkspace("key.pem"));
    Messages messages;
    m_answers = std::make_unique<PromptAnswers>(answers);
    click("genReqButton");
    QCOMPARE(m_answers->prompts().size(), answers.size());
    QCOMPARE(icon("generateLabel") + text("generateReasonLabel"), "BROKEN" + reason);
    QCOMPARE(messages.take().contains("[W]\t" + reason), reason.startsWith("Cancelled"));
    QVERIFY2(status().startsWith("Failed to generate request: "), qPrintable(status()));
    QVERIFY(!QFile::exists(inWorkspace("request.pem")));

    m_answers = std::make_unique<PromptAnswers>(QStringList(3, "pass"));
    click("genReqButton");
    QTEST(int(m_answers->prompts().size()), "promptsOfNextTry");
    QCOMPARE(icon("generateLabel") + status(), "OK");
}

void SignDialogTest::remembersChoices()
{
    openOn(CUSTOMER_TARGET);
    child<QComboBox>("generationKeyAlgoComboBox")->setCurrentIndex(GOST);
    child<QCheckBox>("generationKeyEncryptCheckBox")->click(); // was checked
    choose("m_comboBoxBuildTargets", BARE_TARGET);
    const QSize size = dialog->size() + QSize(30, 20);
    dialog->resize(size);
    dialog->setAttribute(Qt::WA_Moved, false); // as when a window manager has moved it
    dialog->hide();
    QVERIFY(dialog->testAttribute(Qt::WA_Moved)); // else it would be centred when it is shown again
    delete dialog;

    delete new SignDialog(nullptr); // gone before it knows a target
    QCOMPARE(QSettings().value("KilnRpmSign.History.TargetName"), BARE_TARGET);
    QCOMPARE(QSettings().value("KilnRpmSign.History.GenerationAlgorythm"), int(GOST));
    QCOMPARE(QSettings().value("KilnRpmSign.History.GenerationEncrypt"), false);
    QVERIFY(QSettings().contains("KilnRpmSign.History.Geometry"));

    openOn(BARE_TARGET);
    QCOMPARE(child<QComboBox>("generationKeyAlgoComboBox")->currentIndex(), int(GOST));
    QVERIFY(!child<QCheckBox>("generationKeyEncryptCheckBox")->isChecked());
    QCOMPARE(dialog->size(), size);
    delete dialog;

    QSettings().setValue("KilnRpmSign.History.TargetName", "VeyraOS-1.0");
    open(new SignDialog(nullptr));
    QCOMPARE(child<QComboBox>("m_comboBoxBuildTargets")->currentText(), RPMSIGN_TARGET);
}

void SignDialogTest::locksItselfDuringARun()
{
    openOn();
    enterKeys(ENCRYPTED_KEY);
    // The first letter of the package's path starts a run, and the user types on.
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    const QString path = freshPackage();
    QLineEdit *edit = child<PathChooser>("rpmPathChooser")->lineEdit();
    edit->setFocus();
    when([this] { return !child<QWidget>("genReqButton")->isEnabled(); },
         [&] { QTest::keyClicks(edit, path.mid(1)); });
    QTest::keyClicks(edit, path.left(1));
    waitUntilIdle();
    QCOMPARE(edit->text(), path);

    const QString lockable = BUTTONS + " genReqButton m_comboBoxBuildTargets rpmPathChooser";
    const auto enabled = [&] {
        QStringList names = lockable.split(' ');
        names.removeIf([&](const QString &name) { return !child<QWidget>(name)->isEnabled(); });
        return names.join(' ');
    };
    Messages messages;
    QString meanwhile;
    when(QApplication::activeModalWidget, [&] {
        messages.take();
        child<QTabWidget>()->setCurrentIndex(2); // asks for openssl
        QTest::qWait(50);
        meanwhile = (isBusy() ? "" : "idle") + enabled() + messages.take().join('\n');
        m_answers = std::make_unique<PromptAnswers>(QStringList());
    });
    child<QWidget>("addSignaturePushButton")->setFocus();
    click("addSignaturePushButton");
    QCOMPARE(meanwhile, "");
    QCOMPARE(text("signReasonLabel").section('\n', 1), "Cancelled: no pass phrase was given");
    QCOMPARE(enabled(), lockable);
    QCOMPARE(messages.take().filter(" openssl version").size(), 1);
}

void SignDialogTest::takesNoPathForASignature()
{
    const WrappedProgram tool(
        m_sdk.tool("rpmsign-external"), "dump", "printf '%s\\n' \"$2\"; exit 0");
    openOn();
    enter("rpmPathChooser", freshPackage("Subject: CN=Somebody.rpm"));
    QCOMPARE(dump(), "No signatures found in package");
}

void SignDialogTest::showsNothingOfTheFormerPackage_data()
{
    addColumns<QString, QString>("button", "nextPackage");

    addRow("verify", "verifySignaturePushButton", "unsigned.rpm");
    addRow("dump", "dumpPushButton", "unsigned.rpm");
    addRow("verify, the same package", "verifySignaturePushButton", "signed.rpm");
}

/// Another target is chosen while a tool looks at the package, then another package; so the tools
/// of the new target run first.
void SignDialogTest::showsNothingOfTheFormerPackage()
{
    QFETCH(QString, button);
    openOn();
    enterKeys(CLIENT_KEY);
    enter("rpmPathChooser", freshPackage("signed.rpm"));
    click("addSignaturePushButton");
    QCOMPARE(text("verifyLabel"), VERIFIED);

    QFETCH(QString, nextPackage);
    freshPackage("unsigned.rpm");
    const HeldProgram looking(m_sdk.tool("rpmsign-external"), button.left(4).toUtf8());
    const HeldProgram probing(m_sdk.tool("customer-sign", CUSTOMER_TARGET), "--help");
    QString meanwhile;
    when([&] { return looking.isWaiting(); },
         [&] {
             child<QComboBox>("m_comboBoxBuildTargets")->setCurrentText(CUSTOMER_TARGET);
             child<PathChooser>("rpmPathChooser")->lineEdit()->setText(inWorkspace(nextPackage));
             meanwhile = verdict();
             looking.release();
         });
    when([&] { return probing.isWaiting(); },
         [&] {
             meanwhile += button == "dumpPushButton" ? dump() : verdict();
             probing.release();
         });
    click(button);
    QCOMPARE(meanwhile.remove('|'), "");
    if (nextPackage != "unsigned.rpm")
        return;
    QCOMPARE(verdict().section('\n', 0, 0), NOT_VERIFIED + "|not signed");
    QCOMPARE(dump(), "No signatures found in package");
}

void SignDialogTest::looksAgainWhenFilesChange()
{
    openOn();
    enterKeys(CLIENT_KEY);
    const QString package = freshPackage("build/RPMS/a.rpm");
    enter("rpmPathChooser", package);
    Messages messages;
    click("addSignaturePushButton");
    QTest::qWait(1000);                                  // a change would be noticed by then
    QCOMPARE(messages.take().filter("[$] 0").size(), 3); // signed, verified and dumped, once
    const QByteArray goodPackage = readFile(package);
    const auto shows = [this](const QString &expected) {
        [&] { QTRY_COMPARE_WITH_TIMEOUT(verdict().section('\n', 0, 0), expected, RUN_TIMEOUT); }();
        waitUntilIdle();
    };
    const QString changed =
        NOT_VERIFIED + "|signature 1 is NOT valid: the package was changed after it was signed";
    shows(VERIFIED + '|');

    // A twin of the same size and time takes its place, and is watched in turn.
    writeFile(package + ".new", QByteArray(goodPackage).replace(".rpm", ".RPM"));
    QFile twin(package + ".new");
    QVERIFY(twin.open(QIODevice::ReadWrite)
            && twin.setFileTime(QFileInfo(package).lastModified(), QFile::FileModificationTime));
    QVERIFY(QFile::remove(package) && twin.rename(package));
    shows(changed);
    writeFile(package, goodPackage);
    shows(VERIFIED + '|');
    writePackage(package);
    shows(NOT_VERIFIED + "|not signed");
    QVERIFY(QDir(inWorkspace("build")).removeRecursively()); // a clean build
    shows(NOT_VERIFIED + "|rpmsign-external: error: package not found: " + package);
    writeFile(package, goodPackage);
    shows(VERIFIED + '|');

    dialog->hide();
    writeFile(package, goodPackage + 'x');
    dialog->show();
    QCOMPARE(text("verifyLabel"), "");
    shows(changed);
    QVERIFY(QDir(inWorkspace("build")).removeRecursively());
}

QTEST_MAIN(SignDialogTest)
#include "tst_signdialog.moc"
