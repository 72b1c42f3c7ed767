#pragma once

#include "commandline.h"

#include <QMainWindow>

#include <memory>

class QLabel;
class QProgressBar;
class QTabWidget;
class QTimer;

namespace ProjectExplorer {
class DeployConfiguration;
class Project;
class Target;
} // namespace ProjectExplorer

namespace Workbench {

class DeployPage;
class DeployVerdict;
class IssuesPane;
class OutputPane;
class ProjectTree;
class Session;

/// The desktop shell. Closing it ends the program, and what runs with it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(Session *session);
    ~MainWindow() override;

    /// Opens the SDK, the plugins and the projects that \a commandLine or the last session names.
    void open(const CommandLine &commandLine);
    /// As by the user, but asks and tells nothing in dialogs.
    void closeAtOnce();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void makeContent();
    void makeMenus();
    void connectPlatform();
    void watchProject(ProjectExplorer::Project *project);
    void watchTarget(ProjectExplorer::Target *target);
    void choose(ProjectExplorer::Project *project,
                ProjectExplorer::Target *target,
                ProjectExplorer::DeployConfiguration *configuration);
    void openProject(const QString &path, const QString &targetName);
    void openProjectByDialog();
    void closeProject();
    void forget(const ProjectExplorer::Project *project);
    void showOptions();
    void showProblem(const QString &message);
    void startRun();
    void endRun(bool success);
    void showVerdict();
    void refresh();
    void prepareToClose();

    Session *m_session;
    ProjectTree *m_tree;
    DeployPage *m_page;
    QLabel *m_sdkProblem;
    QTabWidget *m_tabs;
    OutputPane *m_compileOutput;
    OutputPane *m_messages;
    IssuesPane *m_issues;
    QProgressBar *m_busy;
    QLabel *m_verdictLabel;
    std::unique_ptr<DeployVerdict> m_verdict; ///< of the run that goes on, or of the last one
    QAction *m_closeProjectAction = nullptr;
    QTimer *m_refreshTimer;
    bool m_hasOpened = false;
    bool m_isClosing = false;
    bool m_isSilent = false;
};

} // namespace Workbench
