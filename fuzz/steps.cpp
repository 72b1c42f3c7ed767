#include "fuzzing.h"
#include "values.h"

#include "constants.h"
#include "customersignstep.h"
#include "rpmsignexternalstep.h"
#include "workplace.h"

#include <projectexplorer/buildsteplist.h>

#include <QWidget>

#include <memory>

using namespace Sealkit;
using namespace Sealkit::Internal;
using ProjectExplorer::BuildStep;
using ProjectExplorer::BuildStepList;
using Utils::Store;

static const QList<Utils::Key> KEYS{"ProjectExplorer.ProjectConfiguration.Id",
                                    "ProjectExplorer.ProjectConfiguration.DisplayName",
                                    "ProjectExplorer.BuildStep.Enabled",
                                    Constants::USE_DEFAULT_VALUES_ID,
                                    Constants::KEY_ID,
                                    Constants::CERT_ID,
                                    Constants::BINARIES_KEY_ID,
                                    Constants::PACKAGES_KEY_ID,
                                    Constants::PACKAGES_CERT_ID,
                                    Constants::PACKAGES_CLIENT_CERT_ID,
                                    Constants::SIGN_DEBUG_PACKAGE_ID};

static Store storeFrom(const QList<QVariant> &values)
{
    Store store;
    for (qsizetype i = 0; i < qMin(values.size(), KEYS.size()); ++i) {
        if (values.at(i).isValid())
            store.insert(KEYS.at(i), values.at(i));
    }
    return store;
}

static Store mapOf(const BuildStep &step)
{
    Store map;
    step.toMap(map);
    return map;
}

/// What a step keeps is what was stored, as its type, or what a new step has.
static void expectKept(const Store &kept, const Store &stored, const Store &fresh)
{
    for (auto it = kept.begin(); it != kept.end(); ++it) {
        if (!Utils::stringFromKey(it.key()).startsWith("Sealkit.")
            && it.key() != Utils::Key("KilnRpmSign.SignDebugPackage"))
            continue;
        const bool isPath = it.value().typeId() == QMetaType::QString;
        QVariant expected = stored.value(it.key(), fresh.value(it.key(), QString()));
        expected = isPath ? QVariant(expected.toString()) : QVariant(expected.toBool());
        expectEqual(it.value(), expected, it.key().toByteArray().constData());
    }
}

template<class Step>
static void checkStep(BuildStepList *stepList, Store stored)
{
    const Store fresh = mapOf(Step(stepList, Step::stepId()));
    const QString id = stored.value(KEYS.first()).toString();
    Step step(stepList, Step::stepId());
    step.fromMap(stored);
    expectEqual(step.hasError(), id != Step::stepId().toString(), "an error for another's map");

    const Store kept = mapOf(step);
    expectKept(kept, stored, fresh);
    Step again(stepList, Step::stepId());
    again.fromMap(kept);
    expect(!again.hasError(), "a step knows its own map");
    expectEqual(
        Utils::mapFromStore(mapOf(again)), Utils::mapFromStore(kept), "a map comes back as it was");

    const std::unique_ptr<QWidget> widget(step.doCreateConfigWidget());
    expectEqual(Utils::mapFromStore(mapOf(step)),
                Utils::mapFromStore(kept),
                "looking at a step changes nothing");
}

namespace {

struct Place
{
    Workplace workplace;
    BuildStepList *stepList = deploySteps(workplace.openProject(RPMSIGN_TARGET));
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const Place place;
    const Store stored = storeFrom(valuesFrom(bytes(data, size)));
    checkStep<RpmsignExternalStep>(place.stepList, stored);
    checkStep<CustomerSignStep>(place.stepList, stored);
    return 0;
}
