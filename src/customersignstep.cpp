#include "customersignstep.h"

#include "constants.h"
#include "customersignstepwidget.h"
#include "utils.h"

#include <brisk/buildengine.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/target.h>
#include <veyraos/kilnbuildsteputils.h>
#include <veyraos/kilnkb2rpmbuildstep.h>
#include <veyraos/kilnsdkkitaspect.h>

#include <QDir>
#include <QRegularExpression>

using namespace Kiln::Internal;
using namespace ProjectExplorer;
using namespace Tasking;

namespace Sealkit::Internal {

CustomerSignStep::CustomerSignStep(BuildStepList *stepList, Utils::Id id, bool enabled)
    : KilnProcessStep(stepList, id)
{
    setDefaultDisplayName(displayName());
    m_rpmBuildStep = earlierBuildStep<KilnKb2RpmBuildStep>(deployConfiguration(), this);
    m_buildEngine = KilnSdkKitAspectFactory::buildEngine(target()->kit());
    m_signData.binariesKey = defaultKeyFile(Constants::DEFAULT_BINARIES_KEY);
    m_signData.key = defaultKeyFile(Constants::DEFAULT_PACKAGES_KEY);
    m_signData.certificate = defaultKeyFile(Constants::DEFAULT_PACKAGES_CERT);
    m_signData.clientCertificate = defaultKeyFile(Constants::DEFAULT_PACKAGES_CLIENT_CERT);
    forwardOutput(&m_tool, this);
    setStepEnabled(enabled);
    setEnabled(enabled);
}

Utils::Id CustomerSignStep::stepId()
{
    return Constants::CUSTOMER_SIGN_STEP_ID;
}

QString CustomerSignStep::displayName()
{
    return tr("RPM Sign (customer-sign)");
}

static bool isDebugPackage(const QString &path)
{
    static const QRegularExpression others{QLatin1String(Constants::EXCLUDE_DEBUG_PACKAGE_PATTERN)};
    return !others.match(QFileInfo(path).fileName()).hasMatch();
}

/// The path of a key in the shared home; empty when there is no such file.
QString CustomerSignStep::defaultKeyFile(const char *pathBelowHome) const
{
    if (!m_buildEngine)
        return {};
    const QString path = QDir::toNativeSeparators(m_buildEngine->sharedHomePath().toFSPathString())
                         + QLatin1String(pathBelowHome);
    return QFileInfo::exists(path) ? path : QString();
}

bool CustomerSignStep::init()
{
    return KilnProcessStep::init(WithoutCommandLine);
}

GroupItem CustomerSignStep::runRecipe()
{
    return SignRun::recipe(
        this,
        &m_tool,
        {.doRun = [this](SignRun &run) { return doRun(run); }, .doCancel = [this] { doCancel(); }});
}

SetupResult CustomerSignStep::doRun(SignRun &run)
{
    return run.sign({
        .startText = tr("Signing RPM package..."),
        .noBuildStepText = tr("Error: No previous \"%1\" step found"),
        .noPackagesText = tr("Error: no package for sign found"),
        .successText = tr("Package sign completed successfully."),
        .buildEngine = m_buildEngine,
        .data = m_signData,
        .isValid = &SignData::isValid<CustomerSealkit>,
        .packages = findPackages(),
    });
}

std::optional<QStringList> CustomerSignStep::findPackages() const
{
    if (!m_rpmBuildStep)
        return {};
    QStringList packages = m_rpmBuildStep->deployablePackagesFileNames();
    if (!m_signDebugPackages)
        packages.removeIf(isDebugPackage);
    return m_buildEngine ? pathsInWorkspace(packages, m_buildEngine->sharedSrcPath()) : packages;
}

void CustomerSignStep::doCancel()
{
    m_tool.cancel();
    emit addOutput(tr("Package sign stopped by user"), OutputFormat::ErrorMessage);
}

QWidget *CustomerSignStep::createConfigWidget()
{
    auto *widget = new CustomerSignStepWidget(this);
    widget->formatAndSetSummaryText(tr("Sign RPM package"));
    widget->setCommandText(QLatin1String(Constants::CUSTOMER_SIGN_TOOL));
    if (m_buildEngine) {
        widget->setSharedHomePath(m_buildEngine->sharedHomePath());
        widget->setSharedSrcPath(m_buildEngine->sharedSrcPath());
    }
    widget->setBinariesKey(m_signData.binariesKey);
    widget->setPackagesKey(m_signData.key);
    widget->setPackagesCert(m_signData.certificate);
    widget->setPackagesClientCert(m_signData.clientCertificate);
    widget->setSignDebugPackages(m_signDebugPackages);

    using Widget = CustomerSignStepWidget;
    connect(widget, &Widget::binariesKeyChanged, this, &CustomerSignStep::setBinariesKey);
    connect(widget, &Widget::packagesKeyChanged, this, &CustomerSignStep::setPackagesKey);
    connect(widget, &Widget::packagesCertChanged, this, &CustomerSignStep::setPackagesCert);
    connect(
        widget, &Widget::packagesClientCertChanged, this, &CustomerSignStep::setPackagesClientCert);
    connect(widget, &Widget::signDebugPackages, this, &CustomerSignStep::setSignDebugPackages);
    return widget;
}

void CustomerSignStep::toMap(Utils::Store &map) const
{
    KilnProcessStep::toMap(map);
    map.insert(Constants::BINARIES_KEY_ID, m_signData.binariesKey);
    map.insert(Constants::PACKAGES_KEY_ID, m_signData.key);
    map.insert(Constants::PACKAGES_CERT_ID, m_signData.certificate);
    map.insert(Constants::PACKAGES_CLIENT_CERT_ID, m_signData.clientCertificate);
    map.insert(Constants::SIGN_DEBUG_PACKAGE_ID, m_signDebugPackages);
}

void CustomerSignStep::fromMap(const Utils::Store &map)
{
    KilnProcessStep::fromMap(map);
    const auto restorePath = [&map](const Utils::Key &key, QString *path) {
        *path = map.value(key, *path).toString();
    };
    restorePath(Constants::BINARIES_KEY_ID, &m_signData.binariesKey);
    restorePath(Constants::PACKAGES_KEY_ID, &m_signData.key);
    restorePath(Constants::PACKAGES_CERT_ID, &m_signData.certificate);
    restorePath(Constants::PACKAGES_CLIENT_CERT_ID, &m_signData.clientCertificate);
    m_signDebugPackages = map.value(Constants::SIGN_DEBUG_PACKAGE_ID, m_signDebugPackages).toBool();
}

} // namespace Sealkit::Internal
