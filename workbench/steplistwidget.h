#pragma once

#include <projectexplorer/buildsteplist.h>

#include <QPointer>
#include <QWidget>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace Workbench {

class StepCard;

/// The steps of one deploy configuration, and the button that adds another.
class StepListWidget : public QWidget
{
    Q_OBJECT

public:
    explicit StepListWidget(QWidget *parent = nullptr);

    /// Null shows nothing. The list may be deleted while it is shown.
    void setStepList(ProjectExplorer::BuildStepList *list);
    /// While the list is locked, steps can be neither added, removed nor moved.
    void setLocked(bool locked);

private:
    void insertCard(int position);
    void removeCard(int position);
    void moveCard(int from, int to);
    void updateCards();
    void updateTabOrder();
    void fillAddMenu();
    void moveStep(const ProjectExplorer::BuildStep *step, int distance);
    void removeStep(const ProjectExplorer::BuildStep *step);

    QPointer<ProjectExplorer::BuildStepList> m_list;
    QList<StepCard *> m_cards;
    QVBoxLayout *m_cardLayout;
    QLabel *m_emptyLabel;
    QPushButton *m_addButton;
    bool m_locked = false;
};

} // namespace Workbench
