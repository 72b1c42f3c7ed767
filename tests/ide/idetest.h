#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

class QWidget;

namespace ProjectExplorer {
class BuildStep;
class Project;
} // namespace ProjectExplorer

/// What Sealkit does in the real IDE, on the demo project of the SDK in VEYRAOS_SDK. Functions that
/// belong together run in one IDE, in this order.
class IdeTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void pluginsRun();
    void kitsHaveNoWarning();
    void signStepFollowsRpmStep();
    void customerSignStepIsOff();
    void deploySigns();
    void dialogSignsVerifiesDumpsAndRemoves();
    void optionsAreApplied();
    void failedToolIsAnIssue();
    void deployAsksForPassPhrase();

    void stepIsRestored();
    void textsAreGerman();

    void deployIsCanceled();
    void projectIsClosed();
    void ideIsClosed();

    void picturesAreTaken();

private:
    QString inWorkspace(const QString &path) const;
    ProjectExplorer::BuildStep *signStep() const;
    void startDeploy();
    bool waitForDeploy();
    QString lastOutput() const;
    void inOptions(const std::function<void(QWidget *dialog)> &act) const;
    void setToolBehaviour(const QString &behaviour) const;
    bool toolIsBusy() const;
    void interruptDeploys(const QString &keys,
                          const std::function<bool()> &isOver,
                          const std::function<void()> &check);

    const QString m_sdk = qEnvironmentVariable("VEYRAOS_SDK");
    QStringList m_output;
};
