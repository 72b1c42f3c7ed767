#include "signstep.h"

#include "signtool.h"

#include <projectexplorer/buildstep.h>
#include <veyraos/kilnsdkkitaspect.h>

#include <QPointer>

using namespace Tasking;
using Kiln::Internal::KilnSdkKitAspectFactory;
using ProjectExplorer::BuildStep;

namespace Sealkit::Internal {

Group signRecipe(QObject *step,
                 const std::function<SetupResult()> &run,
                 const std::function<void()> &cancel)
{
    const QPointer<QObject> guard(step);
    const auto onSetup = [guard, run] { return guard ? run() : SetupResult::StopWithError; };
    const auto onDone = [guard, cancel](DoneWith result) {
        if (result != DoneWith::Cancel)
            return DoneResult::Success;
        if (guard)
            cancel();
        return DoneResult::Error;
    };
    return Group{onGroupSetup(onSetup), onGroupDone(onDone)};
}

void forwardOutput(const SignTool *tool, BuildStep *step)
{
    QObject::connect(tool, &SignTool::addError, step, [step](const QString &line) {
        emit step->addOutput(line, BuildStep::OutputFormat::Stderr, BuildStep::DoAppendNewline);
    });
    QObject::connect(tool, &SignTool::addOutput, step, [step](const QString &line) {
        emit step->addOutput(line, BuildStep::OutputFormat::Stdout, BuildStep::DoAppendNewline);
    });
}

bool hasBuildTarget(const Brisk::BuildEngine *engine,
                    const ProjectExplorer::Kit *kit,
                    QString *error)
{
    if (!engine) {
        *error = QObject::tr("Error: the kit has no build engine");
        return false;
    }
    if (KilnSdkKitAspectFactory::buildTarget(kit).name.isEmpty()) {
        *error = QObject::tr("Error: the kit has no build target");
        return false;
    }
    return true;
}

} // namespace Sealkit::Internal
