#include "pictures.h"

#include "generalpage.h"
#include "optionsdialog.h"
#include "outputpane.h"
#include "signsteps.h"
#include "stepcard.h"

#include <brisk/buildengine.h>
#include <brisk/sdk.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/actionmanager/command.h>
#include <host/buildmanager.h>
#include <projectexplorer/buildstep.h>
#include <utils/pathchooser.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QDialog>
#include <QDir>
#include <QDirIterator>
#include <QEvent>
#include <QEventLoop>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

#include <cstdio>

using namespace std::chrono_literals;
using ProjectExplorer::BuildManager;
using Utils::FilePath;

namespace Workbench {

constexpr QSize WINDOW_SIZE{1100, 760};
constexpr auto PATIENCE = 60s;

constexpr char DEMO_PASSPHRASE[] = "demo";
constexpr char RPMSIGN_TARGET[] = "VeyraOS-5.1-x86_64";
constexpr char CUSTOMER_TARGET[] = "VeyraOS-4.0-x86_64";

Pictures::Pictures(const CommandLine &commandLine)
    : m_commandLine(commandLine)
    , m_answerer(DEMO_PASSPHRASE)
    , m_window(&m_session)
{
    connect(&m_session, &Session::problemFound, this, &Pictures::complain);
    // After the answerer, so that a prompt is seen here first.
    qApp->installEventFilter(this);
    QApplication::setCursorFlashTime(0);
}

Pictures::~Pictures()
{
    m_session.shutdown();
}

int Pictures::run()
{
    if (!QDir().mkpath(m_commandLine.picturesFolder))
        complain(tr("The folder \"%1\" cannot be made.").arg(m_commandLine.picturesFolder));
    m_window.resize(WINDOW_SIZE);
    m_window.show();
    m_window.open(m_commandLine);
    for (const auto scene : {&Pictures::deploy,
                             &Pictures::showSteps,
                             &Pictures::showSignDialog,
                             &Pictures::showOptions}) {
        if (m_problems == 0)
            (this->*scene)();
    }
    return m_problems == 0 ? 0 : 1;
}

bool Pictures::eventFilter(QObject *watched, QEvent *event)
{
    auto *dialog = qobject_cast<QDialog *>(watched);
    if (event->type() == QEvent::Show && dialog && dialog->isModal() && !m_hasPasswordPicture) {
        m_hasPasswordPicture = true;
        QTimer::singleShot(0, dialog, [this, dialog] { save(dialog, "password"); });
    }
    return QObject::eventFilter(watched, event);
}

void Pictures::deploy()
{
    StepCard *signStep = stepCard(RPM_SIGN_EXTERNAL_STEP);
    if (!signStep)
        return complain(tr("The project has no step for rpmsign-external."));
    signStep->setExpanded(true);

    bool succeeded = false;
    connect(BuildManager::instance(), &BuildManager::buildQueueFinished, this, [&](bool success) {
        succeeded = success;
    });
    if (!BuildManager::buildList(signStep->step()->stepList()))
        return complain(tr("The deploy did not start."));
    auto *output = part<OutputPane>(&m_window, "compileOutput");
    if (!output)
        return;
    waitUntil("the end of the deploy",
              [output] { return !BuildManager::isBuilding() && output->showsAll(); });
    BuildManager::instance()->disconnect(this);
    if (!succeeded)
        return complain(tr("The deploy failed."));

    take(&m_window, "workbench");
    take(output, "compile-output");
    auto *messages = part<QPlainTextEdit>(&m_window, "generalMessages");
    for (QTabWidget *tabs : m_window.findChildren<QTabWidget *>())
        tabs->setCurrentWidget(messages);
    take(messages, "general-messages");
}

void Pictures::showSteps()
{
    StepCard *card = stepCard(RPM_SIGN_EXTERNAL_STEP);
    if (auto *keys = part<QComboBox>(card, "keysTypeComboBox"))
        keys->setCurrentIndex(1);
    setPath(card, "keyPathChooser", inWorkspace("keys/encrypted_key.pem"));
    setPath(card, "certificatePathChooser", inWorkspace("keys/encrypted_cert.pem"));
    take(card, "step-rpmsign-external");

    if (auto *kits = part<QComboBox>(&m_window, "kits"))
        emit kits->activated(kits->findText(CUSTOMER_TARGET));
    waitUntil("the step of the other kit", [this] { return stepCard(RPM_SIGN_STEP); });
    if (StepCard *customerCard = stepCard(RPM_SIGN_STEP)) {
        customerCard->setExpanded(true);
        take(customerCard, "step-customer-sign");
    }
}

void Pictures::showSignDialog()
{
    const Core::Command *command = Core::ActionManager::command("Sealkit.SignDialog");
    if (!command)
        return complain(tr("There is no dialog to sign packages."));
    command->action()->trigger();
    auto *dialog = part<QDialog>(&m_window, "SignDialog");
    auto *targets = part<QComboBox>(dialog, "m_comboBoxBuildTargets");
    if (!targets)
        return;
    waitUntil("the list of targets", [targets] { return targets->count() > 0; });
    targets->setCurrentText(RPMSIGN_TARGET);
    setPath(dialog, "rpmPathChooser", package());
    waitForTools(dialog);

    sign(dialog);
    verify(dialog);
    requestCertificate(dialog);
    dialog->close();
}

void Pictures::sign(QWidget *dialog)
{
    press(dialog, "removeSignaturePushButton");
    setPath(dialog, "developerKeyPathChooser", inWorkspace("keys/encrypted_key.pem"));
    setPath(dialog, "developerCertificatePathChooser", inWorkspace("keys/encrypted_cert.pem"));
    setPath(dialog, "clientKeyPathChooser", inWorkspace("keys/client_key.pem"));
    setPath(dialog, "clientCertificatePathChooser", inWorkspace("keys/client_cert.pem"));
    press(dialog, "addSignaturePushButton");
    take(dialog, "dialog-sign");
    if (!m_hasPasswordPicture)
        complain(tr("No tool asked for a pass phrase."));
}

void Pictures::verify(QWidget *dialog)
{
    if (auto *tabs = part<QTabWidget>(dialog, "tabWidget"))
        tabs->setCurrentIndex(1);
    take(dialog, "dialog-verify");
}

void Pictures::requestCertificate(QWidget *dialog)
{
    if (auto *tabs = part<QTabWidget>(dialog, "tabWidget"))
        tabs->setCurrentIndex(2);
    setPath(dialog, "generatedKeyPathChooser", inWorkspace("keys/my_key.pem"));
    setPath(dialog, "generatedReqPathChooser", inWorkspace("keys/my_request.pem"));
    if (auto *company = part<QLineEdit>(dialog, "generateCompanyNameLineEdit"))
        company->setText("Example Ltd");
    press(dialog, "genReqButton");
    take(dialog, "dialog-certificate");
    if (!QFile::exists(inWorkspace("keys/my_request.pem")))
        complain(tr("No certificate signing request was made."));
}

void Pictures::showOptions()
{
    const GeneralPage general(&m_session);
    OptionsDialog dialog(&m_window);
    dialog.show();
    take(&dialog, "options");
    dialog.reject();
}

void Pictures::take(QWidget *widget, const QString &name)
{
    if (!widget)
        return;
    // Layouts and what the last change caused come first.
    QCoreApplication::processEvents();
    save(widget, name);
}

void Pictures::save(QWidget *widget, const QString &name)
{
    const QString path = QDir(m_commandLine.picturesFolder).filePath(name + ".png");
    if (!widget->grab().save(path))
        complain(tr("The picture \"%1\" cannot be written.").arg(path));
}

void Pictures::waitUntil(const QString &event, const std::function<bool()> &hasCome)
{
    const QDeadlineTimer deadline(PATIENCE);
    QEventLoop loop;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &loop, [&] {
        if (hasCome() || deadline.hasExpired())
            loop.quit();
    });
    timer.start(20ms);
    loop.exec();
    if (!hasCome())
        complain(tr("Waited in vain for %1.").arg(event));
}

void Pictures::waitForTools(const QWidget *dialog)
{
    QCoreApplication::processEvents(); // what was just chosen starts tools from there
    const auto *indicator = part<QWidget>(dialog, "busyIndicator");
    waitUntil("the tools", [indicator] { return !indicator || indicator->isHidden(); });
}

void Pictures::press(const QWidget *dialog, const char *button)
{
    waitForTools(dialog); // they lock the button
    if (auto *found = part<QPushButton>(dialog, button))
        found->click();
    waitForTools(dialog);
}

void Pictures::setPath(const QWidget *dialog, const char *chooser, const QString &path)
{
    if (auto *found = part<Utils::PathChooser>(dialog, chooser))
        found->setFilePath(FilePath::fromString(path));
}

/// The widget that the form calls \a name. Null, after a complaint, when there is none.
template<typename Widget>
Widget *Pictures::part(const QWidget *window, const char *name)
{
    auto *found = window ? window->findChild<Widget *>(name) : nullptr;
    if (!found)
        complain(tr("There is no \"%1\" to take a picture with.").arg(name));
    return found;
}

StepCard *Pictures::stepCard(Utils::Id stepId) const
{
    const QList<StepCard *> cards = m_window.findChildren<StepCard *>();
    const auto found = std::find_if(cards.begin(), cards.end(), [stepId](const StepCard *card) {
        return card->step()->id() == stepId;
    });
    return found == cards.end() ? nullptr : *found;
}

/// The deploy's package that is not for debuggers.
QString Pictures::package() const
{
    QDirIterator packages(m_commandLine.projects.first() + "/RPMS",
                          {"*.rpm"},
                          QDir::Files,
                          QDirIterator::Subdirectories);
    while (packages.hasNext()) {
        const QString path = packages.next();
        if (!path.contains("-debug"))
            return QFileInfo(path).absoluteFilePath();
    }
    return {};
}

QString Pictures::inWorkspace(const QString &path) const
{
    const QList<Brisk::BuildEngine *> engines = Brisk::Sdk::buildEngines();
    return engines.isEmpty() ? QString()
                             : (engines.first()->sharedSrcPath() / path).toFSPathString();
}

void Pictures::complain(const QString &problem)
{
    ++m_problems;
    std::fprintf(stderr, "workbench: %s\n", qUtf8Printable(problem));
}

} // namespace Workbench
