#include "dialogdriver.h"
#include "files.h"
#include "straywarnings.h"
#include "temporarysdk.h"

#include <commandline.h>
#include <generalpage.h>
#include <mainwindow.h>
#include <optionsdialog.h>
#include <outputpane.h>
#include <promptanswerer.h>
#include <session.h>
#include <signsteps.h>
#include <stepcard.h>

#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/actionmanager/command.h>
#include <host/buildmanager.h>
#include <projectexplorer/buildstep.h>
#include <utils/pathchooser.h>

#include <QTest>
#include <QtWidgets>

using namespace Workbench;
using ProjectExplorer::BuildManager;

constexpr QSize WINDOW_SIZE{1100, 760};
constexpr int DEPLOY_TIMEOUT = 60'000;
// A window without a text has some ten, for its frames and shades.
constexpr int FEWEST_COLOURS = 50;

/// Takes the pictures of the documentation, a scene after the other, into the folder in
/// SEALKIT_PICTURES or a temporary one, and shows that the pages show each.
class PicturesTest : public QObject, private DialogDriver
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { failOnStrayWarnings(); }
    void cleanupTestCase();

    void deploys();
    void showsSteps();
    void signsInTheDialog();
    void showsOptions();
    void showSomethingAndAreShown();

private:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void take(QWidget *widget, const QString &name) const;
    StepCard *stepCard(Utils::Id stepId) const;
    static void setPath(QWidget *window, const char *chooser, const QString &path);
    QString inWorkspace(const QString &path) const { return m_demo + "/workspace/" + path; }

    const std::unique_ptr<TemporarySdk> m_sdk{
        qEnvironmentVariableIsSet("SEALKIT_DEMO") ? nullptr : std::make_unique<TemporarySdk>()};
    const QString m_demo = m_sdk ? m_sdk->path() : qEnvironmentVariable("SEALKIT_DEMO");
    const QString m_folder = qEnvironmentVariable("SEALKIT_PICTURES", m_demo + "/pictures");
    PromptAnswerer m_answerer{"demo"};
    Session m_session;
    std::unique_ptr<MainWindow> m_window;
};

void PicturesTest::initTestCase()
{
    setUpApplication(m_demo + "/settings");
    QApplication::setCursorFlashTime(0);
    qApp->installEventFilter(this); // after the answerer's, so that a prompt is seen here first
    QVERIFY(QDir().mkpath(m_folder));
    m_window = std::make_unique<MainWindow>(&m_session);
    m_window->resize(WINDOW_SIZE);
    m_window->show();
    CommandLine line;
    line.sdk = m_demo;
    line.project = inWorkspace("hello-veyra");
    m_window->open(line);
}

void PicturesTest::cleanupTestCase()
{
    m_session.shutdown();
    m_window.reset();
}

/// The first prompt is the picture of the password dialog.
bool PicturesTest::eventFilter(QObject *watched, QEvent *event)
{
    auto *prompt = qobject_cast<QDialog *>(watched);
    if (event->type() == QEvent::Show && prompt && prompt->isModal()) {
        qApp->removeEventFilter(this);
        QTimer::singleShot(0, prompt, [this, prompt] { take(prompt, "password"); });
    }
    return false;
}

void PicturesTest::take(QWidget *widget, const QString &name) const
{
    QVERIFY2(widget, qPrintable(name));
    if (!widget->isModal()) // which waits for its answer
        QCoreApplication::processEvents();
    QVERIFY2(widget->grab().save(m_folder + '/' + name + ".png"), qPrintable(name));
}

StepCard *PicturesTest::stepCard(Utils::Id stepId) const
{
    for (StepCard *card : m_window->findChildren<StepCard *>()) {
        if (card->step()->id() == stepId)
            return card;
    }
    return nullptr;
}

void PicturesTest::setPath(QWidget *window, const char *chooser, const QString &path)
{
    window->findChild<Utils::PathChooser *>(chooser)->lineEdit()->setText(path);
}

void PicturesTest::deploys()
{
    StepCard *signStep = stepCard(RPM_SIGN_EXTERNAL_STEP);
    QVERIFY(signStep);
    signStep->setExpanded(true);
    QVERIFY(BuildManager::buildList(signStep->step()->stepList()));
    auto *output = m_window->findChild<OutputPane *>("compileOutput");
    QTRY_VERIFY_WITH_TIMEOUT(!BuildManager::isBuilding() && output->showsAll(), DEPLOY_TIMEOUT);
    const auto *verdict = m_window->findChild<QLabel *>("verdict");
    QTRY_VERIFY2(verdict->text().startsWith("Signed by "), qPrintable(verdict->text()));
    take(m_window.get(), "workbench");
    take(output, "compile-output");
    auto *messages = m_window->findChild<QWidget *>("generalMessages");
    for (auto *tabs : m_window->findChildren<QTabWidget *>())
        tabs->setCurrentWidget(messages);
    take(messages, "general-messages");
}

void PicturesTest::showsSteps()
{
    StepCard *card = stepCard(RPM_SIGN_EXTERNAL_STEP);
    card->findChild<QComboBox *>("keysTypeComboBox")->setCurrentIndex(1);
    setPath(card, "keyPathChooser", inWorkspace("keys/encrypted_key.pem"));
    setPath(card, "certificatePathChooser", inWorkspace("keys/encrypted_cert.pem"));
    take(card, "step-rpmsign-external");

    auto *kits = m_window->findChild<QComboBox *>("kits");
    emit kits->activated(kits->findText(CUSTOMER_TARGET));
    QTRY_VERIFY(stepCard(RPM_SIGN_STEP));
    stepCard(RPM_SIGN_STEP)->setExpanded(true);
    take(stepCard(RPM_SIGN_STEP), "step-customer-sign");
}

void PicturesTest::signsInTheDialog()
{
    QString package;
    for (QDirIterator all(
             inWorkspace("hello-veyra/RPMS"), {"*.rpm"}, QDir::Files, QDirIterator::Subdirectories);
         all.hasNext() && (package.isEmpty() || package.contains("-debug"));) {
        package = all.next();
    }
    Core::ActionManager::command("Sealkit.SignDialog")->action()->trigger();
    open(m_window->findChild<QDialog *>("SignDialog"));
    choose("m_comboBoxBuildTargets", RPMSIGN_TARGET);
    enter("rpmPathChooser", package);
    click("removeSignaturePushButton");
    enter("developerKeyPathChooser", inWorkspace("keys/encrypted_key.pem"));
    enter("developerCertificatePathChooser", inWorkspace("keys/encrypted_cert.pem"));
    enter("clientKeyPathChooser", inWorkspace("keys/client_key.pem"));
    enter("clientCertificatePathChooser", inWorkspace("keys/client_cert.pem"));
    click("addSignaturePushButton");
    take(dialog, "dialog-sign");

    auto *tabs = child<QTabWidget>("tabWidget");
    tabs->setCurrentIndex(1);
    take(dialog, "dialog-verify");

    tabs->setCurrentIndex(2);
    enter("generatedKeyPathChooser", inWorkspace("keys/my_key.pem"));
    enter("generatedReqPathChooser", inWorkspace("keys/my_request.pem"));
    child<QLineEdit>("generateCompanyNameLineEdit")->setText("Example Ltd");
    click("genReqButton");
    take(dialog, "dialog-certificate");
    QVERIFY(QFile::exists(inWorkspace("keys/my_request.pem")));
    dialog->close();
    dialog.clear(); // which the plugin keeps
}

void PicturesTest::showsOptions()
{
    const GeneralPage general(&m_session);
    OptionsDialog options(m_window.get());
    options.show();
    take(&options, "options");
}

static QStringList picturesIn(const QString &folder)
{
    return QDir(folder).entryList({"*.png"}, QDir::Files, QDir::Name);
}

void PicturesTest::showSomethingAndAreShown()
{
    for (const QString &name : picturesIn(m_folder)) {
        const QImage image(m_folder + '/' + name);
        QVERIFY2(image.width() >= 300 && image.width() <= 1200, qPrintable(name));
        QVERIFY2(image.height() >= 80 && image.height() <= 900, qPrintable(name));
        const int colours = image.convertToFormat(QImage::Format_Indexed8).colorCount();
        QVERIFY2(colours >= FEWEST_COLOURS, qPrintable(name));
    }

    static const QRegularExpression picture(R"(!\[[^\]]+\]\((?:docs/)?images/([^)]+)\))");
    const QByteArray pages =
        readFile(PROJECT "/README.md") + readFile(PROJECT "/docs/user-guide.md");
    QStringList shown;
    for (auto matches = picture.globalMatch(QString::fromUtf8(pages)); matches.hasNext();)
        shown << matches.next().captured(1);
    shown.sort();
    shown.removeDuplicates();
    QCOMPARE(shown, picturesIn(PROJECT "/docs/images"));
    shown.removeIf([](const QString &name) { return name.startsWith("ide-"); }); // not taken here
    QStringList taken = picturesIn(m_folder);
    taken.removeIf([](const QString &name) { return name.startsWith("ide-"); });
    QCOMPARE(shown, taken);
}

QTEST_MAIN(PicturesTest)
#include "tst_pictures.moc"
