#pragma once

#include "rpmsignexternal.h"
#include "signrun.h"

#include <solutions/tasking/tasktree.h>
#include <veyraos/kilnprocessstep.h>

#include <QPointer>

#include <optional>

namespace Brisk {
class BuildEngine;
}

namespace Sealkit::Internal {

/// The key and certificate that a step signs with: its own, or the global ones.
struct StepKeys
{
    QString key;
    QString certificate;
    bool useDefaultValues = true;
    QPointer<Brisk::BuildEngine> buildEngine; ///< whose workspace has the regular keys

    void setKey(const QString &path) { key = path; }
    void setCertificate(const QString &path) { certificate = path; }
    /// The key and certificate in force: the global pair, or the pair of the step.
    QString getKey() const { return useDefaultValues ? readDefaultKey() : key; }
    QString getCertificate() const
    {
        return useDefaultValues ? readDefaultCertificate() : certificate;
    }

    /// What the settings name, even if that is an empty path; else the regular key.
    QString readDefaultKey() const;
    QString readDefaultCertificate() const;
};

/// Signs the packages of the RPM build step before it with rpmsign-external, then tells what their
/// signatures are worth.
class RpmsignExternalStep : public Kiln::Internal::KilnProcessStep
{
    Q_OBJECT

public:
    /// \a enabled counts only if the settings do not say how new steps start.
    RpmsignExternalStep(ProjectExplorer::BuildStepList *parent, Utils::Id id, bool enabled = true);

    static Utils::Id stepId();
    static QString displayName();

    bool init() override;
    void doCancel() override;
    void fromMap(const Utils::Store &map) override;
    void toMap(Utils::Store &map) const override;

public slots:
    void setKey(const QString &path) { m_keys.setKey(path); }
    void setCertificate(const QString &path) { m_keys.setCertificate(path); }
    void setUseDefaultValues(bool useDefaultValues) { m_keys.useDefaultValues = useDefaultValues; }

private:
    Tasking::GroupItem runRecipe() override;
    QWidget *createConfigWidget() override;

    Tasking::SetupResult doRun(SignRun &run);
    std::optional<QStringList> findPackages() const;
    void dumpSign(SignRun &run, const QStringList &packages);
    void checkSignGroups(const QString &dump, const QString &packageName);
    bool isLastSigningStep() const;

    RpmsignExternal m_tool;
    StepKeys m_keys;
};

} // namespace Sealkit::Internal
