#include "deploypage.h"

#include "steplistwidget.h"

#include <host/buildmanager.h>
#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/kit.h>
#include <projectexplorer/kitmanager.h>
#include <projectexplorer/target.h>

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>

using namespace ProjectExplorer;

namespace Workbench {

static QPushButton *makeButton(QAction *action)
{
    auto *button = new QPushButton(action->text());
    button->setToolTip(action->toolTip());
    button->setEnabled(action->isEnabled());
    QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
    QObject::connect(action, &QAction::enabledChanged, button, &QWidget::setEnabled);
    return button;
}

DeployPage::DeployPage(QWidget *parent)
    : QWidget(parent)
    , m_deployAction(new QAction(tr("&Deploy"), this))
    , m_cancelAction(new QAction(tr("&Cancel"), this))
    , m_title(new QLabel)
    , m_kits(new QComboBox)
    , m_steps(new StepListWidget)
{
    m_deployAction->setShortcut(Qt::CTRL | Qt::Key_R);
    m_deployAction->setToolTip(tr("Run the checked steps from top to bottom"));
    m_cancelAction->setToolTip(tr("Stop the run"));
    connect(m_deployAction, &QAction::triggered, this, &DeployPage::deploy);
    connect(m_cancelAction, &QAction::triggered, this, &BuildManager::cancel);

    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.3);
    m_title->setFont(titleFont);
    m_title->setWordWrap(true);
    m_kits->setObjectName("kits");
    m_kits->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    auto *kitLabel = new QLabel(tr("&Kit:"));
    kitLabel->setBuddy(m_kits);
    connect(m_kits, &QComboBox::activated, this, &DeployPage::chooseKit);

    auto *area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(m_steps);

    auto *row = new QHBoxLayout;
    row->addWidget(kitLabel);
    row->addWidget(m_kits);
    row->addStretch();
    row->addWidget(makeButton(m_deployAction));
    row->addWidget(makeButton(m_cancelAction));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_title);
    layout->addLayout(row);
    layout->addWidget(area, 1);

    BuildManager *manager = BuildManager::instance();
    connect(manager, &BuildManager::buildQueueStarted, this, &DeployPage::updateActions);
    connect(manager, &BuildManager::buildQueueFinished, this, &DeployPage::updateActions);
    refresh();
}

void DeployPage::setProject(Project *project)
{
    m_project = project;
    refresh();
}

void DeployPage::refresh()
{
    m_title->setText(m_project ? tr("Deploy Steps of %1").arg(m_project->displayName())
                               : tr("No project is open."));
    fillKits();
    m_steps->setStepList(stepList());
    updateActions();
}

BuildStepList *DeployPage::stepList() const
{
    const Target *target = m_project ? m_project->activeTarget() : nullptr;
    DeployConfiguration *configuration = target ? target->activeDeployConfiguration() : nullptr;
    return configuration ? configuration->stepList() : nullptr;
}

void DeployPage::fillKits()
{
    const QSignalBlocker blocker(m_kits);
    m_kits->clear();
    for (const Kit *kit : KitManager::kits())
        m_kits->addItem(kit->displayName(), kit->id().toSetting());
    const Target *target = m_project ? m_project->activeTarget() : nullptr;
    m_kits->setCurrentIndex(target ? m_kits->findData(target->id().toSetting()) : -1);
}

void DeployPage::chooseKit(int index)
{
    Kit *kit = KitManager::kit(Utils::Id::fromSetting(m_kits->itemData(index)));
    if (!m_project || !kit)
        return;
    Target *target = m_project->target(kit);
    m_project->setActiveTarget(target ? target : m_project->addTargetForKit(kit),
                               SetActive::Cascade);
}

void DeployPage::deploy()
{
    emit aboutToDeploy();
    if (BuildStepList *list = stepList())
        BuildManager::buildList(list);
}

void DeployPage::updateActions()
{
    const bool isBuilding = BuildManager::isBuilding();
    m_deployAction->setEnabled(stepList() && !isBuilding);
    m_cancelAction->setEnabled(isBuilding);
    m_kits->setEnabled(m_project && !isBuilding && m_kits->count() > 0);
    m_steps->setLocked(isBuilding);
}

} // namespace Workbench
