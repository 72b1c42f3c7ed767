#include "projecttree.h"

#include <projectexplorer/deployconfiguration.h>
#include <projectexplorer/project.h>
#include <projectexplorer/projectmanager.h>
#include <projectexplorer/target.h>

#include <QPointer>
#include <QSignalBlocker>

using namespace ProjectExplorer;

namespace Workbench {

constexpr int OBJECT_ROLE = Qt::UserRole;

// A choice can come between an object's end and the next refresh.
template<class T>
static T *objectOf(const QTreeWidgetItem *item)
{
    return item ? qobject_cast<T *>(item->data(0, OBJECT_ROLE).value<QPointer<QObject>>().data())
                : nullptr;
}

static QTreeWidgetItem *makeItem(const QString &text, QObject *object, bool isActive)
{
    auto *item = new QTreeWidgetItem({text});
    item->setData(0, OBJECT_ROLE, QVariant::fromValue(QPointer<QObject>(object)));
    QFont font = item->font(0);
    font.setBold(isActive);
    item->setFont(0, font);
    return item;
}

ProjectTree::ProjectTree(QWidget *parent)
    : QTreeWidget(parent)
{
    setHeaderHidden(true);
    setAccessibleName(tr("Projects"));
    connect(this, &QTreeWidget::currentItemChanged, this, &ProjectTree::announceChoice);
}

void ProjectTree::refresh(const Project *current)
{
    const QSignalBlocker blocker(this);
    clear();
    for (Project *project : ProjectManager::projects()) {
        QTreeWidgetItem *top = makeItem(project->displayName(), project, project == current);
        top->setToolTip(0, project->projectFilePath().toUserOutput());
        addTopLevelItem(top);
        QTreeWidgetItem *active = top;
        for (Target *target : project->targets()) {
            const bool isActive = target == project->activeTarget();
            QTreeWidgetItem *middle = makeItem(target->displayName(), target, isActive);
            top->addChild(middle);
            for (DeployConfiguration *configuration : target->deployConfigurations()) {
                QTreeWidgetItem *leaf = makeItem(configuration->displayName(),
                                                 configuration,
                                                 isActive && configuration->isActive());
                middle->addChild(leaf);
                if (isActive && configuration->isActive())
                    active = leaf;
            }
        }
        if (project == current)
            setCurrentItem(active);
    }
    expandAll();
}

void ProjectTree::announceChoice(QTreeWidgetItem *item)
{
    QTreeWidgetItem *top = item;
    while (top && top->parent())
        top = top->parent();
    auto *project = objectOf<Project>(top);
    if (!project)
        return;
    auto *configuration = objectOf<DeployConfiguration>(item);
    auto *target = configuration ? configuration->target() : objectOf<Target>(item);
    emit chosen(project, target, configuration);
}

} // namespace Workbench
