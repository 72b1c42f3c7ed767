#include "rpmsignexternalstep.h"

#include "constants.h"
#include "rpmsignexternalwidget.h"
#include "utils.h"

#include <brisk/buildengine.h>
#include <projectexplorer/buildsteplist.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/target.h>
#include <veyraos/kilnbuildsteputils.h>
#include <veyraos/kilnkb2rpmbuildstep.h>
#include <veyraos/kilnsdkkitaspect.h>

#include <QFileInfo>
#include <QSet>
#include <QSettings>

#include <algorithm>

using namespace Kiln::Internal;
using namespace ProjectExplorer;
using namespace Tasking;
using Utils::FilePath;

namespace Sealkit::Internal {

/// What the settings name, else the regular file in the workspace of \a engine.
static QString globalPath(const char *settingsKey,
                          const Brisk::BuildEngine *engine,
                          FilePath (*regularFile)(const FilePath &workspace))
{
    const QSettings settings;
    if (settings.contains(QLatin1String(settingsKey)))
        return settings.value(QLatin1String(settingsKey)).toString();
    return engine ? regularFile(engine->sharedSrcPath()).toFSPathString() : QString();
}

QString StepKeys::readDefaultKey() const
{
    return globalPath(Constants::GLOBAL_SIGNKEY_KEY, buildEngine, getDefaultKey);
}

QString StepKeys::readDefaultCertificate() const
{
    return globalPath(Constants::GLOBAL_SIGNCERT_KEY, buildEngine, getDefaultCertificate);
}

RpmsignExternalStep::RpmsignExternalStep(BuildStepList *parent, Utils::Id id, bool enabled)
    : KilnProcessStep(parent, id)
    , m_tool(nullptr)
{
    setDefaultDisplayName(displayName());
    m_keys.buildEngine = KilnSdkKitAspectFactory::buildEngine(target()->kit());

    forwardOutput(&m_tool, this);
    const bool on = QSettings().value(Constants::ENABLE_DEFAULT_SIGN_KEY, enabled).toBool();
    setStepEnabled(on);
    setEnabled(on);
}

Utils::Id RpmsignExternalStep::stepId()
{
    return Constants::RPMSIGN_EXTERNAL_STEP_ID;
}

QString RpmsignExternalStep::displayName()
{
    return tr("RPM Sign (rpmsign-external)");
}

bool RpmsignExternalStep::init()
{
    return KilnProcessStep::init(WithoutCommandLine);
}

GroupItem RpmsignExternalStep::runRecipe()
{
    return SignRun::recipe(
        this,
        &m_tool,
        {.doRun = [this](SignRun &run) { return doRun(run); }, .doCancel = [this] { doCancel(); }});
}

SetupResult RpmsignExternalStep::doRun(SignRun &run)
{
    SignData data;
    data.key = m_keys.getKey();
    data.certificate = m_keys.getCertificate();
    const std::optional<QStringList> packages = findPackages();
    const SetupResult result = run.sign({
        .startText = tr("Signing RPM package..."),
        .noBuildStepText = tr("Error: No previous \"%1\" step found"),
        .noPackagesText = tr("Error: no package for sign found"),
        .successText = tr("Package sign completed successfully."),
        .buildEngine = m_keys.buildEngine,
        .data = data,
        .isValid = &SignData::isValid<RpmsignExternal>,
        .packages = packages,
    });
    if (result == SetupResult::Continue)
        dumpSign(run, *packages);
    return result;
}

std::optional<QStringList> RpmsignExternalStep::findPackages() const
{
    const auto *buildStep = earlierBuildStep<KilnKb2RpmBuildStep>(deployConfiguration(), this);
    if (!buildStep)
        return {};
    const QStringList packages = buildStep->packages();
    const Brisk::BuildEngine *engine = m_keys.buildEngine;
    return engine ? pathsInWorkspace(packages, engine->sharedSrcPath()) : packages;
}

void RpmsignExternalStep::dumpSign(SignRun &run, const QStringList &packages)
{
    if (!isLastSigningStep())
        return;

    const std::optional<Command::Result> result = run.dump(packages);
    if (!result)
        return;
    if (!result->succeeded()) {
        emit addOutput(tr("Failed to verify signature dump"), OutputFormat::Stderr);
        return;
    }

    const QString dump = QString::fromUtf8(result->stdOut);
    if (packages.size() == 1) {
        checkSignGroups(dump, QFileInfo(packages.first()).fileName());
        return;
    }
    QSet<QString> unnamed;
    for (const QString &package : packages)
        unnamed.insert(QFileInfo(package).fileName());
    const QList<PackageDump> dumps = dumpsOfPackages(dump, packages);
    for (const PackageDump &package : dumps) {
        const QString name = QFileInfo(package.packagePath).fileName();
        checkSignGroups(package.dump, name);
        unnamed.remove(name);
    }
    // A user takes a package without a note for one that customers' devices accept.
    if (!unnamed.isEmpty())
        emit addOutput(tr("Failed to verify signature dump"), OutputFormat::Stderr);
}

void RpmsignExternalStep::checkSignGroups(const QString &dump, const QString &packageName)
{
    const SignGroups groups = signGroups(dump);
    if (groups.client)
        return;
    const QString note =
        groups.developer
            ? tr("Note: Packages %1 signed with developer key, use is possible only for "
                 "development purposes. Read more: %2")
            : tr("Note: Packages %1 is not signed. Deployment to the device is not possible. "
                 "Read more: %2");
    emit addOutput(note.arg(packageName, QLatin1String(Constants::PACKAGE_SIGNING_PAGE)),
                   OutputFormat::Stderr);
}

bool RpmsignExternalStep::isLastSigningStep() const
{
    const QList<BuildStep *> steps = stepList()->steps();
    const auto later = steps.mid(steps.indexOf(this) + 1);
    return std::none_of(later.begin(), later.end(), [](const BuildStep *step) {
        return step->id() == stepId() && step->stepEnabled();
    });
}

void RpmsignExternalStep::doCancel()
{
    m_tool.cancel();
    emit addOutput(tr("Package sign stopped by user"), OutputFormat::ErrorMessage);
}

QWidget *RpmsignExternalStep::createConfigWidget()
{
    auto *widget = new RpmsignExternalWidget(this);
    widget->formatAndSetSummaryText(tr("Sign RPM package"));
    if (m_keys.buildEngine) {
        widget->setSharedHomePath(m_keys.buildEngine->sharedHomePath());
        widget->setSharedSrcPath(m_keys.buildEngine->sharedSrcPath());
    }
    // setDefault() clears the paths, so it comes before them, and before the step listens.
    widget->setDefault(m_keys.useDefaultValues);
    widget->setKey(m_keys.key);
    widget->setCertificate(m_keys.certificate);

    using Widget = RpmsignExternalWidget;
    using Self = RpmsignExternalStep;
    connect(widget, &Widget::keyChanged, this, &Self::setKey);
    connect(widget, &Widget::certificateChanged, this, &Self::setCertificate);
    connect(widget, &Widget::useDefaultValuesChanged, this, &Self::setUseDefaultValues);
    return widget;
}

void RpmsignExternalStep::toMap(Utils::Store &map) const
{
    KilnProcessStep::toMap(map);
    map.insert(Constants::USE_DEFAULT_VALUES_ID, m_keys.useDefaultValues);
    if (m_keys.useDefaultValues)
        return;
    map.insert(Constants::KEY_ID, m_keys.key);
    map.insert(Constants::CERT_ID, m_keys.certificate);
}

void RpmsignExternalStep::fromMap(const Utils::Store &map)
{
    KilnProcessStep::fromMap(map);
    m_keys.useDefaultValues =
        map.value(Constants::USE_DEFAULT_VALUES_ID, m_keys.useDefaultValues).toBool();
    if (m_keys.useDefaultValues)
        return;
    m_keys.key = map.value(Constants::KEY_ID, m_keys.key).toString();
    m_keys.certificate = map.value(Constants::CERT_ID, m_keys.certificate).toString();
}

} // namespace Sealkit::Internal
