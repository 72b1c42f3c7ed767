#pragma once

#include <QFrame>

class QCheckBox;
class QLabel;
class QToolButton;

namespace ProjectExplorer {
class BuildStep;
}

namespace Workbench {

/// One step of a deploy configuration: whether it runs, what it is, and, unfolded, how it is
/// configured.
class StepCard : public QFrame
{
    Q_OBJECT

public:
    explicit StepCard(ProjectExplorer::BuildStep *step, QWidget *parent = nullptr);

    ProjectExplorer::BuildStep *step() const { return m_step; }
    void setExpanded(bool expanded);
    /// Which of the arrows make sense where the card stands, and whether the list may change now.
    void setMovable(bool up, bool down, bool listIsOpen);

signals:
    void moveUpRequested();
    void moveDownRequested();
    void removeRequested();

private:
    void updateTexts();

    ProjectExplorer::BuildStep *m_step;
    QToolButton *m_expander;
    QCheckBox *m_enabled;
    QLabel *m_summary;
    QToolButton *m_up;
    QToolButton *m_down;
    QToolButton *m_remove;
    QWidget *m_config;
};

} // namespace Workbench
