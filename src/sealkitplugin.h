#pragma once

#include "customersignstep.h"
#include "rpmsignexternalstep.h"
#include "stepfactory.h"

#include <extensionsystem/iplugin.h>
#include <utils/filepath.h>

#include <memory>

namespace Sealkit::Internal {

class ProjectListener;
class SignDialog;

/// Creates, registers and releases all that the plugin adds to the IDE.
class SealkitPlugin : public ExtensionSystem::IPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QtCreatorPlugin" FILE "Sealkit.json")

public:
    SealkitPlugin();
    ~SealkitPlugin() override;

    bool initialize(const QStringList &arguments, QString *errorString) override;
    void extensionsInitialized() override;
    ShutdownFlag aboutToShutdown() override;

public slots:
    /// Puts the SDK's regular keys into the workspace, unless they are there. Failures are told to
    /// the user only if \a printUserLog.
    void onSharedSrcPathChanged(const Utils::FilePath &sharedSrcPath, bool printUserLog);

private:
    void registerOptionsCategory();
    void loadTranslations();
    void addSignPackagesAction();
    void showSignDialog();
    void watchBuildEngines();
    bool copyDefault(const char *fileName, const Utils::FilePath &destination);

    std::unique_ptr<SignDialog> m_signDialog; ///< made on first use, then kept
    std::unique_ptr<ProjectListener> m_projectListener;
    DeployStepFactory<CustomerSignStep> m_customerSignStepFactory;
    DeployStepFactory<RpmsignExternalStep> m_rpmsignExternalStepFactory;
};

} // namespace Sealkit::Internal
