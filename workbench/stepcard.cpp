#include "stepcard.h"

#include <projectexplorer/buildstep.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

using ProjectExplorer::BuildStep;

namespace Workbench {

static QToolButton *makeButton(const QString &name, const QString &toolTip)
{
    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setAutoRaise(true);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    return button;
}

StepCard::StepCard(BuildStep *step, QWidget *parent)
    : QFrame(parent)
    , m_step(step)
    , m_expander(new QToolButton)
    , m_enabled(new QCheckBox)
    , m_summary(new QLabel)
    , m_config(step->doCreateConfigWidget()) // first of all: it may set the summary
{
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);

    m_expander->setObjectName("expander");
    m_expander->setAutoRaise(true);
    m_expander->setEnabled(m_config);
    m_expander->setToolTip(m_config ? tr("Show or hide what can be configured")
                                    : tr("There is nothing to configure"));
    m_expander->setAccessibleName(tr("Details of %1").arg(step->displayName()));
    connect(m_expander, &QToolButton::clicked, this, [this] { setExpanded(m_config->isHidden()); });

    QFont nameFont = m_enabled->font();
    nameFont.setBold(true);
    m_enabled->setObjectName("enabled");
    m_enabled->setFont(nameFont);
    m_enabled->setToolTip(tr("A step that is not checked is left out of the run"));
    m_enabled->setChecked(step->stepEnabled());
    connect(m_enabled, &QCheckBox::toggled, step, &BuildStep::setStepEnabled);
    connect(step, &BuildStep::stepEnabledChanged, this, [this] {
        m_enabled->setChecked(m_step->stepEnabled());
    });

    m_summary->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto *header = new QHBoxLayout;
    header->addWidget(m_expander);
    header->addWidget(m_enabled);
    header->addSpacing(8);
    header->addWidget(m_summary, 1);
    m_up = makeButton("up", tr("Move %1 up").arg(step->displayName()));
    m_up->setArrowType(Qt::UpArrow);
    m_down = makeButton("down", tr("Move %1 down").arg(step->displayName()));
    m_down->setArrowType(Qt::DownArrow);
    m_remove = makeButton("remove", tr("Remove %1").arg(step->displayName()));
    m_remove->setText(QStringLiteral("\u2715")); // a style's icon may be black, also on black
    for (QToolButton *button : {m_up, m_down, m_remove})
        header->addWidget(button);
    connect(m_up, &QToolButton::clicked, this, &StepCard::moveUpRequested);
    connect(m_down, &QToolButton::clicked, this, &StepCard::moveDownRequested);
    connect(m_remove, &QToolButton::clicked, this, &StepCard::removeRequested);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->addLayout(header);
    if (m_config) {
        layout->addWidget(m_config);
        m_config->setContentsMargins(m_expander->sizeHint().width(), 0, 0, 0);
    }

    connect(step, &BuildStep::updateSummary, this, &StepCard::updateTexts);
    connect(step, &BuildStep::displayNameChanged, this, &StepCard::updateTexts);
    updateTexts();
    setExpanded(false);
}

void StepCard::setExpanded(bool expanded)
{
    const bool shows = expanded && m_config;
    m_expander->setArrowType(shows ? Qt::DownArrow : Qt::RightArrow);
    if (m_config)
        m_config->setVisible(shows);
}

void StepCard::setMovable(bool up, bool down, bool listIsOpen)
{
    m_up->setEnabled(up && listIsOpen);
    m_down->setEnabled(down && listIsOpen);
    m_remove->setEnabled(listIsOpen);
}

void StepCard::updateTexts()
{
    m_enabled->setText(m_step->displayName());
    // Summaries tend to start with the name in bold, which the check box shows already.
    QString summary = m_step->summaryText();
    summary.remove("<b>" + m_step->displayName() + ":</b>");
    m_summary->setText(summary.trimmed());
}

} // namespace Workbench
