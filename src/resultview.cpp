#include "resultview.h"

#include "command.h"
#include "keyfile.h"
#include "targettoolsinfo.h"
#include "toolreason.h"
#include "ui_signdialog.h"
#include "utils.h"

#include <utils/utilsicons.h>

#include <QDateTime>
#include <QFileInfo>
#include <QFontDatabase>
#include <QRegularExpression>

namespace Sealkit::Internal {

constexpr int MAX_REASONS = 4;
constexpr int REQUEST_TAB = 2;

ResultView::ResultView(Ui_SignDialog *ui)
    : m_ui(ui)
{
    m_ui->clientSignatureTextBrowser->hide();
    m_ui->verifyReasonLabel->setMaxLines(MAX_REASONS);
    m_ui->signReasonLabel->setMaxLines(2);
    // These stand above buttons, or beside a mark that keeps its place.
    for (NoteLabel *note : {m_ui->toolsNoteLabel,
                            m_ui->developerKeyNoteLabel,
                            m_ui->developerCertificateNoteLabel,
                            m_ui->clientKeyNoteLabel,
                            m_ui->clientCertificateNoteLabel,
                            m_ui->caCertificateNoteLabel,
                            m_ui->generatedKeyNoteLabel,
                            m_ui->signReasonLabel,
                            m_ui->generateReasonLabel}) {
        note->reserveRoom();
    }
    m_ui->removeReasonLabel->setMaxLines(2);
    const QFont dumpFont = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    m_ui->developerSignatureTextBrowser->setFont(dumpFont);
    m_ui->clientSignatureTextBrowser->setFont(dumpFont);
}

/// Which tools a target lacks, in a sentence for the user; empty when it lacks none.
static QString missingTools(const TargetToolsInfo &tools)
{
    if (tools.hasRpmsignExternal)
        return {};
    if (!tools.hasCustomerSign) {
        return ResultView::tr(
                   "Target %1 cannot sign: it has neither rpmsign-external nor customer-sign")
            .arg(tools.name);
    }
    if (!tools.hasNxvcertCli) {
        return ResultView::tr("Target %1 can only sign: without nxvcert-cli, signatures are "
                              "neither shown nor removed")
            .arg(tools.name);
    }
    return {};
}

void ResultView::showTools(const TargetToolsInfo &tools)
{
    const bool hasRpmsignExternal = tools.hasRpmsignExternal;
    const bool hasCustomerSign = tools.hasCustomerSign;
    const bool canInspect = hasRpmsignExternal || tools.hasNxvcertCli;
    const bool needsBinaryKey = !hasRpmsignExternal && hasCustomerSign;

    m_ui->addSignaturePushButton->setVisible(hasRpmsignExternal || hasCustomerSign);
    m_ui->removeSignaturePushButton->setVisible(canInspect);
    m_ui->verifySignaturePushButton->setVisible(canInspect);
    m_ui->dumpPushButton->setVisible(canInspect);
    m_ui->binaryKeyLabel->setVisible(needsBinaryKey);
    m_ui->binaryKeyPathChooser->setVisible(needsBinaryKey);
    m_ui->binaryKeyNoteLabel->setVisible(needsBinaryKey
                                         && !m_ui->binaryKeyNoteLabel->text().isEmpty());
    m_ui->tabWidget->setTabVisible(REQUEST_TAB, hasRpmsignExternal);
    m_ui->toolsNoteLabel->setNote(missingTools(tools), NoteLabel::Warning);
}

void ResultView::showOpenssl(const TargetToolsInfo &tools)
{
    QTextEdit *label = m_ui->opensslStatusLabel;
    label->clear();
    if (tools.hasOpenssl)
        return;
    label->setTextColor(QColor::fromString(QLatin1String("red")));
    label->setText(tr("OpenSSL not found in target '%1', please install it.").arg(tools.name));
    label->setTextColor(QApplication::palette().color(QPalette::Text));
    label->append(tr("Available in: Tools - Options - Veyra OS - Manage Build Targets"));
}

/// Shows \a problem, or \a success when there is none.
static void
showOutcome(QLabel *icon, NoteLabel *note, const QString &problem, const QString &success = {})
{
    const bool isGood = problem.isEmpty();
    icon->setPixmap((isGood ? Utils::Icons::OK : Utils::Icons::BROKEN).pixmap());
    note->setNote(isGood ? success : problem, isGood ? NoteLabel::Information : NoteLabel::Warning);
}

static void clearOutcome(QLabel *icon, NoteLabel *reason)
{
    icon->clear();
    reason->setNote({});
}

static QString now()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

void ResultView::showSigning(const QString &package, const QString &signers, const QString &problem)
{
    const QString name = QFileInfo(package).fileName();
    const QString failure = tr("%1: signing failed at %2").arg(name, now());
    showOutcome(m_ui->signStateLabel,
                m_ui->signReasonLabel,
                problem.isEmpty() ? QString() : failure + QLatin1Char('\n') + problem,
                tr("%1: signed by %2 at %3").arg(name, signers, now()));
}

void ResultView::showRemoval(const QString &package, const QString &problem)
{
    const QString failure =
        tr("%1: removing failed at %2").arg(QFileInfo(package).fileName(), now());
    m_ui->removeReasonLabel->setNote(
        problem.isEmpty() ? QString() : failure + QLatin1Char('\n') + problem, NoteLabel::Warning);
}

void ResultView::clearSigning()
{
    clearOutcome(m_ui->signStateLabel, m_ui->signReasonLabel);
    m_ui->removeReasonLabel->setNote({});
}

void ResultView::showRequest(const QString &problem, const QString &usedKey, const QString &request)
{
    const QString kind = keyKindOfRequest(request);
    const QString used = usedKey.isEmpty()
                             ? QString()
                             : tr("The existing key %1 was used (%2)")
                                   .arg(usedKey, kind.isEmpty() ? tr("unknown kind") : kind);
    showOutcome(m_ui->generateLabel, m_ui->generateReasonLabel, problem, used);
}

void ResultView::showKeyToUse(const QString &path)
{
    const bool exists = QFileInfo::exists(path);
    const bool isKey = holdsPrivateKey(path);
    const QString note = isKey ? tr("This key exists and is used as it is, whatever its algorithm")
                               : tr("There is no private key in this file");
    m_ui->generatedKeyNoteLabel->setNote(exists ? note : QString(),
                                         isKey ? NoteLabel::Information : NoteLabel::Warning);
    for (QWidget *option : {static_cast<QWidget *>(m_ui->generationKeyAlgoComboBox),
                            static_cast<QWidget *>(m_ui->generationKeyEncryptCheckBox)}) {
        option->setEnabled(!exists);
        option->setToolTip(exists ? note : QString());
    }
}

void ResultView::clearRequest()
{
    clearOutcome(m_ui->generateLabel, m_ui->generateReasonLabel);
}

void ResultView::forgetReason(const QString &reason)
{
    if (m_ui->generateReasonLabel->text() == reason)
        clearRequest();
    const QString signing = m_ui->signReasonLabel->text();
    const QString ending = QLatin1Char('\n') + reason;
    if (signing.endsWith(ending))
        m_ui->signReasonLabel->setNote(signing.chopped(ending.size()), NoteLabel::Warning);
}

/// What a tool says about the signatures of \a package that it rejects, a line for each.
static QString problemOfSignatures(const Command::Result &result, const QString &package)
{
    QStringList lines = tellingLines(QString::fromUtf8(result.stdOut + '\n' + result.stdErr));
    for (QString &line : lines) {
        if (line.startsWith(package + QLatin1String(": ")))
            line.remove(0, package.size() + 2);
    }
    return lines.isEmpty() ? whyFailed(result) : lines.join(QLatin1Char('\n'));
}

void ResultView::showVerdict(const Command::Result &result, const QString &package)
{
    m_ui->verifyLabel->setText(result.succeeded() ? tr("Signatures successfully verified")
                                                  : tr("Could not verify signatures"));
    showOutcome(m_ui->verifyIconLabel,
                m_ui->verifyReasonLabel,
                result.succeeded() ? QString() : problemOfSignatures(result, package));
}

void ResultView::showNoVerdict()
{
    m_ui->verifyLabel->setText(tr("Package can't be verified"));
    m_ui->verifyIconLabel->setPixmap(Utils::Icons::BROKEN.pixmap());
}

void ResultView::clearVerdict()
{
    m_ui->verifyLabel->clear();
    clearOutcome(m_ui->verifyIconLabel, m_ui->verifyReasonLabel);
}

/// Without the returns of a terminal, too. A package may be named like a line of a dump.
static QString withoutPath(QString dump, const QString &package)
{
    return dump.remove(QLatin1Char('\r')).remove(package);
}

void ResultView::showDump(const QString &dump, const QString &package)
{
    const QStringList blocks = midDumpOutput(withoutPath(dump, package));
    if (blocks.isEmpty()) {
        m_ui->developerSignatureTextBrowser->setText(tr("No signatures found in package"));
        return;
    }
    m_ui->developerSignatureTextBrowser->setText(blocks.first());
    m_ui->developerSignatureTextBrowser->show();
    m_ui->developerSignatureShortLabel->setText(parseDumpForSort(blocks.first()));

    const bool hasClient = blocks.size() > 1;
    if (hasClient) {
        m_ui->clientSignatureTextBrowser->setText(blocks.at(1));
        m_ui->clientSignatureShortLabel->setText(parseDumpForSort(blocks.at(1)));
    }
    m_ui->clientSignatureTextBrowser->setVisible(hasClient);
}

void ResultView::showNoDump()
{
    m_ui->developerSignatureTextBrowser->setPlainText(tr("Package can't be dumped"));
}

void ResultView::clearDump()
{
    m_ui->developerSignatureTextBrowser->clear();
    m_ui->clientSignatureTextBrowser->clear();
    m_ui->developerSignatureShortLabel->clear();
    m_ui->clientSignatureShortLabel->clear();
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
