#include "deployverdict.h"

#include "signsteps.h"

#include <host/buildmanager.h>
#include <host/issues.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/task.h>

#include <QFileInfo>

using namespace ProjectExplorer;

namespace Workbench {

static bool isSignStep(const BuildStep *step)
{
    return step->id() == RPM_SIGN_EXTERNAL_STEP || step->id() == RPM_SIGN_STEP;
}

DeployVerdict::DeployVerdict(const BuildStepList *stepList)
{
    for (const BuildStep *step : stepList->steps()) {
        if (isSignStep(step) && step->stepEnabled())
            m_signSteps << step->displayName();
    }
    connect(BuildManager::instance(), &BuildManager::outputAdded, this, &DeployVerdict::readOutput);
    connect(Host::Issues::instance(), &Host::Issues::added, this, &DeployVerdict::readIssue);
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

bool DeployVerdict::isGood() const
{
    return m_ending == Finished && m_error.isEmpty() && !m_packages.isEmpty();
}

// "CN=Regular Developer, OU=regular" is Regular Developer.
static QString nameOf(const QString &subject)
{
    const QString first = subject.section(", ", 0, 0);
    return first.startsWith("CN=") ? first.mid(3) : subject;
}

QString DeployVerdict::whatWasSigned() const
{
    QStringList packages;
    for (const QString &path : m_packages)
        packages << QFileInfo(path).fileName();
    QStringList signers;
    for (const QString &subject : m_signers)
        signers << nameOf(subject);
    // A step that does not look at its signatures is all that is known of them.
    const QStringList &by = signers.isEmpty() ? m_signSteps : signers;
    return tr("Signed by %1: %2.").arg(by.join(", "), packages.join(", "));
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
