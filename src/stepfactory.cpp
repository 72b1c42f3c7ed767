#include "stepfactory.h"

#include "customersignstep.h"
#include "rpmsignexternalstep.h"

#include <veyraos/kilnsdkkitaspect.h>

namespace Sealkit::Internal {

ProjectExplorer::BuildStep *StepFactory::createStep(ProjectExplorer::Kit *kit,
                                                    ProjectExplorer::BuildStepList *stepList)
{
    const QStringList tools = Kiln::Internal::KilnSdkKitAspectFactory::buildTarget(kit).tools;
    if (tools.contains(QLatin1String(Constants::RPMSIGN_EXTERNAL_TOOL)))
        return new RpmsignExternalStep(stepList, RpmsignExternalStep::stepId(), true);
    // Not enabled, because the user has to choose the customer's keys first.
    if (tools.contains(QLatin1String(Constants::CUSTOMER_SIGN_TOOL)))
        return new CustomerSignStep(stepList, CustomerSignStep::stepId(), false);
    return nullptr;
}

} // namespace Sealkit::Internal
