#pragma once

#include "buildengineinfo.h"
#include "packagewatch.h"
#include "resultview.h"
#include "runqueue.h"
#include "signdata.h"
#include "targettoolsinfo.h"

#include <utils/filepath.h>

#include <QDialog>
#include <QHash>

#include <memory>
#include <stop_token>

class QPushButton;
class QStatusBar;
class Ui_SignDialog;

namespace Sealkit::Internal {

class SignTool;

/// Signs, unsigns, verifies and dumps a package of the user's choice, and makes keys with their
/// certificate signing requests. What is to be done waits in a queue, which locks the dialog until
/// all is done. When the user chooses another package meanwhile, its state is shown in the end.
class SignDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SignDialog(QWidget *parent);
    ~SignDialog() override;

    /// The keys and certificates as they stand in the fields, hidden ones included.
    SignData data() const;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private slots:
    void onTabChanged(int index);

private:
    using Task = RunQueue::Task;

    void initPathChoosers();
    void connectButtons();
    void openHelp();
    void initStatusBar();
    void initBuildEngine();
    void initKeyGeneration();
    void initRegularKeys();

    QString package() const;
    KeyGenerationData keyGenerationData() const;
    bool verifyPath(const QString &path, bool mustExist, QString *error) const;
    QString problemOfFields(const SignData &signData) const;
    QString signersWith(const SignData &signData) const;

    void setTargets(const QStringList &targets);
    void setTargetName(const QString &name);
    void showEngineProblem(BuildEngineInfo::Problem problem);
    void setTools(const TargetToolsInfo &tools);
    SignTool *signTool();
    SignTool *toolForPackage();

    void invalidate();
    bool isStillAsked(const PackageState &lookedAt) const;
    void generateRequest();
    void updateOpensslInfo();
    void updateOpensslLabel();
    void warnOfMissingClientSignature();
    void showFieldMessage(const QString &message);
    void forgetFieldMessage();
    void processButtonOperation(bool running);

    // The tasks; called by the queue alone.
    RunQueue::Show work(Task task);
    RunQueue::Show followTarget();
    RunQueue::Show lookForOpenssl();
    RunQueue::Show addSignature();
    RunQueue::Show removeSignature();
    RunQueue::Show verifySignature();
    RunQueue::Show dumpSignature();
    RunQueue::Show makeRequest();

    PackageWatch m_packageWatch;
    QString m_targetName;      ///< chosen by the user
    TargetToolsInfo m_current; ///< of the target that was followed last
    QHash<QString, TargetToolsInfo> m_targetTools;
    QHash<QString, SignTool *> m_signTools;
    Utils::FilePath m_workspace;
    const std::unique_ptr<Ui_SignDialog> m_ui;
    ResultView m_view;
    QList<QPushButton *> m_buttons;
    QStatusBar *m_statusBar = nullptr;
    QString m_fieldMessage;  ///< holds until a field changes or the next run begins
    std::stop_source m_stop; ///< ends the tool that runs when the dialog is deleted
    RunQueue m_runQueue;
};

} // namespace Sealkit::Internal
