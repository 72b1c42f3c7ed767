#pragma once

#include "buildengineinfo.h"
#include "packagewatch.h"
#include "runqueue.h"
#include "signdata.h"
#include "targettoolsinfo.h"

#include <utils/filepath.h>

#include <QDialog>
#include <QHash>

#include <functional>
#include <memory>

class QPushButton;
class QStatusBar;
class Ui_SignDialog;

namespace Sealkit::Internal {

class SignTool;

/// Signs, unsigns, verifies and dumps a package of the user's choice, and makes keys with their
/// certificate signing requests. The tools run while the event loop turns; when the user chooses
/// another package meanwhile, its state is shown after the run.
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
    void changeEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private slots:
    void onTabChanged(int index);

private:
    using Run = RunQueue::Run;

    void initPathChoosers();
    void connectButtons();
    void initStatusBar();
    void initBuildEngine();
    void initKeyGeneration();
    void initRegularKeys();

    QString package() const;
    KeyGenerationData keyGenerationData() const;
    bool verifyPath(const QString &path, bool mustExist, QString *error) const;

    void setTargets(const QStringList &targets);
    void showEngineProblem(BuildEngineInfo::Problem problem);
    void setTargetName(const QString &name);
    void followTarget();
    void showToolsOfTarget();
    QString missingTools() const;
    SignTool *signTool();
    void runOnPackage(const std::function<void(SignTool *tool, const Run &run)> &operation,
                      const std::function<void()> &onNoTool = {});

    QString problemOfFields(const SignData &signData) const;
    void clearVerdict();
    void clearDump();
    void addSignature();
    void removeSignature();
    void verifySignature();
    void dumpSignature();
    void refreshPackageState();
    QStringList chosenPackage() const;
    void showSignatures(const QStringList &blocks);
    void generateRequest();

    void updateOpensslInfo();
    void updateOpensslLabel();
    void invalidate();

    void processButtonOperation(bool running);

    PackageWatch m_packageWatch;
    TargetToolsInfo m_current;
    QHash<QString, TargetToolsInfo> m_targetTools;
    QHash<QString, SignTool *> m_signTools;
    Utils::FilePath m_workspace;
    const std::unique_ptr<Ui_SignDialog> m_ui;
    QList<QPushButton *> m_buttons;
    QStatusBar *m_statusBar = nullptr;
    RunQueue m_runQueue{this};
};

/// The subject and group lines of a signature's dump.
QString parseDumpForSort(const QString &dump);

} // namespace Sealkit::Internal
