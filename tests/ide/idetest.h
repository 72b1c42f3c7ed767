#pragma once

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

class QAction;
class QMenu;
class QTimer;
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
    void customerSignDeploys();
    void cmakeProjectDeploys();
    void lastEnabledSignStepReports();
    void deploySurvivesChanges();
    void dialogMakesKeyAndRequest();

    void stepIsRestored();
    void textsAreGerman();
    void textsAreJapanese();

    void editorTakesLettersDuringADeploy();
    void deploySignsAfterACancelledOne();
    void deployIsStopped_data();
    void deployIsStopped();
    void ideIsClosed_data();
    void ideIsClosed();
    void ideIsClosedWhileTheDialogSigns();

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
    void releaseTool() const;
    QStringList leftProcesses() const;
    void verifyPackages(const QString &folder, const QString &verifyCommand, int count) const;
    void textsAre(const QString &menuEntry);
    void stopWhenItIsTime(QAction *action, const std::function<void()> &directly);

    const QString m_sdk = qEnvironmentVariable("VEYRAOS_SDK");
    QStringList m_output;
    std::shared_ptr<QMenu> m_menu; ///< open while somebody is about to choose from it
    std::shared_ptr<QTimer> m_moment;
    bool m_hasStopped = false;
};
