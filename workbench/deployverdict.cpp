#include "deployverdict.h"

#include "signsteps.h"

#include <host/buildmanager.h>
#include <host/issues.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/target.h>
#include <projectexplorer/task.h>

#include <veyraos/kilnkb2rpmbuildstep.h>
#include <veyraos/kilnsdkkitaspect.h>
#include <veyraos/targetcommand.h>

#include <QFileInfo>
#include <QRegularExpression>
#include <QTimer>

#include <chrono>

using namespace ProjectExplorer;

namespace Workbench {

const QString RPMSIGN_EXTERNAL = QStringLiteral("rpmsign-external");
const QString NXVCERT_CLI = QStringLiteral("nxvcert-cli");
constexpr std::chrono::seconds DUMP_TIMEOUT{30};

static bool isSignStep(const BuildStep *step)
{
    return step->id() == RPM_SIGN_EXTERNAL_STEP || step->id() == RPM_SIGN_STEP;
}

DeployVerdict::DeployVerdict(const BuildStepList *stepList)
    : m_stepList(stepList)
{
    for (const BuildStep *step : stepList->steps()) {
        if (isSignStep(step) && step->stepEnabled())
            m_signSteps << step->displayName();
    }
    connect(BuildManager::instance(), &BuildManager::outputAdded, this, &DeployVerdict::readOutput);
    connect(Host::Issues::instance(), &Host::Issues::added, this, &DeployVerdict::readIssue);
}

DeployVerdict::~DeployVerdict()
{
    m_dump.disconnect(this);
    m_dump.kill();
    m_dump.waitForFinished();
}

/// The rest of \a line after \a begin, once.
static void take(const QString &line, const QString &begin, QStringList *rests)
{
    const QString rest = line.mid(begin.size()).trimmed();
    if (line.startsWith(begin) && !rests->contains(rest))
        rests->append(rest);
}

// The tools say "Signed: /path/of/a.rpm" when they have, and a dump has a line like "Subject:
// CN=Regular Developer, OU=regular" for each signature.
void DeployVerdict::readOutput(const QString &text, BuildStep::OutputFormat format)
{
    if (format == BuildStep::OutputFormat::ErrorMessage) {
        if (m_error.isEmpty())
            m_error = text.trimmed();
        return;
    }
    for (const QString &line : text.split('\n')) {
        take(line, "Signed: ", &m_packages);
        take(line, "Subject: ", &m_signers);
    }
}

/// More telling than the same error in the output: it may have a second line.
void DeployVerdict::readIssue(const Task &issue)
{
    const QString error = (QStringList(issue.summary) + issue.details).join(": ");
    if (issue.type == Task::Error && (m_error.isEmpty() || error.startsWith(m_error)))
        m_error = error;
}

// Debug packages are left unsigned where the step is told to.
QStringList DeployVerdict::packagesToBeSigned() const
{
    static const QRegularExpression debug("debug(info|source)");
    QStringList packages = m_packages;
    for (const BuildStep *step : m_stepList->steps()) {
        const auto *builder = qobject_cast<const Kiln::Internal::KilnKb2RpmBuildStep *>(step);
        const QStringList built = builder ? builder->deployablePackagesFileNames() : QStringList();
        for (const QString &path : built) {
            if (!packages.contains(path) && !QFileInfo(path).fileName().contains(debug))
                packages << path;
        }
    }
    return packages;
}

void DeployVerdict::setEnding(Ending ending)
{
    m_ending = ending;
    m_toBeSigned = packagesToBeSigned();
    if (ending == Finished && m_error.isEmpty() && !m_signSteps.isEmpty()
        && !m_toBeSigned.isEmpty())
        startDump();
    else
        emit known();
}

void DeployVerdict::startDump()
{
    using namespace Kiln::Internal;
    const auto target = KilnSdkKitAspectFactory::buildTarget(m_stepList->target()->kit());
    const QString tool = target.tools.contains(RPMSIGN_EXTERNAL) ? RPMSIGN_EXTERNAL : NXVCERT_CLI;
    const QStringList words{tool, "dump"};
    const QStringList commandLine = commandInTarget(target.name, words + m_toBeSigned);
    connect(&m_dump, &QProcess::finished, this, &DeployVerdict::readDump);
    connect(&m_dump, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            readDump();
    });
    m_dump.start(commandLine.first(), commandLine.mid(1));
    m_dump.closeWriteChannel();
    QTimer::singleShot(DUMP_TIMEOUT, &m_dump, &QProcess::kill);
}

// A dump tells a group for each signature of the package. The package's own path stands before, or
// behind them if it is the only one.
void DeployVerdict::readDump()
{
    m_unsigned = m_toBeSigned;
    QString package = m_toBeSigned.size() == 1 ? m_toBeSigned.constFirst() : QString();
    for (const QByteArray &line : m_dump.readAllStandardOutput().split('\n')) {
        const QString text = QString::fromUtf8(line).trimmed();
        if (m_toBeSigned.contains(text))
            package = text;
        else if (text.startsWith("Group: "))
            m_unsigned.removeOne(package);
    }
    m_packages.removeIf([this](const QString &path) { return m_unsigned.contains(path); });
    emit known();
}

bool DeployVerdict::isGood() const
{
    return m_ending == Finished && m_error.isEmpty() && !m_packages.isEmpty()
           && m_unsigned.isEmpty();
}

// "CN=Regular Developer, OU=regular" is Regular Developer.
static QString nameOf(const QString &subject)
{
    const QString first = subject.section(", ", 0, 0);
    return first.startsWith("CN=") ? first.mid(3) : subject;
}

static QString fileNames(const QStringList &paths)
{
    QStringList names;
    for (const QString &path : paths)
        names << QFileInfo(path).fileName();
    return names.join(", ");
}

QString DeployVerdict::whatWasSigned() const
{
    QStringList signers;
    for (const QString &subject : m_signers)
        signers << nameOf(subject);
    // A step that does not look at its signatures is all that is known of them.
    const QStringList &by = signers.isEmpty() ? m_signSteps : signers;
    const QString text = tr("Signed by %1: %2.").arg(by.join(", "), fileNames(m_packages));
    return m_unsigned.isEmpty() ? text
                                : text + ' ' + tr("Not signed: %1.").arg(fileNames(m_unsigned));
}

QString DeployVerdict::whyNothingWasSigned() const
{
    if (!m_error.isEmpty())
        return tr("Nothing was signed: %1").arg(m_error);
    if (m_signSteps.isEmpty())
        return tr("Nothing was signed: the deploy configuration has no enabled sign step.");
    return tr("Nothing was signed.");
}

QString DeployVerdict::text() const
{
    const QString signing = m_packages.isEmpty() ? whyNothingWasSigned() : whatWasSigned();
    if (m_ending == Interrupted)
        return tr("The deploy was interrupted. %1").arg(signing);
    if (m_ending == Stopped && m_error.isEmpty())
        return tr("The deploy was cancelled. %1").arg(signing);
    if (m_error.isEmpty())
        return signing;
    return m_packages.isEmpty() ? tr("The deploy failed. %1").arg(signing)
                                : tr("The deploy failed: %1. %2").arg(m_error, signing);
}

} // namespace Workbench
