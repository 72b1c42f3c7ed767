#pragma once

#include "customersealkit.h"
#include "signrun.h"

#include <solutions/tasking/tasktree.h>
#include <veyraos/kilnprocessstep.h>

#include <QPointer>

#include <optional>

namespace Brisk {
class BuildEngine;
}

namespace Kiln::Internal {
class KilnKb2RpmBuildStep;
}

namespace Sealkit::Internal {

/// Signs the packages of the RPM build step before it with customer-sign.
class CustomerSignStep : public Kiln::Internal::KilnProcessStep
{
    Q_OBJECT

public:
    /// Only the constructor looks for the RPM build step. If this step has not joined the list yet,
    /// it takes the first RPM build step in the list.
    CustomerSignStep(ProjectExplorer::BuildStepList *stepList, Utils::Id id, bool enabled = true);

    static Utils::Id stepId();
    static QString displayName();

    bool init() override;
    void doCancel() override;
    void fromMap(const Utils::Store &map) override;
    void toMap(Utils::Store &map) const override;

public slots:
    void setBinariesKey(const QString &path) { m_signData.binariesKey = path; }
    void setPackagesKey(const QString &path) { m_signData.key = path; }
    void setPackagesCert(const QString &path) { m_signData.certificate = path; }
    void setPackagesClientCert(const QString &path) { m_signData.clientCertificate = path; }
    void setSignDebugPackages(bool sign) { m_signDebugPackages = sign; }

private:
    Tasking::GroupItem runRecipe() override;
    QWidget *createConfigWidget() override;

    Tasking::SetupResult doRun(SignRun &run);
    std::optional<QStringList> findPackages() const;
    QString defaultKeyFile(const char *pathBelowHome) const;

    SignData m_signData;
    CustomerSealkit m_tool;
    bool m_signDebugPackages = true;
    QPointer<Brisk::BuildEngine> m_buildEngine;
    QPointer<Kiln::Internal::KilnKb2RpmBuildStep> m_rpmBuildStep;
};

} // namespace Sealkit::Internal
