#include "fuzzing.h"
#include "values.h"

#include "constants.h"
#include "signdialog.h"
#include "signoptionswidget.h"
#include "utils.h"
#include "workplace.h"

#include <QSettings>

using namespace Sealkit;
using namespace Sealkit::Internal;

static const QStringList OPTIONS{Constants::ENABLE_DEFAULT_SIGN_KEY,
                                 Constants::GLOBAL_SIGNKEY_KEY,
                                 Constants::GLOBAL_SIGNCERT_KEY,
                                 Constants::USE_DEFAULT_SIGNKEY_KEY,
                                 Constants::USE_DEFAULT_SIGNCERT_KEY};
static const QStringList HISTORY{Constants::KEY_GENERATION_HISTORY_ALGORYTHM,
                                 Constants::KEY_GENERATION_HISTORY_ENCRYPT,
                                 Constants::SIGN_DATA_HISTORY_TARGET_NAME};
static const QStringList COMPLETERS{"CompleterHistory/Sealkit.HistoryDefaultSignKey",
                                    "CompleterHistory/KilnRpmSign.Data.Completer.RpmPackage",
                                    "CompleterHistory/KilnRpmSign.Data.Completer.GeneratedKey"};

static QVariantMap stored(const QStringList &keys)
{
    const QSettings settings;
    QVariantMap map;
    for (const QString &key : keys)
        map.insert(key, settings.value(key));
    return map;
}

static void store(const QStringList &keys, const QList<QVariant> &values)
{
    QSettings settings;
    for (qsizetype i = 0; i < keys.size(); ++i) {
        if (values.value(i).isValid())
            settings.setValue(keys.at(i), values.at(i));
        else
            settings.remove(keys.at(i));
    }
}

static void checkOptions(const QString &regularKey)
{
    const QVariantMap before = stored(OPTIONS);
    SignOptionsWidget().store();
    const QVariantMap after = stored(OPTIONS);
    for (const QString &flag : {OPTIONS.at(0), OPTIONS.at(3), OPTIONS.at(4)}) {
        const QVariant value = before.value(flag);
        expectEqual(after.value(flag), QVariant(!value.isValid() || value.toBool()), "a choice");
    }
    if (after.value(Constants::USE_DEFAULT_SIGNKEY_KEY).toBool())
        expectEqual(after.value(Constants::GLOBAL_SIGNKEY_KEY).toString(), regularKey, "the key");

    SignOptionsWidget().store();
    expectEqual(stored(OPTIONS), after, "what was applied stays");
}

static void checkHistory()
{
    const QVariantMap before = stored(HISTORY);
    SignDialog(nullptr).data();
    const QVariantMap after = stored(HISTORY);
    const QVariant encrypt = before.value(Constants::KEY_GENERATION_HISTORY_ENCRYPT);
    expectEqual(after.value(Constants::KEY_GENERATION_HISTORY_ENCRYPT),
                QVariant(!encrypt.isValid() || encrypt.toBool()),
                "whether keys are encrypted");
    const QString algorithm = Constants::KEY_GENERATION_HISTORY_ALGORYTHM;
    expectEqual(after.value(algorithm),
                QVariant(before.value(algorithm).toInt() == GOST ? int(GOST) : int(RSA)),
                "the algorithm of keys");
    const QString target = Constants::SIGN_DATA_HISTORY_TARGET_NAME;
    expectEqual(after.value(target), before.value(target), "without a target the last one stays");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const Workplace workplace;
    static const QString regularKey = getDefaultKey(workplace.workspace()).toFSPathString();

    store(OPTIONS + HISTORY + COMPLETERS, valuesFrom(bytes(data, size)));
    checkOptions(regularKey);
    checkHistory();
    return 0;
}
