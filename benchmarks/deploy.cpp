#include "ondemand.h"
#include "packagebuild.h"
#include "programs.h"
#include "rpmsignexternalstep.h"
#include "stepfactory.h"
#include "themes.h"
#include "workplace.h"

#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/project.h>

#include <QDir>
#include <QDirIterator>

#include <algorithm>

using namespace Sealkit::Internal;

namespace Benchmarks {

/// A project whose build left packages, to be signed by the step and by hand.
class Deploy
{
public:
    Deploy(Workplace &workplace, const QString &package, int packageCount);

    double signByStep() const;
    double signByHand() const;

private:
    /// As a build would leave them: the time that a dump takes grows with the signatures.
    void removeSignatures() const;

    QString m_packagesFolder;
    ProjectExplorer::BuildStep *m_step;
    std::vector<std::string> m_script;
};

// What the step does, and no more: sign, and dump when that has succeeded.
static const char SCRIPT[] = "in_target=\"$1/bin/brisk engine exec -tt sb2 -t $2\"\n"
                             "keys=$3\n"
                             "shift 3\n"
                             "$in_target rpmsign-external sign -k \"$keys/regular_key.pem\""
                             " -c \"$keys/regular_cert.pem\" \"$@\" &&\n"
                             "$in_target rpmsign-external dump \"$@\"\n";

Deploy::Deploy(Workplace &workplace, const QString &package, int packageCount)
{
    const ProjectExplorer::Project *project = workplace.openProject(RPMSIGN_TARGET);
    m_packagesFolder = (project->projectDirectory() / QStringLiteral("RPMS")).toFSPathString();
    QDir().mkpath(m_packagesFolder);
    m_script = {"/bin/sh",
                "-c",
                SCRIPT,
                "sh",
                workplace.sdk().path().toStdString(),
                RPMSIGN_TARGET.toStdString(),
                workplace.sdk().workspace().toStdString() + "/.veyraos-regular-keys"};
    for (int i = 0; i < packageCount; ++i) {
        const QString path = QStringLiteral("%1/hello-veyra-%2.rpm").arg(m_packagesFolder).arg(i);
        require(QFile::copy(package, path), "a package cannot be copied");
        m_script.push_back(path.toStdString());
    }

    ProjectExplorer::BuildStepList *steps = deploySteps(project);
    steps->appendStep(RpmsignExternalStep::stepId());
    m_step = steps->steps().last();
}

void Deploy::removeSignatures() const
{
    QDirIterator signatures(m_packagesFolder, {QStringLiteral("*.p7s")});
    while (signatures.hasNext())
        QFile::remove(signatures.next());
}

double Deploy::signByStep() const
{
    removeSignatures();
    QStringList output;
    const double time = milliseconds([&] { output = runStep(m_step); });
    require(output.contains("NormalMessage: Package sign completed successfully."),
            "the step failed: " + output.join('\n').toStdString());
    return time;
}

double Deploy::signByHand() const
{
    removeSignatures();
    return milliseconds([this] { spawnAndWait(m_script); });
}

void addDeploys(Workplace &workplace, Extent extent)
{
    static const DeployStepFactory<RpmsignExternalStep> factory;
    const OnDemand<QString> package(
        [&workplace] { return std::make_unique<QString>(buildDemoPackage(workplace)); });
    for (int packageCount = 1; packageCount <= extent.pick(1000, 10); packageCount *= 10) {
        const OnDemand<Deploy> deploy([=, &workplace] {
            return std::make_unique<Deploy>(workplace, *package, packageCount);
        });
        const Aim aim = atMostTimes(1.05) || atMostMore(50, "ms");
        add({.what = "deploy: sign and dump",
             .size = std::to_string(packageCount) + (packageCount == 1 ? " package" : " packages"),
             .unit = "ms",
             .rounds = extent.pick(std::max(3, 201 / packageCount), 1),
             .ours = [deploy] { return deploy->signByStep(); },
             .yardstick = [deploy] { return deploy->signByHand(); },
             .aim = packageCount >= 1000 ? aim && atMost(3000, "ms") : aim});
    }
}

} // namespace Benchmarks
