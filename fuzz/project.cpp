#include "fuzzing.h"

#include "customersignstep.h"
#include "files.h"
#include "rpmsignexternalstep.h"
#include "stepfactory.h"
#include "workplace.h"

#include <host/userproject.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/target.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

using namespace ProjectExplorer;
using namespace Sealkit::Internal;

static const char TARGETS_KEY[] = "ProjectExplorer.Project.Targets";

namespace {

/// A project file, and the factories of all steps.
struct Place
{
    Workplace workplace;
    DeployStepFactory<CustomerSignStep> customerSteps;
    DeployStepFactory<RpmsignExternalStep> rpmsignSteps;
    Utils::FilePath spec = workplace.workspace() / "fuzzed/rpm/fuzzed.spec";
};

} // namespace

static QJsonObject targetsIn(const QByteArray &settings)
{
    return QJsonDocument::fromJson(settings).object().value(QLatin1String(TARGETS_KEY)).toObject();
}

static QByteArray restoredAndSaved(const Utils::FilePath &spec)
{
    Host::UserProject project(spec);
    QString error;
    expect(project.restoreSettings(&error), "a project reads what one has saved");
    expect(project.saveSettings(&error), "settings can be saved");
    expect(error.isEmpty(), "no error without a fault");
    return readFile(project.settingsFilePath().toFSPathString());
}

static void expectUnknownTargetsKept(const QByteArray &saved, const QByteArray &original)
{
    const QJsonObject kept = targetsIn(saved);
    const QJsonObject targets = targetsIn(original);
    for (auto it = targets.begin(); it != targets.end(); ++it) {
        if (!KitManager::kit(Utils::Id::fromString(it.key())))
            expectEqual(
                kept.value(it.key()), QJsonValue(it.value()), "another kit's target is kept");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const Place place;
    const QByteArray original = bytes(data, size);
    Host::UserProject project(place.spec);
    const QString file = project.settingsFilePath().toFSPathString();
    const QString backup = file + ".bak";
    writeFile(file, original);

    QString error;
    if (!project.restoreSettings(&error)) {
        expect(!error.isEmpty(), "a fault has a reason");
        expect(project.targets().isEmpty(), "all or nothing");
        expect(!QFile::exists(file), "what cannot be read is out of the way");
        expectEqual(readFile(backup), original, "what cannot be read is kept");
        QFile::remove(backup);
        return 0;
    }
    expect(error.isEmpty() && !QFile::exists(backup), "no error without a fault");
    for (const Target *target : project.targets())
        expect(target->activeDeployConfiguration(), "a target can deploy");

    const QByteArray saved = restoredAndSaved(place.spec);
    expectUnknownTargetsKept(saved, original);
    expectEqual(restoredAndSaved(place.spec), saved, "settings come back as they were");
    return 0;
}
