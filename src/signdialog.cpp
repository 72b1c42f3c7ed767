#include "signdialog.h"

#include "buildengineinfo.h"
#include "certificatenote.h"
#include "constants.h"
#include "customersealkit.h"
#include "requestcheck.h"
#include "rpmsignexternal.h"
#include "runlog.h"
#include "toolreason.h"
#include "ui_signdialog.h"
#include "utils.h"

#include <coreplugin/fileutils.h>
#include <coreplugin/messagemanager.h>
#include <utils/pathchooser.h>
#include <utils/utilsicons.h>

#include <QDesktopServices>
#include <QDir>
#include <QDropEvent>
#include <QFontDatabase>
#include <QMimeData>
#include <QPointer>
#include <QProgressBar>
#include <QRegularExpression>
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
constexpr int MAX_REASONS = 4;
const QString REFRESH = QStringLiteral("refresh the package's state");

/// Says how a run went; an empty \a problem is a good end.
static void showOutcome(QLabel *icon, NoteLabel *reason, const QString &problem)
{
    icon->setPixmap((problem.isEmpty() ? Utils::Icons::OK : Utils::Icons::BROKEN).pixmap());
    reason->setNote(problem, NoteLabel::Warning);
}

static void clearOutcome(QLabel *icon, NoteLabel *reason)
{
    icon->clear();
    reason->setNote({});
}

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

/// What a tool says about the signatures of \a package that it rejects, a line for each.
static QString problemOfSignatures(const Command::Result &result, const QString &package)
{
    QStringList lines = tellingLines(QString::fromUtf8(result.stdOut + '\n' + result.stdErr));
    for (QString &line : lines) {
        if (line.startsWith(package + QLatin1String(": ")))
            line.remove(0, package.size() + 2);
    }
    return lines.isEmpty() ? problemOf(result) : lines.join(QLatin1Char('\n'));
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

SignDialog::SignDialog(QWidget *parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui_SignDialog>())
{
    m_ui->setupUi(this);
    m_ui->clientSignatureTextBrowser->hide();
    m_ui->verifyReasonLabel->setMaxLines(MAX_REASONS);
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
    followCertificate(m_ui->developerCertificateNoteLabel, m_ui->developerCertificatePathChooser);
    followCertificate(m_ui->clientCertificateNoteLabel, m_ui->clientCertificatePathChooser);
    followCertificate(m_ui->caCertificateNoteLabel, m_ui->caCertificatePathChooser);
    connect(m_ui->tabWidget, &QTabWidget::currentChanged, this, &SignDialog::onTabChanged);
    connect(&m_packageWatch, &PackageWatch::changed, this, [this] {
        if (isVisible()) // else showEvent() has the package looked at
            invalidate();
    });

    const QFont dumpFont = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    m_ui->developerSignatureTextBrowser->setFont(dumpFont);
    m_ui->clientSignatureTextBrowser->setFont(dumpFont);
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
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        m_packageWatch.compare();
}

SignDialog::~SignDialog()
{
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
    m_ui->caCertificatePathChooser->setToolTip(
        tr("Path to PEM-encoded bundle with root certificates. If not set, default value will be "
           "used."));
}

void SignDialog::connectButtons()
{
    const auto onClick = [this](QPushButton *button, void (SignDialog::*action)()) {
        connect(button, &QPushButton::clicked, this, action);
    };
    onClick(m_ui->addSignaturePushButton, &SignDialog::addSignature);
    onClick(m_ui->removeSignaturePushButton, &SignDialog::removeSignature);
    onClick(m_ui->verifySignaturePushButton, &SignDialog::verifySignature);
    onClick(m_ui->dumpPushButton, &SignDialog::dumpSignature);
    onClick(m_ui->genReqButton, &SignDialog::generateRequest);
    connect(m_ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_ui->buttonBox, &QDialogButtonBox::helpRequested, this, [] {
        QDesktopServices::openUrl(QUrl(QLatin1String(Constants::PACKAGE_SIGNING_PAGE)));
    });
    // Only this button removes something.
    m_ui->removeSignaturePushButton->setIcon(style()->standardIcon(QStyle::SP_TrashIcon));
}

void SignDialog::initStatusBar()
{
    m_statusBar = new QStatusBar(this);
    auto *busyIndicator = createBusyIndicator();
    m_statusBar->addPermanentWidget(busyIndicator);
    m_ui->statusBarLayout->addWidget(m_statusBar);
    connect(&m_runQueue, &RunQueue::lockChanged, this, &SignDialog::processButtonOperation);
    connect(&m_runQueue, &RunQueue::busyChanged, busyIndicator, &QProgressBar::setVisible);
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
    // Connected before the first target is probed: the user may choose another one meanwhile.
    connect(m_ui->m_comboBoxBuildTargets, &QComboBox::currentTextChanged, this, [this] {
        m_runQueue.request(QStringLiteral("follow the target"), [this] { followTarget(); });
    });
    const QPointer<SignDialog> self(this);
    followTarget();
    if (self)
        m_statusBar->clearMessage();
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
    if (name == m_current.name)
        return;

    const Run run(&m_runQueue);
    if (!m_targetTools.contains(name)) {
        const TargetToolsInfo probed(name);
        if (!run)
            return;
        m_targetTools.insert(name, probed);
    }
    m_current = m_targetTools.value(name);
    showToolsOfTarget();
    updateOpensslInfo();
    if (run)
        refreshPackageState();
}

void SignDialog::followTarget()
{
    setTargetName(m_ui->m_comboBoxBuildTargets->currentText());
}

void SignDialog::showToolsOfTarget()
{
    const bool hasRpmsignExternal = m_current.hasRpmsignExternal;
    const bool hasCustomerSign = m_current.hasCustomerSign;
    const bool canInspect = hasRpmsignExternal || m_current.hasNxvcertCli;
    const bool needsBinaryKey = !hasRpmsignExternal && hasCustomerSign;

    m_ui->addSignaturePushButton->setVisible(hasRpmsignExternal || hasCustomerSign);
    m_ui->removeSignaturePushButton->setVisible(canInspect);
    m_ui->verifySignaturePushButton->setVisible(canInspect);
    m_ui->dumpPushButton->setVisible(canInspect);
    m_ui->binaryKeyLabel->setVisible(needsBinaryKey);
    m_ui->binaryKeyPathChooser->setVisible(needsBinaryKey);
    {
        // setTargetName() has the package looked at afterwards, once.
        const QSignalBlocker blocker(m_ui->rpmPathChooser);
        for (PathChooser *chooser : findChildren<PathChooser *>())
            chooser->triggerChanged();
    }
    m_ui->tabWidget->setTabVisible(REQUEST_TAB, hasRpmsignExternal);
    m_ui->toolsNoteLabel->setNote(missingTools(), NoteLabel::Warning);
    // The message and the outcome are about the last target.
    m_statusBar->clearMessage();
    clearOutcome(m_ui->generateLabel, m_ui->generateReasonLabel);
}

/// Which tools the target lacks, in a sentence for the user; empty when it lacks none.
QString SignDialog::missingTools() const
{
    if (m_current.hasRpmsignExternal)
        return {};
    if (!m_current.hasCustomerSign)
        return tr("Target %1 cannot sign: it has neither rpmsign-external nor customer-sign")
            .arg(m_current.name);
    if (!m_current.hasNxvcertCli)
        return tr("Target %1 can only sign: without nxvcert-cli, signatures are neither shown nor "
                  "removed")
            .arg(m_current.name);
    return {};
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
    m_signTools.insert(m_current.name, tool);
    return tool;
}

/// How each operation on the chosen package begins: without a package it does nothing. \a operation
/// gets the back end of the target while the dialog is locked; where there is none, \a onNoTool is
/// called.
void SignDialog::runOnPackage(const std::function<void(SignTool *tool, const Run &run)> &operation,
                              const std::function<void()> &onNoTool)
{
    if (package().isEmpty())
        return;
    if (SignTool *tool = signTool()) {
        const Run run(&m_runQueue);
        operation(tool, run);
    } else if (onNoTool) {
        onNoTool();
    }
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

void SignDialog::addSignature()
{
    runOnPackage([this](SignTool *tool, const Run &run) {
        clearOutcome(m_ui->signStateLabel, m_ui->signReasonLabel);
        m_statusBar->clearMessage();
        const SignData signData = data();
        QString problem = problemOfFields(signData);
        if (!problem.isEmpty()) {
            m_statusBar->showMessage(problem);
        } else {
            const Command::Result result =
                tool->addSignature(m_current.name, {package()}, signData);
            if (!run)
                return;
            problem = problemOf(result);
            const bool isPairIncomplete =
                signData.clientKey.isEmpty() != signData.clientCertificate.isEmpty();
            if (m_current.hasRpmsignExternal && isPairIncomplete) {
                const QString warning =
                    tr("No client signature was added: it needs a client key and its certificate");
                m_statusBar->showMessage(warning);
                logWarning(warning);
            }
        }
        showOutcome(m_ui->signStateLabel, m_ui->signReasonLabel, problem);
        refreshPackageState();
    });
}

void SignDialog::removeSignature()
{
    runOnPackage([this](SignTool *tool, const Run &run) {
        tool->removeSignature(m_current.name, {package()});
        if (run)
            refreshPackageState();
    });
}

void SignDialog::clearVerdict()
{
    m_ui->verifyLabel->clear();
    clearOutcome(m_ui->verifyIconLabel, m_ui->verifyReasonLabel);
}

void SignDialog::verifySignature()
{
    clearVerdict();
    const auto verify = [this](SignTool *tool, const Run &run) {
        const QStringList lookedAt = chosenPackage();
        const Command::Result result = tool->verifySignature(m_current.name, {package()}, data());
        if (!run || chosenPackage() != lookedAt)
            return;
        m_ui->verifyLabel->setText(result.succeeded() ? tr("Signatures successfully verified")
                                                      : tr("Could not verify signatures"));
        showOutcome(m_ui->verifyIconLabel,
                    m_ui->verifyReasonLabel,
                    result.succeeded() ? QString() : problemOfSignatures(result, package()));
    };
    runOnPackage(verify, [this] {
        m_ui->verifyLabel->setText(tr("Package can't be verified"));
        m_ui->verifyIconLabel->setPixmap(Utils::Icons::BROKEN.pixmap());
    });
}

void SignDialog::clearDump()
{
    m_ui->developerSignatureTextBrowser->clear();
    m_ui->clientSignatureTextBrowser->clear();
    m_ui->developerSignatureShortLabel->clear();
    m_ui->clientSignatureShortLabel->clear();
}

void SignDialog::dumpSignature()
{
    const auto dump = [this](SignTool *tool, const Run &run) {
        clearDump();
        const QStringList lookedAt = chosenPackage();
        const Command::Result result = tool->dumpSignature(m_current.name, {package()});
        if (run && chosenPackage() == lookedAt)
            showSignatures(midDumpOutput(QString::fromUtf8(result.stdOut)));
    };
    runOnPackage(dump, [this] {
        clearDump();
        m_ui->developerSignatureTextBrowser->setPlainText(tr("Package can't be dumped"));
    });
}

static QString summaryOf(const QString &block)
{
    // The tool writes for a terminal, which takes "\r\n" for the end of a line.
    return parseDumpForSort(QString(block).remove(QLatin1Char('\r')));
}

void SignDialog::showSignatures(const QStringList &blocks)
{
    if (blocks.isEmpty()) {
        m_ui->developerSignatureTextBrowser->setText(tr("No signatures found in package"));
        return;
    }
    m_ui->developerSignatureTextBrowser->setText(blocks.first());
    m_ui->developerSignatureTextBrowser->show();
    m_ui->developerSignatureShortLabel->setText(summaryOf(blocks.first()));

    const bool hasClient = blocks.size() > 1;
    if (hasClient) {
        m_ui->clientSignatureTextBrowser->setText(blocks.at(1));
        m_ui->clientSignatureShortLabel->setText(summaryOf(blocks.at(1)));
    }
    m_ui->clientSignatureTextBrowser->setVisible(hasClient);
}

void SignDialog::refreshPackageState()
{
    const Run run(&m_runQueue);
    m_runQueue.withdraw(REFRESH);
    m_packageWatch.lookAt(package());
    const QStringList lookedAt = chosenPackage();
    verifySignature();
    if (run && chosenPackage() == lookedAt)
        dumpSignature();
}

/// The package that is chosen, and what is known of its files on disk. A result is outdated when
/// this has changed since its tool was started; invalidate() has then requested a new look.
QStringList SignDialog::chosenPackage() const
{
    return m_packageWatch.lastState() << package();
}

void SignDialog::invalidate()
{
    // The verdict on the last package must not stand beside another one.
    clearVerdict();
    m_runQueue.request(REFRESH, [this] { refreshPackageState(); });
}

void SignDialog::generateRequest()
{
    const Run run(&m_runQueue);
    m_statusBar->clearMessage();
    updateOpensslInfo();
    if (!run)
        return;

    if (const QString problem = whyNoRequest(keyGenerationData()); !problem.isEmpty()) {
        m_statusBar->showMessage(problem);
        showOutcome(m_ui->generateLabel, m_ui->generateReasonLabel, problem);
        return;
    }
    SignTool *tool = signTool();
    if (!tool)
        return;
    clearOutcome(m_ui->generateLabel, m_ui->generateReasonLabel);
    const Command::Result result = tool->generateRequest(m_current.name, keyGenerationData());
    if (!run)
        return;
    showOutcome(m_ui->generateLabel, m_ui->generateReasonLabel, problemOf(result));
    if (!result.succeeded()) {
        m_statusBar->showMessage(
            tr("Failed to generate request: %1").arg(QString::fromUtf8(result.stdOut)));
    }
}

void SignDialog::onTabChanged(int index)
{
    if (index == REQUEST_TAB)
        m_runQueue.request(QStringLiteral("look for openssl"), [this] { updateOpensslInfo(); });
}

void SignDialog::updateOpensslInfo()
{
    if (m_targetTools.contains(m_current.name)) {
        const Run run(&m_runQueue);
        TargetToolsInfo info = m_targetTools.value(m_current.name);
        info.updateOpensslState();
        if (!run)
            return;
        m_targetTools.insert(info.name, info);
        m_current = info;
    }
    updateOpensslLabel();
}

void SignDialog::updateOpensslLabel()
{
    QTextEdit *label = m_ui->opensslStatusLabel;
    label->clear();
    if (m_current.name.isEmpty() || m_current.hasOpenssl)
        return;
    label->setTextColor(QColor::fromString(QLatin1String("red")));
    label->setText(tr("OpenSSL not found in target '%1', please install it.").arg(m_current.name));
    label->setTextColor(QApplication::palette().color(QPalette::Text));
    label->append(tr("Available in: Tools - Options - Veyra OS - Manage Build Targets"));
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

// "Subject: CN=Regular\nGroup: developer\nSubgroup: regular\n" gives
// "Subject: CN=Regular\nGroup: developer\n"
QString parseDumpForSort(const QString &dump)
{
    static const QRegularExpression line(QStringLiteral(
        "(?:Subject:(.*))|(?:Group:(.*))|(?:Subgroup:(.*))|(?:Key ID:(.*))|(?:Signature:(.*))"));
    QString summary;
    for (auto matches = line.globalMatch(dump); matches.hasNext();) {
        const QString match = matches.next().captured();
        qCDebug(debugLog) << match;
        if (match.startsWith(QLatin1String("Subject")) || match.startsWith(QLatin1String("Group")))
            summary += match + QLatin1Char('\n');
    }
    return summary;
}

} // namespace Sealkit::Internal
