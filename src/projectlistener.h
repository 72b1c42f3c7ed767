#pragma once

#include <QObject>

namespace Sealkit::Internal {

/// Gives each deploy configuration that builds packages a sign step, right after the RPM build
/// step, as projects, targets and configurations are added from now on.
class ProjectListener : public QObject
{
    Q_OBJECT

public:
    ProjectListener();
    ~ProjectListener() override;
};

} // namespace Sealkit::Internal
