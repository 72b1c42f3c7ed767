#include "comparison.h"
#include "rpmsignexternalstep.h"
#include "stepfactory.h"
#include "workplace.h"

#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/project.h>

#include <QDir>

#include <algorithm>

using namespace Sealkit::Internal;

namespace Benchmarks {

// What the step does, and no more: sign, and dump when that has succeeded.
static const char SCRIPT[] = "in_target=\"$1/bin/brisk engine exec -tt sb2 -t $2\"\n"
                             "keys=$3\n"
                             "shift 3\n"
                             "$in_target rpmsign-external sign -k \"$keys/regular_key.pem\""
                             " -c \"$keys/regular_cert.pem\" \"$@\" &&\n"
                             "$in_target rpmsign-external dump \"$@\"\n";

/// As a build would leave them: the time that a dump takes grows with the signatures.
static void putFresh(const QString &package, const QStringList &copies)
{
    for (const QString &copy : copies) {
        QFile::remove(copy);
        require(QFile::copy(package, copy), "a package cannot be copied");
    }
}

/// A project whose build left packages, to be signed by the step and by hand.
static Measures signing(Workplace &workplace, int packageCount)
{
    static const DeployStepFactory<RpmsignExternalStep> factory;
    static const QString package = buildDemoPackage(workplace);
    const ProjectExplorer::Project *project = workplace.openProject(RPMSIGN_TARGET);
    const QDir folder((project->projectDirectory() / "RPMS").toFSPathString());
    folder.mkpath(".");
    QStringList script{"/bin/sh",
                       "-c",
                       SCRIPT,
                       "sh",
                       workplace.sdk().path(),
                       RPMSIGN_TARGET,
                       workplace.sdk().workspace() + "/.veyraos-regular-keys"};
    QStringList packages;
    for (int i = 0; i < packageCount; ++i)
        packages << folder.filePath(QStringLiteral("hello-veyra-%1.rpm").arg(i));
    putFresh(package, packages); // the step finds them
    script << packages;
    ProjectExplorer::BuildStepList *steps = deploySteps(project);
    steps->appendStep(RpmsignExternalStep::stepId());

    const auto byStep = [=, step = steps->steps().last()] {
        putFresh(package, packages);
        return milliseconds([step] {
            const QStringList output = runStep(step);
            require(output.contains("NormalMessage: Package sign completed successfully."),
                    "the step failed: " + output.join('\n'));
        });
    };
    const auto byHand = [=] {
        putFresh(package, packages);
        return timeOf(script);
    };
    return {byStep, byHand};
}

QList<Comparison> deployRows(Workplace &workplace)
{
    QList<Comparison> rows;
    for (int count = 1; count <= pick(1000, 10); count *= 10) {
        const auto prepare = [=, &workplace] { return signing(workplace, count); };
        rows << Comparison{"deploy: sign and dump, and the tools alone",
                           QString::number(count) + (count == 1 ? " package" : " packages"),
                           pick(std::max(3, 201 / count), 1),
                           prepare,
                           50};
    }
    return rows;
}

} // namespace Benchmarks
