#include "steplistwidget.h"

#include "stepcard.h"

#include <projectexplorer/buildstep.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>

using namespace ProjectExplorer;

namespace Workbench {

StepListWidget::StepListWidget(QWidget *parent)
    : QWidget(parent)
    , m_cardLayout(new QVBoxLayout)
    , m_emptyLabel(new QLabel(tr("This deploy configuration has no steps.")))
    , m_addButton(new QPushButton(tr("&Add Step")))
{
    m_emptyLabel->setForegroundRole(QPalette::PlaceholderText);
    m_addButton->setObjectName("addStep");
    auto *menu = new QMenu(m_addButton);
    m_addButton->setMenu(menu);
    connect(menu, &QMenu::aboutToShow, this, &StepListWidget::fillAddMenu);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_addButton);
    buttons->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_emptyLabel);
    layout->addLayout(m_cardLayout);
    layout->addLayout(buttons);
    layout->addStretch();
    updateCards();
}

void StepListWidget::setStepList(BuildStepList *list)
{
    if (m_list == list && list)
        return;
    if (m_list)
        m_list->disconnect(this);
    while (!m_cards.isEmpty())
        delete m_cards.takeLast();
    m_list = list;
    if (list) {
        for (int i = 0; i < list->count(); ++i)
            insertCard(i);
        connect(list, &BuildStepList::stepInserted, this, &StepListWidget::insertCard);
        connect(list, &BuildStepList::aboutToRemoveStep, this, &StepListWidget::removeCard);
        connect(list, &BuildStepList::stepMoved, this, &StepListWidget::moveCard);
        connect(list, &QObject::destroyed, this, [this] { setStepList(nullptr); });
    }
    updateCards();
}

void StepListWidget::setLocked(bool locked)
{
    m_locked = locked;
    updateCards();
}

void StepListWidget::insertCard(int position)
{
    auto *card = new StepCard(m_list->at(position));
    m_cards.insert(position, card);
    m_cardLayout->insertWidget(position, card);
    const BuildStep *step = card->step();
    // Queued: what is asked for deletes or moves the button that is just being clicked.
    connect(
        card,
        &StepCard::moveUpRequested,
        this,
        [=, this] { moveStep(step, -1); },
        Qt::QueuedConnection);
    connect(
        card,
        &StepCard::moveDownRequested,
        this,
        [=, this] { moveStep(step, 1); },
        Qt::QueuedConnection);
    connect(
        card,
        &StepCard::removeRequested,
        this,
        [=, this] { removeStep(step); },
        Qt::QueuedConnection);
    updateCards();
}

void StepListWidget::removeCard(int position)
{
    delete m_cards.takeAt(position);
    updateCards();
}

void StepListWidget::moveCard(int from, int to)
{
    m_cards.move(from, to);
    StepCard *card = m_cards.at(to);
    m_cardLayout->removeWidget(card);
    m_cardLayout->insertWidget(to, card);
    updateCards();
}

void StepListWidget::updateCards()
{
    for (int i = 0; i < m_cards.size(); ++i)
        m_cards.at(i)->setMovable(i > 0, i + 1 < m_cards.size(), !m_locked);
    m_emptyLabel->setVisible(m_list && m_cards.isEmpty());
    m_addButton->setVisible(m_list);
    m_addButton->setEnabled(!m_locked);
    updateTabOrder();
}

// Cards join the focus chain in the order in which they are made, which is not that on the screen.
void StepListWidget::updateTabOrder()
{
    QWidget *previous = nullptr;
    const auto append = [&previous](QWidget *widget) {
        if (previous)
            QWidget::setTabOrder(previous, widget);
        previous = widget;
    };
    for (StepCard *card : std::as_const(m_cards)) {
        QWidgetList inside;
        for (QWidget *w = card->nextInFocusChain(); w != card; w = w->nextInFocusChain()) {
            if (card->isAncestorOf(w))
                inside << w;
        }
        std::for_each(inside.begin(), inside.end(), append);
    }
    append(m_addButton);
}

void StepListWidget::fillAddMenu()
{
    QMenu *menu = m_addButton->menu();
    menu->clear();
    for (const BuildStepFactory *factory : BuildStepFactory::allBuildStepFactories()) {
        if (!factory->canHandle(m_list))
            continue;
        menu->addAction(factory->displayName(), this, [this, id = factory->stepId()] {
            if (!m_list)
                return;
            m_list->appendStep(id);
            m_cards.last()->setExpanded(true);
        });
    }
    if (menu->isEmpty())
        menu->addAction(tr("No plugin offers a step for this target"))->setEnabled(false);
}

void StepListWidget::moveStep(const BuildStep *step, int distance)
{
    const int position = m_list ? int(m_list->steps().indexOf(step)) : -1;
    // The list knows one way only: what moves down lets the step below it move up.
    const int lower = distance < 0 ? position : position + 1;
    if (position >= 0 && lower > 0 && lower < m_list->count())
        m_list->moveStepUp(lower);
}

void StepListWidget::removeStep(const BuildStep *step)
{
    const int position = m_list ? int(m_list->steps().indexOf(step)) : -1;
    if (position >= 0)
        m_list->removeStep(position);
}

} // namespace Workbench
