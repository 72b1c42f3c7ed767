#include "mainwindow.h"

#include "deploypage.h"
#include "deployverdict.h"
#include "generalpage.h"
#include "issuespane.h"
#include "optionsdialog.h"
#include "outputpane.h"
#include "projecttree.h"
#include "promptanswerer.h"
#include "session.h"

#include <coreplugin/actionmanager/actioncontainer.h>
#include <coreplugin/actionmanager/actionmanager.h>
#include <coreplugin/icore.h>
#include <coreplugin/messagemanager.h>
#include <host/application.h>
#include <host/buildmanager.h>
#include <host/generalmessages.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>
#include <utils/theme/theme.h>

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdio>
#include <utility>

using namespace ProjectExplorer;

namespace Workbench {

constexpr char GEOMETRY_KEY[] = "Workbench/Geometry";
constexpr QSize MINIMUM_SIZE{640, 480};
constexpr QSize INITIAL_SIZE{1100, 760};

MainWindow::MainWindow(Session *session)
    : m_session(session)
    , m_tree(new ProjectTree)
    , m_page(new DeployPage)
    , m_sdkProblem(new QLabel)
    , m_tabs(new QTabWidget)
    , m_compileOutput(new OutputPane)
    , m_messages(new OutputPane)
    , m_issues(new IssuesPane)
    , m_busy(new QProgressBar)
    , m_verdictLabel(new QLabel)
    , m_refreshTimer(new QTimer(this))
{
    Core::Host::setMainWindow(this);
    setWindowTitle(tr("Sealkit Workbench"));
    makeContent();
    makeMenus();
    connectPlatform();

    // Many changes come at once; and none may rebuild the tree while the tree announces a choice.
    m_refreshTimer->setSingleShot(true);
    connect(m_refreshTimer, &QTimer::timeout, this, &MainWindow::refresh);

    setMinimumSize(MINIMUM_SIZE);
    if (!restoreGeometry(QSettings().value(GEOMETRY_KEY).toByteArray()))
        resize(INITIAL_SIZE);
}

MainWindow::~MainWindow()
{
    Core::Host::setMainWindow(nullptr);
}

void MainWindow::makeContent()
{
    m_sdkProblem->setObjectName("sdkProblem");
    m_sdkProblem->setWordWrap(true);
    m_sdkProblem->setMargin(8);
    m_sdkProblem->setAutoFillBackground(true);
    m_sdkProblem->setBackgroundRole(QPalette::ToolTipBase);
    m_sdkProblem->setForegroundRole(QPalette::ToolTipText);
    m_sdkProblem->hide();

    m_compileOutput->setObjectName("compileOutput");
    m_messages->setObjectName("generalMessages");
    m_issues->setObjectName("issues");
    m_tabs->addTab(m_compileOutput, tr("C&ompile Output"));
    m_tabs->addTab(m_messages, tr("General &Messages"));
    m_tabs->addTab(m_issues, tr("&Issues"));
    m_tabs->setDocumentMode(true);

    auto *right = new QSplitter(Qt::Vertical);
    right->addWidget(m_page);
    right->addWidget(m_tabs);
    right->setStretchFactor(0, 3);
    right->setStretchFactor(1, 2);
    right->setSizes({430, 270});
    auto *whole = new QSplitter;
    whole->addWidget(m_tree);
    whole->addWidget(right);
    whole->setStretchFactor(1, 1);
    whole->setSizes({260, INITIAL_SIZE.width() - 260});
    for (QSplitter *splitter : {right, whole})
        splitter->setChildrenCollapsible(false);

    auto *center = new QWidget;
    auto *layout = new QVBoxLayout(center);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_sdkProblem);
    layout->addWidget(whole, 1);
    setCentralWidget(center);

    m_busy->setRange(0, 0);
    m_busy->setMaximumSize(120, 14);
    m_busy->setTextVisible(false);
    m_busy->hide();
    statusBar()->addPermanentWidget(m_busy);
    m_verdictLabel->setObjectName("verdict");
    m_verdictLabel->setTextFormat(Qt::PlainText);
    m_verdictLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    statusBar()->addWidget(m_verdictLabel, 1);
    connect(m_tree, &ProjectTree::chosen, this, &MainWindow::choose);
    connect(m_issues, &IssuesPane::countChanged, this, [this](int count) {
        m_tabs->setTabText(m_tabs->indexOf(m_issues),
                           count > 0 ? tr("&Issues (%1)").arg(count) : tr("&Issues"));
    });
    connect(m_issues, &IssuesPane::errorArrived, m_tabs, [this] {
        m_tabs->setCurrentWidget(m_issues);
    });
    connect(m_page, &DeployPage::aboutToDeploy, m_session, &Session::save);
}

void MainWindow::makeMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    file->addAction(
        tr("&Open Project..."), QKeySequence::Open, this, &MainWindow::openProjectByDialog);
    m_closeProjectAction = file->addAction(tr("&Close Project"), this, &MainWindow::closeProject);
    file->addSeparator();
    file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    edit->addAction(tr("&Options..."), QKeySequence::Preferences, this, &MainWindow::showOptions);

    QMenu *build = menuBar()->addMenu(tr("&Build"));
    build->addActions({m_page->deployAction(), m_page->cancelAction()});

    using namespace Core;
    QMenu *tools = ActionManager::createMenu(Constants::M_TOOLS)->menu();
    tools->setTitle(tr("&Tools"));
    menuBar()->addMenu(tools);
}

void MainWindow::connectPlatform()
{
    connect(m_session, &Session::problemFound, this, &MainWindow::showProblem);

    const ProjectManager *projects = ProjectManager::instance();
    connect(projects, &ProjectManager::projectAdded, this, &MainWindow::watchProject);
    connect(projects, &ProjectManager::aboutToRemoveProject, this, &MainWindow::forget);
    connect(projects, &ProjectManager::projectRemoved, this, [this] { m_refreshTimer->start(); });

    const BuildManager *builds = BuildManager::instance();
    connect(builds, &BuildManager::buildQueueStarted, this, &MainWindow::startRun);
    connect(builds, &BuildManager::buildQueueFinished, this, &MainWindow::endRun);
    connect(builds, &BuildManager::outputAdded, m_compileOutput, &OutputPane::append);

    connect(Core::Host::GeneralMessages::instance(),
            &Core::Host::GeneralMessages::messageWritten,
            this,
            [this](const QString &message, bool disrupting) {
                m_messages->appendMessage(message);
                if (disrupting)
                    m_tabs->setCurrentWidget(m_messages);
            });
}

void MainWindow::watchProject(Project *project)
{
    const auto refreshSoon = [this] { m_refreshTimer->start(); };
    connect(project, &Project::addedTarget, this, &MainWindow::watchTarget);
    connect(project, &Project::activeTargetChanged, this, refreshSoon);
    for (Target *target : project->targets())
        watchTarget(target);
    refreshSoon();
}

void MainWindow::watchTarget(Target *target)
{
    const auto refreshSoon = [this] { m_refreshTimer->start(); };
    connect(target, &Target::addedDeployConfiguration, this, refreshSoon);
    connect(target, &Target::activeDeployConfigurationChanged, this, refreshSoon);
    refreshSoon();
}

void MainWindow::open(const CommandLine &commandLine)
{
    QString error;
    if (!m_session->openSdk(commandLine.sdk, &error)) {
        m_sdkProblem->setText(error);
        m_sdkProblem->show();
    }
    m_session->loadPlugins();
    const QString path =
        commandLine.project.isEmpty() ? Session::rememberedProject() : commandLine.project;
    if (!path.isEmpty() && !m_isClosing)
        openProject(path, commandLine.target);
    m_hasOpened = true;
    refresh();
}

void MainWindow::openProject(const QString &path, const QString &targetName)
{
    QString error;
    Project *project = m_session->openProject(path, targetName, &error);
    if (project)
        m_page->setProject(project);
    else
        showProblem(error);
    m_refreshTimer->start();
}

void MainWindow::openProjectByDialog()
{
    const QString folder =
        m_page->project() ? m_page->project()->projectDirectory().toFSPathString() : QString();
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open Project"), folder, tr("Package descriptions (*.spec)"));
    if (!path.isEmpty())
        openProject(path, {});
}

void MainWindow::closeProject()
{
    const QPointer<Project> project = m_page->project();
    if (!project)
        return;
    if (BuildManager::isBuilding(project.data())
        && QMessageBox::question(this,
                                 tr("Close Project"),
                                 tr("The deploy that runs is cancelled when the project is closed. "
                                    "Close it?"))
               != QMessageBox::Yes) {
        return;
    }
    if (project)
        m_session->closeProject(project);
}

void MainWindow::forget(const Project *project)
{
    if (m_page->project() != project)
        return;
    QList<Project *> others = ProjectManager::projects();
    others.removeIf([project](const Project *other) { return other == project; });
    m_page->setProject(others.isEmpty() ? nullptr : others.constFirst());
}

void MainWindow::choose(Project *project, Target *target, DeployConfiguration *configuration)
{
    if (BuildManager::isBuilding() && target)
        target = nullptr; // look, but don't change what the run is about
    else if (configuration)
        target->setActiveDeployConfiguration(configuration, SetActive::Cascade);
    if (target)
        project->setActiveTarget(target, SetActive::Cascade);
    m_page->setProject(project);
    m_refreshTimer->start();
}

void MainWindow::showOptions()
{
    const GeneralPage general(m_session);
    OptionsDialog dialog(this);
    connect(&dialog, &OptionsDialog::applied, m_session, &Session::save);
    dialog.exec();
}

void MainWindow::showProblem(const QString &message)
{
    Core::MessageManager::writeDisrupting(message);
    if (m_isSilent)
        std::fprintf(stderr, "workbench: %s\n", qUtf8Printable(message));
    else
        QMessageBox::warning(this, windowTitle(), message);
}

void MainWindow::startRun()
{
    m_compileOutput->clear();
    m_tabs->setCurrentWidget(m_compileOutput);
    m_busy->show();
    m_verdictLabel->clear();
    m_verdictLabel->setToolTip({});
    m_verdict.reset();
    if (const BuildStepList *stepList = m_page->stepList()) {
        m_verdict = std::make_unique<DeployVerdict>(stepList);
        connect(m_verdict.get(), &DeployVerdict::known, this, &MainWindow::showVerdict);
    }
    statusBar()->showMessage(tr("Deploying..."));
}

void MainWindow::endRun(bool success)
{
    m_busy->hide();
    statusBar()->clearMessage();
    if (m_verdict)
        m_verdict->setEnding(success ? DeployVerdict::Finished : DeployVerdict::Stopped);
    m_refreshTimer->start();
}

void MainWindow::showVerdict()
{
    const DeployVerdict &verdict = *m_verdict;
    m_compileOutput->append(verdict.text() + '\n',
                            verdict.isGood() ? BuildStep::OutputFormat::NormalMessage
                                             : BuildStep::OutputFormat::ErrorMessage);
    QPalette colors = palette();
    if (!verdict.isGood())
        colors.setColor(QPalette::WindowText,
                        Utils::creatorTheme()->color(Utils::Theme::TextColorError));
    m_verdictLabel->setPalette(colors);
    m_verdictLabel->setText(verdict.text());
    m_verdictLabel->setToolTip(verdict.text());
}

void MainWindow::refresh()
{
    m_tree->refresh(m_page->project());
    m_page->refresh();
    m_closeProjectAction->setEnabled(m_page->project());
    const Project *project = m_page->project();
    setWindowTitle(project ? tr("%1 - Sealkit Workbench").arg(project->displayName())
                           : tr("Sealkit Workbench"));
}

void MainWindow::closeAtOnce()
{
    m_isSilent = true;
    prepareToClose();
    close();
}

void MainWindow::prepareToClose()
{
    if (std::exchange(m_isClosing, true))
        return;
    QSettings().setValue(GEOMETRY_KEY, saveGeometry());
    // Before that, what is open is not yet what is to be remembered.
    if (m_hasOpened)
        m_session->save();
    emit Core::ICore::instance()->coreAboutToClose();
    declineOpenDialogs();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    prepareToClose();
    // As in the IDE, the plugins go while the event loop of a tool may still turn below.
    QMetaObject::invokeMethod(
        m_session,
        [session = m_session] {
            session->shutdown();
            QCoreApplication::exit();
        },
        Qt::QueuedConnection);
}

} // namespace Workbench
