#include "issuespane.h"

#include <host/issues.h>

#include <QStyle>

using ProjectExplorer::Task;
using ProjectExplorer::Host::Issues;

namespace Workbench {

IssuesPane::IssuesPane(QWidget *parent)
    : QListWidget(parent)
{
    setWordWrap(true);
    setTextElideMode(Qt::ElideNone);
    setTabKeyNavigation(false);
    connect(Issues::instance(), &Issues::added, this, &IssuesPane::add);
    connect(Issues::instance(), &Issues::cleared, this, [this] {
        clear();
        emit countChanged(0);
    });
}

static QStyle::StandardPixmap pictureOf(const Task &issue)
{
    switch (issue.type) {
    case Task::Error:
        return QStyle::SP_MessageBoxCritical;
    case Task::Warning:
        return QStyle::SP_MessageBoxWarning;
    case Task::Unknown:
        break;
    }
    return QStyle::SP_MessageBoxInformation;
}

void IssuesPane::add(const Task &issue)
{
    const QStringList lines = QStringList(issue.summary) + issue.details;
    addItem(new QListWidgetItem(style()->standardIcon(pictureOf(issue)), lines.join('\n')));
    emit countChanged(count());

    const ProjectExplorer::Tasks &issues = Issues::instance()->tasks();
    const auto isError = [](const Task &task) { return task.type == Task::Error; };
    if (isError(issue) && std::count_if(issues.begin(), issues.end(), isError) == 1)
        emit errorArrived();
}

} // namespace Workbench
