#include "signdialog.h"

#include "buildengineinfo.h"
#include "certificatenote.h"
#include "certificatesummary.h"
#include "constants.h"
#include "customersealkit.h"
#include "requestcheck.h"
#include "rpmsignexternal.h"
#include "runlog.h"
#include "toolreason.h"
#include "ui_signdialog.h"
#include "utils.h"

#include <coreplugin/fileutils.h>
#include <coreplugin/icore.h>
#include <coreplugin/messagemanager.h>
#include <utils/pathchooser.h>
#include <utils/utilsicons.h>

#include <QDesktopServices>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QProgressBar>
#include <QSettings>
#include <QShowEvent>
#include <QStatusBar>
#include <QUrl>

#include <utility>

using Utils::FancyLineEdit;
using Utils::FilePath;
using Utils::PathChooser;

namespace Sealkit::Internal {

constexpr int REQUEST_TAB = 2;
/// What went wrong in a run, for the user; empty when nothing did.
static QString problemOf(const Command::Result &result)
{
    if (result.succeeded())
        return {};
    const QString problem = whyFailed(result);
    if (result.cancelled)
        logWarning(problem);
    return problem;
}

static QString pathOf(const PathChooser *chooser)
{
    return chooser->filePath().toFSPathString();
}

/// Histories are stored under the key in the user's language.
static Utils::Key completerKey(const char *key)
{
    return Utils::keyFromString(SignDialog::tr(key));
}

static QProgressBar *createBusyIndicator()
{
    auto *indicator = new QProgressBar;
    indicator->setObjectName(QStringLiteral("busyIndicator"));
    indicator->setRange(0, 0);
    indicator->setTextVisible(false);
    indicator->setFixedSize(80, 12);
    indicator->hide();
    return indicator;
}

static std::unique_ptr<Ui_SignDialog> makeUi(SignDialog *dialog)
{
    auto ui = std::make_unique<Ui_SignDialog>();
    ui->setupUi(dialog);
    return ui;
}

SignDialog::SignDialog(QWidget *parent)
    : QDialog(parent)
    , m_ui(makeUi(this))
    , m_view(m_ui.get())
    , m_runQueue(this, [this](Task task) { return work(task); })
{
    initPathChoosers();
    connectButtons();
    initStatusBar();
    initBuildEngine();
    m_buttons = {m_ui->addSignaturePushButton,
                 m_ui->removeSignaturePushButton,
                 m_ui->dumpPushButton,
                 m_ui->verifySignaturePushButton,
                 m_ui->genReqButton};
    initKeyGeneration();
    initRegularKeys();
    followKey(m_ui->binaryKeyNoteLabel, m_ui->binaryKeyPathChooser);
    followKey(m_ui->developerKeyNoteLabel, m_ui->developerKeyPathChooser);
    followKey(m_ui->clientKeyNoteLabel, m_ui->clientKeyPathChooser);
    followCertificate(m_ui->developerCertificateNoteLabel,
                      m_ui->developerCertificatePathChooser,
                      m_ui->developerKeyPathChooser);
    followCertificate(m_ui->clientCertificateNoteLabel,
                      m_ui->clientCertificatePathChooser,
                      m_ui->clientKeyPathChooser);
    followCertificate(m_ui->caCertificateNoteLabel, m_ui->caCertificatePathChooser);
    connect(m_ui->tabWidget, &QTabWidget::currentChanged, this, &SignDialog::onTabChanged);
    connect(m_ui->tabWidget, &QTabWidget::currentChanged, this, &SignDialog::forgetFieldMessage);
    for (QLineEdit *edit : findChildren<QLineEdit *>())
        connect(edit, &QLineEdit::textChanged, this, &SignDialog::forgetFieldMessage);
    connect(&m_packageWatch, &PackageWatch::changed, this, [this] {
        if (isVisible()) // else showEvent() has the package looked at
            invalidate();
    });

    setAcceptDrops(true);
    // The field would take a dropped package as text.
    m_ui->rpmPathChooser->lineEdit()->setAcceptDrops(false);
    restoreGeometry(QSettings().value(Constants::SIGN_DIALOG_HISTORY_GEOMETRY).toByteArray());
    // Enter in a field is for the field, not for whichever button comes first.
    for (QPushButton *button : findChildren<QPushButton *>())
        button->setAutoDefault(false);
}

/// While the dialog was closed the package may have changed.
void SignDialog::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!event->spontaneous() && !m_current.name.isEmpty())
        invalidate();
}

/// Only where a program has moved a window is it shown again, and not where its user has.
void SignDialog::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous())
        move(pos());
    QDialog::hideEvent(event);
}

/// The path of the package that is dragged; empty when the user drags something else.
static QString draggedPackage(const QMimeData *data)
{
    const QString path = data->urls().size() == 1 ? data->urls().first().toLocalFile() : QString();
    return path.endsWith(QLatin1String(".rpm")) ? path : QString();
}

void SignDialog::dragEnterEvent(QDragEnterEvent *event)
{
    if (m_ui->rpmPathChooser->isEnabled() && !draggedPackage(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void SignDialog::dropEvent(QDropEvent *event)
{
    m_ui->rpmPathChooser->setFilePath(FilePath::fromString(draggedPackage(event->mimeData())));
    event->acceptProposedAction();
}

void SignDialog::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        m_packageWatch.compare();
        m_view.showKeyToUse(pathOf(m_ui->generatedKeyPathChooser));
    }
}

SignDialog::~SignDialog()
{
    m_stop.request_stop();
    QSettings settings;
    // If the engine did not start there is no target; the last one then stays remembered.
    if (!m_current.name.isEmpty())
        settings.setValue(Constants::SIGN_DATA_HISTORY_TARGET_NAME, m_current.name);
    settings.setValue(Constants::KEY_GENERATION_HISTORY_ALGORYTHM,
                      m_ui->generationKeyAlgoComboBox->currentIndex());
    settings.setValue(Constants::KEY_GENERATION_HISTORY_ENCRYPT,
                      m_ui->generationKeyEncryptCheckBox->isChecked());
    settings.setValue(Constants::SIGN_DIALOG_HISTORY_GEOMETRY, saveGeometry());
}

void SignDialog::initPathChoosers()
{
    using namespace Constants;
    const auto validator = [this](bool mustExist) -> FancyLineEdit::ValidationFunction {
        return [this, mustExist](FancyLineEdit *edit, QString *error) -> bool {
            const FilePath path = FilePath::fromUserInput(edit->text());
            return path.isEmpty() || verifyPath(path.toFSPathString(), mustExist, error);
        };
    };

    initPathChooser(m_ui->rpmPathChooser,
                    {.title = translated(SIGN_DATA_RPM_PROMPT_DIALOG_TITLE),
                     .isValid = validator(true),
                     .filter = translated(SIGN_DATA_RPM_PROMPT_DIALOG_FILTER),
                     .placeholderText = translated(SIGN_DATA_RPM_PROMPT_DIALOG_TITLE),
                     .historyKey = completerKey(SIGN_DATA_RPM_PACKAGE_COMPLETER_KEY)});
    connect(m_ui->rpmPathChooser, &PathChooser::rawPathChanged, this, &SignDialog::invalidate);

    const QString keyHint = translated(SIGN_DATA_KEY_PLACEHOLDERTEXT);
    const QString certificateHint = translated(SIGN_DATA_CERT_PLACEHOLDERTEXT);
    const struct
    {
        PathChooser *chooser;
        QString placeholderText;
        const char *historyKey;
        bool mustExist = true;
    } pemFields[] = {
        {m_ui->binaryKeyPathChooser, keyHint, SIGN_DATA_BINARY_KEY_COMPLETER_KEY},
        {m_ui->developerKeyPathChooser, keyHint, SIGN_DATA_DEVELOPER_KEY_COMPLETER_KEY},
        {m_ui->developerCertificatePathChooser,
         certificateHint,
         SIGN_DATA_DEVELOPER_CERTIFICATE_COMPLETER_KEY},
        {m_ui->clientKeyPathChooser, keyHint, SIGN_DATA_CLIENT_KEY_COMPLETER_KEY},
        {m_ui->clientCertificatePathChooser,
         certificateHint,
         SIGN_DATA_CLIENT_CERTIFICATE_COMPLETER_KEY},
        {m_ui->caCertificatePathChooser,
         tr("Select root certificate"),
         SIGN_DATA_CA_CERTIFICATE_COMPLETER_KEY},
        {m_ui->generatedKeyPathChooser,
         tr("Specify path to save key file or select existing key file"),
         KEY_GENERATION_COMPLETER_KEY,
         false},
        {m_ui->generatedReqPathChooser,
         tr("Specify path to save Certificate Signing Request file"),
         KEY_GENERATION_COMPLETER_CSR,
         false},
    };
    for (const auto &field : pemFields) {
        initPathChooser(field.chooser,
                        {.title = translated(SIGN_DATA_PEM_PROMPT_DIALOG_TITLE),
                         .isValid = validator(field.mustExist),
                         .filter = translated(SIGN_DATA_PEM_PROMPT_DIALOG_FILTER),
                         .placeholderText = field.placeholderText,
                         .historyKey = completerKey(field.historyKey)});
        if (!field.mustExist)
            field.chooser->setExpectedKind(PathChooser::SaveFile);
    }
    for (PathChooser *chooser : findChildren<PathChooser *>()) {
        chooser->setInitialBrowsePathBackup(FilePath::fromString(QDir::homePath()));
        chooser->buttonAtIndex(0)->setIcon(Utils::Icons::NEWFILE.icon());
        chooser->buttonAtIndex(0)->setText({});
    }
    connect(m_ui->caCertificatePathChooser,
            &PathChooser::rawPathChanged,
            this,
            &SignDialog::invalidate);
    setLastingToolTip(
        m_ui->caCertificatePathChooser,
        tr("Path to PEM-encoded bundle with root certificates. If not set, default value will be "
           "used."));
}

void SignDialog::connectButtons()
{
    const auto onClick = [this](QPushButton *button, Task task) {
        connect(button, &QPushButton::clicked, this, [this, task] { m_runQueue.request({task}); });
    };
    onClick(m_ui->addSignaturePushButton, Task::Sign);
    onClick(m_ui->removeSignaturePushButton, Task::Remove);
    onClick(m_ui->verifySignaturePushButton, Task::Verify);
    onClick(m_ui->dumpPushButton, Task::Dump);
    connect(m_ui->genReqButton, &QPushButton::clicked, this, &SignDialog::generateRequest);
    connect(m_ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_ui->buttonBox, &QDialogButtonBox::helpRequested, this, &SignDialog::openHelp);
    // Only this button removes something.
    m_ui->removeSignaturePushButton->setIcon(style()->standardIcon(QStyle::SP_TrashIcon));
}

/// Opens the guide that is installed with the plugin; without one, the page on package signing.
void SignDialog::openHelp()
{
    const FilePath guide = Core::ICore::resourcePath(QLatin1String(Constants::USER_GUIDE));
    const QUrl url = guide.exists() ? QUrl::fromLocalFile(guide.toFSPathString())
                                    : QUrl(QLatin1String(Constants::PACKAGE_SIGNING_PAGE));
    if (!QDesktopServices::openUrl(url))
        m_statusBar->showMessage(tr("No browser opened %1").arg(url.toString()));
}

void SignDialog::initStatusBar()
{
    m_statusBar = new QStatusBar(this);
    // The bar ends beside the buttons; the grip belongs into the corner of the window.
    m_statusBar->setSizeGripEnabled(false);
    setSizeGripEnabled(true);
    auto *busyIndicator = createBusyIndicator();
    m_statusBar->addPermanentWidget(busyIndicator);
    m_ui->statusBarLayout->addWidget(m_statusBar);
    connect(&m_runQueue, &RunQueue::lockChanged, this, &SignDialog::processButtonOperation);
    connect(&m_runQueue, &RunQueue::lockChanged, this, [this](bool locked) {
        if (locked)
            forgetFieldMessage();
    });
    connect(&m_runQueue, &RunQueue::lockChanged, busyIndicator, &QProgressBar::setVisible);
    // A message that quotes a tool can be longer than the bar.
    connect(m_statusBar, &QStatusBar::messageChanged, m_statusBar, [this](const QString &text) {
        m_statusBar->setToolTip(
            text.isEmpty() ? QString() : QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped()));
    });
}

void SignDialog::initBuildEngine()
{
    auto *engineInfo = new BuildEngineInfo(this);
    m_workspace = engineInfo->sharedSrcPath();
    m_statusBar->showMessage(tr("Updating targets..."));
    connect(
        engineInfo,
        &BuildEngineInfo::targetsChanged,
        engineInfo,
        [this](const QStringList &targets) { setTargets(targets); },
        Qt::DirectConnection);
    connect(engineInfo, &BuildEngineInfo::updateFailed, this, &SignDialog::showEngineProblem);
}

void SignDialog::initKeyGeneration()
{
    m_ui->generationKeyAlgoComboBox->insertItem(RSA, tr("RSA (2048)"));
    m_ui->generationKeyAlgoComboBox->insertItem(GOST, tr("GOST R 34.10-2012 (256)"));

    connect(m_ui->generatedKeyPathChooser, &PathChooser::textChanged, this, [this] {
        m_view.showKeyToUse(pathOf(m_ui->generatedKeyPathChooser));
    });

    const QSettings settings;
    const int algorithm = settings.value(Constants::KEY_GENERATION_HISTORY_ALGORYTHM, 0).toInt();
    m_ui->generationKeyAlgoComboBox->setCurrentIndex(algorithm == GOST ? GOST : RSA);
    m_ui->generationKeyEncryptCheckBox->setChecked(
        settings.value(Constants::KEY_GENERATION_HISTORY_ENCRYPT, true).toBool());
}

void SignDialog::initRegularKeys()
{
    const QString folder = QDir::toNativeSeparators(getDefaultKeysDir(m_workspace));
    QString text = m_ui->regularKeysLabel->text();
    m_ui->regularKeysLabel->setText(
        text.replace(QStringLiteral("%folder_link%"), folder.toHtmlEscaped()));
    connect(m_ui->regularKeysLabel,
            &QLabel::linkActivated,
            this,
            [key = getDefaultKey(m_workspace)] { Core::FileUtils::showInGraphicalShell(key); });
    connect(m_ui->regularKeysButton, &QPushButton::clicked, this, [this] {
        m_ui->developerKeyPathChooser->setFilePath(getDefaultKey(m_workspace));
        m_ui->developerCertificatePathChooser->setFilePath(getDefaultCertificate(m_workspace));
    });
}

SignData SignDialog::data() const
{
    return {.binariesKey = pathOf(m_ui->binaryKeyPathChooser),
            .clientKey = pathOf(m_ui->clientKeyPathChooser),
            .clientCertificate = pathOf(m_ui->clientCertificatePathChooser),
            .certificate = pathOf(m_ui->developerCertificatePathChooser),
            .key = pathOf(m_ui->developerKeyPathChooser),
            .rootCertificate = pathOf(m_ui->caCertificatePathChooser)};
}

QString SignDialog::package() const
{
    return pathOf(m_ui->rpmPathChooser);
}

KeyGenerationData SignDialog::keyGenerationData() const
{
    return {.companyName = m_ui->generateCompanyNameLineEdit->text(),
            .requestPath = m_ui->generatedReqPathChooser->filePath(),
            .auxiliaryPath = {},
            .encrypt = m_ui->generationKeyEncryptCheckBox->isChecked(),
            .keyPath = m_ui->generatedKeyPathChooser->filePath(),
            .algorithm = KeyAlgorithm(m_ui->generationKeyAlgoComboBox->currentIndex())};
}

/// Whether a field may hold \a path; otherwise \a error is a text for the user.
bool SignDialog::verifyPath(const QString &path, bool mustExist, QString *error) const
{
    if (!isInWorkspace(path, m_workspace, error))
        return false;
    if (!mustExist || QFileInfo::exists(path))
        return true;
    *error = tr("File does not exist");
    return false;
}

void SignDialog::setTargets(const QStringList &targets)
{
    {
        // The target is set once below, not for each state of the combo box on the way.
        const QSignalBlocker blocker(m_ui->m_comboBoxBuildTargets);
        m_ui->m_comboBoxBuildTargets->clear();
        m_ui->m_comboBoxBuildTargets->addItems(targets);
        const QString saved =
            QSettings().value(Constants::SIGN_DATA_HISTORY_TARGET_NAME, QString()).toString();
        m_ui->m_comboBoxBuildTargets->setCurrentIndex(qMax(0, int(targets.indexOf(saved))));
    }
    connect(m_ui->m_comboBoxBuildTargets,
            &QComboBox::currentTextChanged,
            this,
            &SignDialog::setTargetName);
    setTargetName(m_ui->m_comboBoxBuildTargets->currentText());
}

void SignDialog::showEngineProblem(BuildEngineInfo::Problem problem)
{
    switch (problem) {
    case BuildEngineInfo::NoEngine:
        m_statusBar->showMessage(tr("There is no build engine: open or repair the SDK"));
        break;
    case BuildEngineInfo::NotStarted:
        m_statusBar->showMessage(tr("The build engine did not start; see the General Messages"));
        break;
    case BuildEngineInfo::NoTargets:
        m_statusBar->showMessage(tr("The build engine has no targets: install one"));
        break;
    }
}

void SignDialog::setTargetName(const QString &name)
{
    m_targetName = name;
    m_view.clearVerdict();
    m_runQueue.request({Task::FollowTarget});
}

RunQueue::Show SignDialog::work(Task task)
{
    switch (task) {
    case Task::FollowTarget:
        return followTarget();
    case Task::LookForOpenssl:
        return lookForOpenssl();
    case Task::Sign:
        return addSignature();
    case Task::Remove:
        return removeSignature();
    case Task::Verify:
        return verifySignature();
    case Task::Dump:
        return dumpSignature();
    case Task::Request:
        return makeRequest();
    }
    return {};
}

RunQueue::Show SignDialog::followTarget()
{
    if (m_targetName == m_current.name)
        return {};
    const TargetToolsInfo tools = m_targetTools.contains(m_targetName)
                                      ? m_targetTools.value(m_targetName)
                                      : TargetToolsInfo(m_targetName, m_stop.get_token());
    return [this, tools] { setTools(tools); };
}

void SignDialog::setTools(const TargetToolsInfo &tools)
{
    m_targetTools.insert(tools.name, tools);
    m_current = tools;
    m_view.showTools(tools);
    {
        // The package is looked at below, once.
        const QSignalBlocker packageBlocker(m_ui->rpmPathChooser);
        const QSignalBlocker rootBlocker(m_ui->caCertificatePathChooser);
        for (PathChooser *chooser : findChildren<PathChooser *>())
            chooser->triggerChanged();
    }
    // The message and the outcome are about the last target.
    m_statusBar->clearMessage();
    m_view.clearRequest();
    updateOpensslInfo();
    invalidate();
}

/// The back end of the current target. Null, after a message, when the target cannot sign.
SignTool *SignDialog::signTool()
{
    if (SignTool *tool = m_signTools.value(m_current.name))
        return tool;

    SignTool *tool = nullptr;
    if (m_current.hasRpmsignExternal) {
        tool = new RpmsignExternal(this);
    } else if (m_current.hasCustomerSign) {
        tool = new CustomerSealkit(this);
    } else {
        Core::MessageManager::writeDisrupting(
            QStringLiteral("Error: unable to find signing tools for the selected target"));
        return nullptr;
    }
    tool->setStopToken(m_stop.get_token());
    m_signTools.insert(m_current.name, tool);
    return tool;
}

/// The back end for what is to be done to the chosen package; null when none is chosen or the
/// target has no tools.
SignTool *SignDialog::toolForPackage()
{
    return package().isEmpty() ? nullptr : signTool();
}

/// Why the target cannot sign with \a signData, in a text for the user; empty when it can.
QString SignDialog::problemOfFields(const SignData &signData) const
{
    QString problem;
    const bool isValid = m_current.hasRpmsignExternal
                             ? signData.isValid<RpmsignExternal>(m_workspace, &problem)
                             : signData.isValid<CustomerSealkit>(m_workspace, &problem);
    return isValid ? QString() : problem;
}

/// Who signs with \a signData.
QString SignDialog::signersWith(const SignData &signData) const
{
    QStringList signers{signerOf(signData.certificate)};
    const bool needsClientKey = m_current.hasRpmsignExternal;
    if (!signData.clientCertificate.isEmpty() && !(needsClientKey && signData.clientKey.isEmpty()))
        signers << signerOf(signData.clientCertificate);
    return signers.join(QLatin1String(", "));
}

RunQueue::Show SignDialog::addSignature()
{
    SignTool *tool = toolForPackage();
    if (!tool)
        return {};
    m_view.clearSigning();
    m_statusBar->clearMessage();
    const SignData signData = data();
    if (const QString problem = problemOfFields(signData); !problem.isEmpty()) {
        showFieldMessage(problem);
        m_view.showSigning(package(), {}, problem);
        invalidate();
        return {};
    }
    const bool isPairIncomplete =
        signData.clientKey.isEmpty() != signData.clientCertificate.isEmpty();
    const QString path = package();
    const QString signers = signersWith(signData);
    const Command::Result result = tool->addSignature(m_current.name, {package()}, signData);
    return [this, result, path, signers, isPairIncomplete] {
        if (m_current.hasRpmsignExternal && isPairIncomplete)
            warnOfMissingClientSignature();
        m_view.showSigning(path, signers, problemOf(result));
        invalidate();
    };
}

void SignDialog::warnOfMissingClientSignature()
{
    const QString warning =
        tr("No client signature was added: it needs a client key and its certificate");
    showFieldMessage(warning);
    logWarning(warning);
}

void SignDialog::showFieldMessage(const QString &message)
{
    m_fieldMessage = message;
    m_statusBar->showMessage(message);
}

void SignDialog::forgetFieldMessage()
{
    if (m_fieldMessage.isEmpty())
        return;
    if (m_statusBar->currentMessage() == m_fieldMessage)
        m_statusBar->clearMessage();
    m_view.forgetReason(std::exchange(m_fieldMessage, {}));
}

RunQueue::Show SignDialog::removeSignature()
{
    SignTool *tool = toolForPackage();
    if (!tool)
        return {};
    m_view.showRemoval({}, {});
    const QString path = package();
    const Command::Result result = tool->removeSignature(m_current.name, {path});
    return [this, result, path] {
        m_view.showRemoval(path, problemOf(result));
        invalidate();
    };
}

/// Whether the package, the root and the target are those that a tool has looked at.
bool SignDialog::isStillAsked(const PackageState &lookedAt) const
{
    return m_packageWatch.lastState() == lookedAt && m_targetName == m_current.name;
}

RunQueue::Show SignDialog::verifySignature()
{
    m_view.clearVerdict();
    if (package().isEmpty())
        return {};
    SignTool *tool = signTool();
    if (!tool) {
        m_view.showNoVerdict();
        return {};
    }
    const PackageState lookedAt = m_packageWatch.lastState();
    const Command::Result result = tool->verifySignature(m_current.name, {package()}, data());
    return [this, result, lookedAt] {
        if (isStillAsked(lookedAt))
            m_view.showVerdict(result, package());
    };
}

RunQueue::Show SignDialog::dumpSignature()
{
    if (package().isEmpty())
        return {};
    m_view.clearDump();
    SignTool *tool = signTool();
    if (!tool) {
        m_view.showNoDump();
        return {};
    }
    const PackageState lookedAt = m_packageWatch.lastState();
    const Command::Result result = tool->dumpSignature(m_current.name, {package()});
    return [this, result, lookedAt] {
        if (isStillAsked(lookedAt))
            m_view.showDump(QString::fromUtf8(result.stdOut), package());
    };
}

/// Has the package looked at anew. A run that looks at it now is outdated, and its result is
/// dropped.
void SignDialog::invalidate()
{
    // The verdict on the last package must not stand beside another one, nor that by the last root
    // beside another root.
    m_view.clearVerdict();
    m_packageWatch.lookAt(package(), pathOf(m_ui->caCertificatePathChooser));
    m_runQueue.request({Task::Verify, Task::Dump});
}

void SignDialog::generateRequest()
{
    m_statusBar->clearMessage();
    m_runQueue.request({Task::LookForOpenssl, Task::Request});
}

RunQueue::Show SignDialog::makeRequest()
{
    const KeyGenerationData keyData = keyGenerationData();
    if (const QString problem = whyNoRequest(keyData); !problem.isEmpty()) {
        showFieldMessage(problem);
        m_view.showRequest(problem, {}, {});
        return {};
    }
    SignTool *tool = signTool();
    if (!tool)
        return {};
    m_view.clearRequest();
    const QString usedKey = keyData.keyPath.exists() ? keyData.keyPath.toFSPathString() : QString();
    const QString request = keyData.requestPath.toFSPathString();
    const Command::Result result = tool->generateRequest(m_current.name, keyData);
    return [this, result, usedKey, request] {
        m_view.showRequest(problemOf(result), usedKey, request);
        m_view.showKeyToUse(pathOf(m_ui->generatedKeyPathChooser));
        if (!result.succeeded()) {
            m_statusBar->showMessage(
                tr("Failed to generate request: %1").arg(QString::fromUtf8(result.stdOut)));
        }
    };
}

void SignDialog::onTabChanged(int index)
{
    if (index == REQUEST_TAB)
        updateOpensslInfo();
}

void SignDialog::updateOpensslInfo()
{
    m_runQueue.request({Task::LookForOpenssl});
}

RunQueue::Show SignDialog::lookForOpenssl()
{
    if (m_current.name.isEmpty())
        return {};
    TargetToolsInfo tools = m_current;
    tools.updateOpensslState(m_stop.get_token());
    return [this, tools] {
        m_targetTools.insert(tools.name, tools);
        m_current = tools;
        updateOpensslLabel();
    };
}

void SignDialog::updateOpensslLabel()
{
    m_view.showOpenssl(m_current);
}

void SignDialog::processButtonOperation(bool running)
{
    // A user who types the path of a package must be able to go on, although each letter starts a
    // run. The focus is asked for first, because it moves when a widget is disabled.
    const bool typing = m_ui->rpmPathChooser->lineEdit()->hasFocus();
    for (QPushButton *button : std::as_const(m_buttons))
        button->setEnabled(!running);
    m_ui->m_comboBoxBuildTargets->setEnabled(!running);
    m_ui->rpmPathChooser->setEnabled(!running || typing);
}

} // namespace Sealkit::Internal
