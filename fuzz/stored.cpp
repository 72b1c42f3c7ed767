// Steps, options and the dialog take whatever is stored, and store again what they have stored.
#include "fuzzing.h"

#include "constants.h"
#include "customersignstep.h"
#include "rpmsignexternalstep.h"
#include "signdialog.h"
#include "signoptionswidget.h"
#include "workplace.h"

#include <projectexplorer/buildsteplist.h>

#include <QSettings>
#include <QWidget>

using namespace Sealkit::Internal;

/// Each line is a key and a value: "KEY=", a letter for the type, the value's text.
static QVariantMap mapFrom(const QByteArray &input)
{
    QVariantMap map;
    for (const QByteArray &line : input.split('\n')) {
        const qsizetype sign = line.indexOf('=');
        const QString text = line.mid(sign + 2);
        const QVariantMap values{
            {"s", text}, {"b", !text.isEmpty()}, {"i", text.toLongLong()}, {"l", text.split(u',')}};
        map.insert(line.left(sign), values.value(line.mid(sign + 1, 1)));
    }
    return map;
}

static ProjectExplorer::BuildStepList *stepList()
{
    static auto *const steps = [] {
        static auto *const workplace = new Workplace;
        qAddPostRoutine([] { delete workplace; }); // before the application
        return deploySteps(workplace->openProject(RPMSIGN_TARGET));
    }();
    return steps;
}

template<class Step>
static QVariantMap useStep(const QVariantMap &stored)
{
    Step step(stepList(), Step::stepId());
    step.fromMap(Utils::storeFromMap(stored));
    delete step.doCreateConfigWidget(); // to look at a step changes nothing
    Utils::Store map;
    step.toMap(map);
    return Utils::mapFromStore(map);
}

static QVariantMap useSettings(const QVariantMap &stored)
{
    QSettings settings;
    settings.clear();
    for (auto it = stored.begin(); it != stored.end(); ++it)
        settings.setValue(it.key(), it.value());
    SignOptionsWidget().store();
    SignDialog(nullptr).data();
    settings.remove(Sealkit::Constants::SIGN_DIALOG_HISTORY_GEOMETRY); // grows without a frame
    QVariantMap map;
    for (const QString &key : settings.allKeys())
        map.insert(key, settings.value(key));
    return map;
}

extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size)
{
    const QVariantMap stored = mapFrom(QByteArray(data, qsizetype(size)));
    for (const auto use : {useStep<RpmsignExternalStep>, useStep<CustomerSignStep>, useSettings}) {
        const QVariantMap kept = use(stored);
        expect(use(kept) == kept, "what was stored comes back as it was");
        for (auto it = kept.begin(); it != kept.end(); ++it)
            expect(it->typeId() != QMetaType::Bool || *it == stored.value(it.key(), *it).toBool(),
                   "a choice is kept");
    }
    return 0;
}
