#include "messages.h"
#include "promptanswers.h"
#include "settingsscope.h"
#include "signdata.h"
#include "signdialog.h"
#include "straywarnings.h"
#include "temporarysdk.h"

#include <brisk/sdk.h>
#include <utils/pathchooser.h>
#include <utils/utilsicons.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBrowser>

using namespace Sealkit::Internal;
using Utils::FilePath;
using Utils::PathChooser;

constexpr int RUN_TIMEOUT = 20'000;

class SignDialogTest : public QObject
{
    Q_OBJECT

public slots:
    void open(const QUrl &url) { m_openedUrl = url; }

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void summarizesDumps_data();
    void summarizesDumps();
    void offersWhatTheTargetHas_data();
    void offersWhatTheTargetHas();
    void tabKeyFollowsTheEye_data();
    void tabKeyFollowsTheEye();
    void judgesPaths_data();
    void judgesPaths();
    void linksToTheRegularKeys();
    void signsVerifiesAndRemoves_data();
    void signsVerifiesAndRemoves();
    void tellsThatSigningFailed_data();
    void tellsThatSigningFailed();
    void requestsNeedAllFields();
    void makesKeysAndRequests_data();
    void makesKeysAndRequests();
    void writesCompanyNames_data();
    void writesCompanyNames();
    void cleansUpAfterADeclinedPrompt_data();
    void cleansUpAfterADeclinedPrompt();
    void remembersChoices();
    void locksItselfDuringARun();
    void showsTheLastChoice();
    void letsThePackageBeTyped();
    void survivesItsEndDuringARun_data();
    void survivesItsEndDuringARun();
    void survivesItsEndDuringTheEnginesStart();

private:
    template<class Widget>
    Widget *child(const QString &name) const
    {
        return m_dialog->findChild<Widget *>(name);
    }
    QString text(const QString &label) const { return child<QLabel>(label)->text(); }
    QString status() const { return m_dialog->findChild<QStatusBar *>()->currentMessage(); }
    QString inWorkspace(const QString &path) const { return m_sdk.workspace() + '/' + path; }

    void openDialog(const QString &target = RPMSIGN_TARGET)
    {
        QSettings().setValue("KilnRpmSign.History.TargetName", target);
        m_dialog = new SignDialog(nullptr);
        m_dialog->show();
        QCOMPARE(status(), "Updating targets...");
        QTRY_COMPARE_WITH_TIMEOUT(status(), QString(), RUN_TIMEOUT);
        QCOMPARE(child<QComboBox>("m_comboBoxBuildTargets")->currentText(), target);
    }

    void waitUntilIdle() const
    {
        QCoreApplication::processEvents();
        QTRY_VERIFY_WITH_TIMEOUT(child<QProgressBar>("busyIndicator")->isHidden(), RUN_TIMEOUT);
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
        const QStringList choosers{"binaryKeyPathChooser",
                                   "developerKeyPathChooser",
                                   "developerCertificatePathChooser",
                                   "clientKeyPathChooser",
                                   "clientCertificatePathChooser"};
        for (int i = 0; i < paths.size(); ++i) {
            if (!paths.at(i).isEmpty())
                enter(choosers.at(i), inWorkspace(paths.at(i)));
        }
    }

    void click(const QString &button) const
    {
        auto *pushButton = child<QPushButton>(button);
        for (QWidget *page = pushButton; page; page = page->parentWidget()) {
            if (const int index = child<QTabWidget>("tabWidget")->indexOf(page); index >= 0)
                child<QTabWidget>("tabWidget")->setCurrentIndex(index);
        }
        waitUntilIdle();
        QTest::mouseClick(pushButton, Qt::LeftButton);
        waitUntilIdle();
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

    QString dump(const QString &browser) const
    {
        return child<QTextBrowser>(browser)->toPlainText();
    }

    void enterRequest(const QString &company, const QString &key) const
    {
        child<QLineEdit>("generateCompanyNameLineEdit")->setText(company);
        enter("generatedKeyPathChooser", key);
        enter("generatedReqPathChooser", inWorkspace("request.pem"));
    }

    QString freshPackage(const QString &name = "hello.rpm") const
    {
        QFile file(inWorkspace(name));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("%s", qPrintable(file.errorString()));
        file.write("\xed\xab\xee\xdb" + name.toUtf8());
        return file.fileName();
    }

    QByteArray contentOf(const QString &path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Checks the request's signature with the target's openssl, which knows GOST, and shows more
    /// of it.
    QString describeRequest(const QStringList &options) const
    {
        QProcess openssl;
        openssl.setProcessChannelMode(QProcess::MergedChannels);
        openssl.start(m_sdk.path() + "/engine/targets/" + RPMSIGN_TARGET + "/bin/openssl",
                      QStringList{"req", "-verify", "-noout", "-in", inWorkspace("request.pem")}
                          + options);
        openssl.waitForFinished(RUN_TIMEOUT);
        return QString::fromUtf8(openssl.readAll());
    }

    QStringList configurations() const
    {
        return QDir(m_sdk.workspace()).entryList({".csr_*"}, QDir::Files | QDir::Hidden);
    }

    QStringList processesOfTheSdk() const
    {
        QStringList commandLines;
        for (const QString &process : QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs)) {
            QFile file("/proc/" + process + "/cmdline");
            if (!file.open(QIODevice::ReadOnly))
                continue;
            const QByteArray commandLine = file.readAll().replace('\0', ' ');
            if (commandLine.contains(m_sdk.path().toUtf8()))
                commandLines << QString::fromUtf8(commandLine);
        }
        return commandLines;
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
    QUrl m_openedUrl;
};

void SignDialogTest::initTestCase()
{
    QString error;
    QVERIFY2(Brisk::Sdk::open(FilePath::fromString(m_sdk.path()), &error), qPrintable(error));
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
    QTRY_COMPARE_WITH_TIMEOUT(processesOfTheSdk(), QStringList(), RUN_TIMEOUT);
    for (const QString &file : QDir(m_sdk.workspace()).entryList(QDir::Files | QDir::Hidden))
        QFile::remove(inWorkspace(file));
}

void SignDialogTest::summarizesDumps_data()
{
    QTest::addColumn<QString>("dump");
    QTest::addColumn<QString>("summary");

    QTest::newRow("subject and group only")
        << "Subject: CN=A\nSubgroup: s\nGroup: developer\nKey ID: 1\nSignature: RSA"
        << "Subject: CN=A\nGroup: developer\n";
    QTest::newRow("from the keyword on") << "1. Subject: CN=A"
                                         << "Subject: CN=A\n";
    QTest::newRow("first keyword of a line wins") << "Key ID: Subject: x\nGroup:"
                                                  << "Group:\n";
    QTest::newRow("case matters") << "subject: a\nGROUP: b"
                                  << "";
}

void SignDialogTest::summarizesDumps()
{
    QFETCH(QString, dump);
    QTEST(parseDumpForSort(dump), "summary");
}

void SignDialogTest::offersWhatTheTargetHas_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("offered");
    QTest::addColumn<QString>("opensslNotice");

    const QString buttons = "addSignaturePushButton removeSignaturePushButton "
                            "verifySignaturePushButton dumpPushButton";
    QTest::newRow("rpmsign-external") << RPMSIGN_TARGET << buttons + " requests"
                                      << "";
    QTest::newRow("customer-sign")
        << CUSTOMER_TARGET << buttons + " binaryKeyLabel binaryKeyPathChooser"
        << "";
    QTest::newRow("no tools")
        << BARE_TARGET << ""
        << "OpenSSL not found in target 'VeyraOS-3.4-x86_64', please install it.\n"
           "Available in: Tools - Options - Veyra OS - Manage Build Targets";
}

void SignDialogTest::offersWhatTheTargetHas()
{
    QFETCH(QString, target);
    QFETCH(QString, offered);
    openDialog(target);

    QStringList shown = QString("addSignaturePushButton removeSignaturePushButton "
                                "verifySignaturePushButton dumpPushButton binaryKeyLabel "
                                "binaryKeyPathChooser")
                            .split(' ');
    shown.removeIf([this](const QString &name) { return child<QWidget>(name)->isHidden(); });
    if (child<QTabWidget>("tabWidget")->isTabVisible(2))
        shown << "requests";
    QCOMPARE(shown.join(' '), offered);
    QTEST(child<QTextEdit>("opensslStatusLabel")->toPlainText(), "opensslNotice");
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
    QCOMPARE(dump("developerSignatureTextBrowser"),
             canSign ? "No signatures found in package" : "Package can't be dumped");
}

void SignDialogTest::tabKeyFollowsTheEye_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("last");
    QTest::newRow("sign") << 0 << "regularKeysLabel";
    QTest::newRow("verify") << 1 << "developerSignatureTextBrowser";
    QTest::newRow("request") << 2 << "genReqButton";
}

void SignDialogTest::tabKeyFollowsTheEye()
{
    QFETCH(int, tab);
    openDialog();
    m_dialog->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog));
    child<QTabWidget>("tabWidget")->setCurrentIndex(tab);
    waitUntilIdle();

    QList<QWidget *> visited{child<QComboBox>("m_comboBoxBuildTargets")};
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
    QTEST(visited.last()->objectName(), "last");
}

void SignDialogTest::judgesPaths_data()
{
    QTest::addColumn<QString>("chooser");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("problem");

    const QString outside = "The path must be inside workspace folder:\n" + m_sdk.workspace();
    for (const char *chooser : {"rpmPathChooser",
                                "binaryKeyPathChooser",
                                "developerKeyPathChooser",
                                "developerCertificatePathChooser",
                                "clientKeyPathChooser",
                                "clientCertificatePathChooser",
                                "caCertificatePathChooser"}) {
        QTest::addRow("%s: missing", chooser)
            << chooser << inWorkspace("missing") << "File does not exist";
    }
    for (const char *chooser : {"generatedKeyPathChooser", "generatedReqPathChooser"}) {
        QTest::addRow("%s: missing", chooser) << chooser << inWorkspace("missing") << "";
        QTest::addRow("%s: outside", chooser) << chooser << "/tmp/new.pem" << outside;
    }
    QTest::newRow("outside") << "developerKeyPathChooser"
                             << "/etc/passwd" << outside;
    QTest::newRow("there") << "developerKeyPathChooser" << inWorkspace("keys/client_key.pem") << "";
}

void SignDialogTest::judgesPaths()
{
    QFETCH(QString, chooser);
    QFETCH(QString, path);
    openDialog(BARE_TARGET); // looks at packages without running a tool

    const auto *pathChooser = child<PathChooser>(chooser);
    QVERIFY(pathChooser->isValid()); // empty
    enter(chooser, path);
    QTEST(pathChooser->errorMessage(), "problem");
    QCOMPARE(pathChooser->isValid(), pathChooser->errorMessage().isEmpty());
}

void SignDialogTest::linksToTheRegularKeys()
{
    QDir(m_sdk.workspace()).mkdir(".veyraos-regular-keys");
    openDialog(BARE_TARGET);
    QVERIFY(text("regularKeysLabel").contains("<a href=\"" + inWorkspace(".veyraos-regular-keys")));

    QDesktopServices::setUrlHandler("file", this, "open");
    emit child<QLabel>("regularKeysLabel")->linkActivated({});
    QDesktopServices::unsetUrlHandler("file");
    QCOMPARE(m_openedUrl.toLocalFile(), inWorkspace(".veyraos-regular-keys"));
}

void SignDialogTest::signsVerifiesAndRemoves_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QStringList>("answers");
    QTest::addColumn<QString>("developer");
    QTest::addColumn<QString>("client");

    const QStringList encryptedKey{"", "keys/encrypted_key.pem", "keys/encrypted_cert.pem"};
    const QStringList clientKey{"keys/client_key.pem", "keys/client_cert.pem"};
    const QString careful =
        "Subject: CN=Careful Developer,OU=extended,OU=developer,O=Veyra OS Demo\n"
        "Group: developer\n";
    QTest::newRow("rpmsign-external")
        << RPMSIGN_TARGET << encryptedKey + clientKey << QStringList{"demo"} << careful
        << "Subject: CN=Demo Client,OU=shop,OU=client,O=Veyra OS Demo\nGroup: client\n";
    QTest::newRow("developer only")
        << RPMSIGN_TARGET << encryptedKey << QStringList{"demo"} << careful << "";

    const QString home = "home/.kilnsdk/";
    QTest::newRow("customer-sign")
        << CUSTOMER_TARGET
        << QStringList{home + "binaries-key.pem",
                       home + "packages-key.pem",
                       home + "packages-cert.pem",
                       "",
                       home + "packages-client-cert.pem"}
        << QStringList()
        << "Subject: CN=Customer,OU=customer,OU=developer,O=Veyra OS Demo\nGroup: developer\n"
        << "Subject: CN=Customer of the Client,OU=customer,OU=client,O=Veyra OS Demo\n"
           "Group: client\n";
}

void SignDialogTest::signsVerifiesAndRemoves()
{
    QFETCH(QString, target);
    QFETCH(QStringList, keys);
    QFETCH(QStringList, answers);
    QFETCH(QString, client);
    openDialog(target);
    enter("rpmPathChooser", freshPackage());
    enterKeys(keys);

    const PromptAnswers prompts(answers);
    click("addSignaturePushButton");
    QCOMPARE(prompts.prompts().size(), answers.size());
    QCOMPARE(icon("signStateLabel"), "OK");
    QCOMPARE(text("verifyLabel"), "Signatures successfully verified");
    QCOMPARE(icon("verifyIconLabel"), "OK");
    QTEST(text("developerSignatureShortLabel"), "developer");
    QCOMPARE(text("clientSignatureShortLabel"), client);
    QVERIFY(dump("developerSignatureTextBrowser").contains("Key ID: "));
    QCOMPARE(child<QWidget>("clientSignatureTextBrowser")->isHidden(), client.isEmpty());

    enter("caCertificatePathChooser", inWorkspace("keys/foreign_root.pem"));
    click("verifySignaturePushButton");
    QCOMPARE(text("verifyLabel"), "Could not verify signatures");
    QCOMPARE(icon("verifyIconLabel"), "BROKEN");
    enter("caCertificatePathChooser", inWorkspace("keys/demo_root.pem"));
    click("verifySignaturePushButton");
    QCOMPARE(icon("verifyIconLabel"), "OK");

    click("removeSignaturePushButton");
    QCOMPARE(icon("signStateLabel"), "OK"); // still of the last signing
    QCOMPARE(text("verifyLabel"), "Could not verify signatures");
    QCOMPARE(dump("developerSignatureTextBrowser"), "No signatures found in package");
    QCOMPARE(text("developerSignatureShortLabel") + text("clientSignatureShortLabel"), "");

    // Without a package nothing is judged, and the dump stays.
    enter("rpmPathChooser", "");
    click("addSignaturePushButton");
    QCOMPARE(icon("signStateLabel"), "OK");
    QCOMPARE(text("verifyLabel") + icon("verifyIconLabel"), "");
    QCOMPARE(dump("developerSignatureTextBrowser"), "No signatures found in package");
}

void SignDialogTest::tellsThatSigningFailed_data()
{
    QTest::addColumn<QString>("certificate");
    QTest::addColumn<QStringList>("answers");

    QTest::newRow("declined prompt") << "keys/encrypted_cert.pem" << QStringList();
    QTest::newRow("wrong pass phrase") << "keys/encrypted_cert.pem" << QStringList{"wrong"};
    QTest::newRow("foreign certificate") << "keys/client_cert.pem" << QStringList{"demo"};
}

void SignDialogTest::tellsThatSigningFailed()
{
    QFETCH(QString, certificate);
    QFETCH(QStringList, answers);
    openDialog();
    enter("rpmPathChooser", freshPackage());
    enterKeys({"", "keys/encrypted_key.pem", certificate});

    const PromptAnswers prompts(answers);
    click("addSignaturePushButton");
    QCOMPARE(icon("signStateLabel"), "BROKEN");
    QCOMPARE(dump("developerSignatureTextBrowser"), "No signatures found in package");
}

void SignDialogTest::requestsNeedAllFields()
{
    openDialog();
    const QSignalSpy messages(m_dialog->findChild<QStatusBar *>(), &QStatusBar::messageChanged);
    click("genReqButton");
    QCOMPARE(icon("generateLabel"), "BROKEN");
    child<QLineEdit>("generateCompanyNameLineEdit")->setText("Company");
    click("genReqButton");
    enter("generatedKeyPathChooser", inWorkspace("key.pem"));
    click("genReqButton");

    QStringList shown;
    for (const QVariantList &message : messages)
        shown << message.first().toString();
    QCOMPARE(shown,
             (QStringList{"Company name field cannot be empty",
                          "",
                          "Key field cannot be empty",
                          "",
                          "Request field cannot be empty"}));
    QVERIFY(!QFile::exists(inWorkspace("key.pem")));
}

void SignDialogTest::makesKeysAndRequests_data()
{
    QTest::addColumn<int>("algorithm");
    QTest::addColumn<bool>("encrypt");
    QTest::addColumn<QString>("publicKey");

    QTest::newRow("RSA") << int(RSA) << false << "rsaEncryption";
    QTest::newRow("RSA, encrypted") << int(RSA) << true << "rsaEncryption";
    QTest::newRow("GOST") << int(GOST) << false << "GOST R 34.10-2012 with 256 bit modulus";
    QTest::newRow("GOST, encrypted")
        << int(GOST) << true << "GOST R 34.10-2012 with 256 bit modulus";
}

void SignDialogTest::makesKeysAndRequests()
{
    QFETCH(bool, encrypt);
    QFETCH(int, algorithm);
    QFETCH(QString, publicKey);
    openDialog();
    const QString key = inWorkspace("new key.pem");
    enterRequest("Company", key);
    child<QComboBox>("generationKeyAlgoComboBox")->setCurrentIndex(algorithm);
    child<QCheckBox>("generationKeyEncryptCheckBox")->setChecked(encrypt);

    const PromptAnswers prompts({"Пароль 1", "Пароль 1", "Пароль 1"});
    click("genReqButton");
    QCOMPARE(prompts.prompts(),
             encrypt ? QStringList({"Enter PEM pass phrase:",
                                    "Verifying - Enter PEM pass phrase:",
                                    "Enter pass phrase for " + key + ":"})
                     : QStringList());
    QCOMPARE(icon("generateLabel"), "OK");
    QCOMPARE(status(), "");
    const QString request = describeRequest({"-text"});
    QVERIFY2(request.contains("verify OK"), qPrintable(request));
    QVERIFY2(request.contains("Subject: CN = Company"), qPrintable(request));
    QVERIFY2(request.contains(publicKey), qPrintable(request));
    QCOMPARE(contentOf(key).contains("ENCRYPTED"), encrypt);
    QCOMPARE(configurations(), QStringList());
}

void SignDialogTest::writesCompanyNames_data()
{
    QTest::addColumn<QString>("company");
    QTest::addColumn<QString>("written"); // null: no request

    QTest::newRow("Cyrillic") << "ООО «Ромашка»"
                              << "ООО «Ромашка»";
    QTest::newRow("Chinese") << "北京有限公司"
                             << "北京有限公司";
    QTest::newRow("plain signs") << "A=B, C/D; E+F <%COMPANY_NAME%>"
                                 << "A=B, C/D; E+F <%COMPANY_NAME%>";
    QTest::newRow("64 characters") << QString(64, QChar(0x416)) << QString(64, QChar(0x416));
    // What the configuration's syntax makes of the rest
    QTest::newRow("quotes go") << "\"O'Neil\" & \"Sons"
                               << "O'Neil & Sons";
    QTest::newRow("backslashes go") << R"(A\B \\C\)"
                                    << R"(AB \C)";
    QTest::newRow("a comment ends it") << "Shop #1"
                                       << "Shop";
    QTest::newRow("nothing but a comment") << "#1 Shop" << QString();
    QTest::newRow("a variable") << "Cash $ Carry" << QString();
    QTest::newRow("65 characters") << QString(65, 'x') << QString();
}

void SignDialogTest::writesCompanyNames()
{
    QFETCH(QString, company);
    QFETCH(QString, written);
    openDialog();
    const QString key = inWorkspace("keys/client_key.pem");
    const QByteArray keyBefore = contentOf(key);
    enterRequest(company, key);
    click("genReqButton");

    QCOMPARE(contentOf(key), keyBefore);
    QCOMPARE(configurations(), QStringList());
    QCOMPARE(icon("generateLabel"), written.isNull() ? "BROKEN" : "OK");
    if (written.isNull()) {
        QVERIFY2(status().startsWith("Failed to generate request: "), qPrintable(status()));
        QVERIFY(!QFile::exists(inWorkspace("request.pem")));
    } else {
        QCOMPARE(describeRequest({"-subject", "-nameopt", "sname,sep_multiline,utf8"}),
                 "Certificate request self-signature verify OK\nsubject=\n    CN=" + written
                     + '\n');
    }
}

void SignDialogTest::cleansUpAfterADeclinedPrompt_data()
{
    QTest::addColumn<QStringList>("answers");
    QTest::addColumn<int>("promptsOfNextTry");

    QTest::newRow("first") << QStringList() << 3;
    QTest::newRow("repetition") << QStringList{"pass"} << 3;
    QTest::newRow("use of the complete key") << QStringList{"pass", "pass"} << 1;
}

void SignDialogTest::cleansUpAfterADeclinedPrompt()
{
    QFETCH(QStringList, answers);
    openDialog();
    enterRequest("Company", inWorkspace("key.pem"));
    {
        const PromptAnswers prompts(answers);
        click("genReqButton");
        QCOMPARE(prompts.prompts().size(), answers.size() + 1);
    }
    QCOMPARE(icon("generateLabel"), "BROKEN");
    QVERIFY2(status().startsWith("Failed to generate request: "), qPrintable(status()));
    QVERIFY(!QFile::exists(inWorkspace("request.pem")));
    QCOMPARE(configurations(), QStringList());

    const PromptAnswers prompts({"pass", "pass", "pass"});
    click("genReqButton");
    QTEST(int(prompts.prompts().size()), "promptsOfNextTry");
    QCOMPARE(icon("generateLabel"), "OK");
    QCOMPARE(status(), "");
}

void SignDialogTest::remembersChoices()
{
    openDialog(CUSTOMER_TARGET);
    QCOMPARE(child<QComboBox>("generationKeyAlgoComboBox")->currentIndex(), int(RSA));
    QVERIFY(child<QCheckBox>("generationKeyEncryptCheckBox")->isChecked());
    child<QComboBox>("generationKeyAlgoComboBox")->setCurrentIndex(GOST);
    child<QCheckBox>("generationKeyEncryptCheckBox")->setChecked(false);
    child<QComboBox>("m_comboBoxBuildTargets")->setCurrentText(BARE_TARGET);
    waitUntilIdle();
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
    delete m_dialog;

    QSettings().setValue("KilnRpmSign.History.TargetName", "VeyraOS-1.0");
    m_dialog = new SignDialog(nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(
        child<QComboBox>("m_comboBoxBuildTargets")->currentText(), RPMSIGN_TARGET, RUN_TIMEOUT);
    waitUntilIdle();
}

void SignDialogTest::locksItselfDuringARun()
{
    openDialog();
    enter("rpmPathChooser", freshPackage());
    enterKeys({"", "keys/encrypted_key.pem", "keys/encrypted_cert.pem"});
    const QStringList lockable =
        QString("addSignaturePushButton removeSignaturePushButton dumpPushButton "
                "verifySignaturePushButton genReqButton m_comboBoxBuildTargets rpmPathChooser")
            .split(' ');
    const auto enabled = [&] {
        QStringList names = lockable;
        names.removeIf([&](const QString &name) { return !child<QWidget>(name)->isEnabled(); });
        return names;
    };
    m_dialog->findChild<QStatusBar *>()->showMessage("message");

    when(QApplication::activeModalWidget, [&] {
        QCOMPARE(enabled(), QStringList());
        QVERIFY(child<QWidget>("busyIndicator")->isVisible());
        QCOMPARE(status(), "message");
        child<QTabWidget>("tabWidget")->setCurrentIndex(2); // asks for openssl, after the run
        m_answers = std::make_unique<PromptAnswers>(QStringList());
    });
    auto *button = child<QPushButton>("addSignaturePushButton");
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    waitUntilIdle();
    QCOMPARE(m_answers->prompts().size(), 1);
    QCOMPARE(enabled(), lockable);
    QCOMPARE(status(), "message");

    // The keyboard stays where the user left it.
    auto *targets = child<QComboBox>("m_comboBoxBuildTargets");
    targets->setFocus();
    bool locked = false;
    when([this] { return child<QWidget>("busyIndicator")->isVisible(); },
         [&] { locked = enabled().isEmpty(); });
    QTest::keyClick(targets, Qt::Key_Down);
    waitUntilIdle();
    QVERIFY(locked);
    QCOMPARE(targets->currentText(), CUSTOMER_TARGET);
    QCOMPARE(m_dialog->focusWidget(), targets);
}

void SignDialogTest::showsTheLastChoice()
{
    openDialog();
    auto *targets = child<QComboBox>("m_comboBoxBuildTargets");
    enterKeys({"", "keys/foreign_key.pem", "keys/foreign_cert.pem"});
    enter("rpmPathChooser", freshPackage("signed.rpm"));
    click("addSignaturePushButton");
    enter("rpmPathChooser", freshPackage("unsigned.rpm"));
    QCOMPARE(dump("developerSignatureTextBrowser"), "No signatures found in package");

    // During a run
    enterKeys({"", "keys/encrypted_key.pem", "keys/encrypted_cert.pem"});
    when(QApplication::activeModalWidget, [&] {
        child<PathChooser>("rpmPathChooser")
            ->setFilePath(FilePath::fromString(inWorkspace("signed.rpm")));
        targets->setCurrentText(CUSTOMER_TARGET);
        m_answers = std::make_unique<PromptAnswers>(QStringList());
    });
    click("addSignaturePushButton");
    QVERIFY(!child<QWidget>("binaryKeyLabel")->isHidden());
    QVERIFY(text("developerSignatureShortLabel").startsWith("Subject: CN=Foreign Developer,"));

    // Back and forth while a new target is looked at
    QTimer::singleShot(0, targets, [targets] { targets->setCurrentText(CUSTOMER_TARGET); });
    targets->setCurrentText(BARE_TARGET);
    waitUntilIdle();
    QCOMPARE(targets->currentText(), CUSTOMER_TARGET);
    QVERIFY(!child<QWidget>("binaryKeyLabel")->isHidden());
    QVERIFY(text("developerSignatureShortLabel").startsWith("Subject: CN=Foreign Developer,"));
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
    QTRY_COMPARE_WITH_TIMEOUT(
        dump("developerSignatureTextBrowser"), "No signatures found in package", RUN_TIMEOUT);
    QVERIFY(edit->hasFocus());
}

void SignDialogTest::survivesItsEndDuringARun_data()
{
    QTest::addColumn<QString>("moment");
    for (const char *moment : {"probing", "verification", "prompt"})
        QTest::newRow(moment) << moment;
}

void SignDialogTest::survivesItsEndDuringARun()
{
    QFETCH(QString, moment);
    openDialog();
    const auto end = [this] { delete m_dialog; };
    if (moment == "prompt") {
        enterKeys({"", "keys/encrypted_key.pem", "keys/encrypted_cert.pem"});
        enter("rpmPathChooser", freshPackage());
        when(QApplication::activeModalWidget, [this, end] {
            end();
            m_answers = std::make_unique<PromptAnswers>(QStringList{"demo"});
        });
        child<QPushButton>("addSignaturePushButton")->click();
    } else {
        when([this] { return child<QWidget>("busyIndicator")->isVisible(); }, end);
        if (moment == "probing")
            child<QComboBox>("m_comboBoxBuildTargets")->setCurrentText(CUSTOMER_TARGET);
        else
            child<PathChooser>("rpmPathChooser")->lineEdit()->setText(freshPackage());
    }
    QTRY_VERIFY_WITH_TIMEOUT(!m_dialog, RUN_TIMEOUT);
}

void SignDialogTest::survivesItsEndDuringTheEnginesStart()
{
    m_dialog = new SignDialog(nullptr);
    bool started = false;
    QTimer::singleShot(0, m_dialog, [this, &started] {
        started = !processesOfTheSdk().isEmpty();
        delete m_dialog;
    });
    QTRY_VERIFY(!m_dialog);
    QVERIFY(started);
}

QTEST_MAIN(SignDialogTest)
#include "tst_signdialog.moc"
