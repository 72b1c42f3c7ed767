#include "optionsdialog.h"

#include <coreplugin/dialogs/ioptionspage.h>
#include <utils/icon.h>

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QStackedWidget>
#include <QTabWidget>

using Core::IOptionsPage;
using Utils::Id;

namespace Workbench {

constexpr int CATEGORY_ROLE = Qt::UserRole;

static QList<IOptionsPage *> pagesOf(Id category)
{
    QList<IOptionsPage *> pages;
    for (IOptionsPage *page : IOptionsPage::allOptionsPages()) {
        if (page->category() == category)
            pages << page;
    }
    return pages;
}

static Id categoryOf(const QListWidgetItem *item)
{
    return Id::fromSetting(item->data(CATEGORY_ROLE));
}

OptionsDialog::OptionsDialog(QWidget *parent)
    : QDialog(parent)
    , m_filterEdit(new QLineEdit)
    , m_categories(new QListWidget)
    , m_title(new QLabel)
    , m_stack(new QStackedWidget)
{
    setWindowTitle(tr("Options"));
    m_filterEdit->setPlaceholderText(tr("Filter"));
    m_filterEdit->setAccessibleName(tr("Filter"));
    m_filterEdit->setClearButtonEnabled(true);
    m_filterEdit->setMaximumWidth(200);
    m_categories->setAccessibleName(tr("Categories"));
    m_categories->setIconSize({24, 24});
    m_categories->setMaximumWidth(200);
    QFont titleFont = m_title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.2);
    m_title->setFont(titleFont);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply
                                         | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::Apply),
            &QPushButton::clicked,
            this,
            &OptionsDialog::apply);

    auto *layout = new QGridLayout(this);
    layout->addWidget(m_filterEdit, 0, 0);
    layout->addWidget(m_title, 0, 1);
    layout->addWidget(m_categories, 1, 0);
    layout->addWidget(m_stack, 1, 1);
    layout->addWidget(buttons, 2, 0, 1, 2);
    layout->setColumnStretch(1, 1);
    resize(860, 520);

    connect(m_filterEdit, &QLineEdit::textChanged, this, &OptionsDialog::filter);
    connect(m_categories, &QListWidget::currentItemChanged, this, &OptionsDialog::showCategory);
    fillCategories();
}

void OptionsDialog::fillCategories()
{
    QList<Id> known;
    for (const IOptionsPage *page : IOptionsPage::allOptionsPages()) {
        if (known.contains(page->category()))
            continue;
        known << page->category();
        const Utils::Icon icon({{page->categoryIconPath(), Utils::Theme::IconsBaseColor}});
        auto *item = new QListWidgetItem(icon.icon(), page->displayCategory(), m_categories);
        item->setData(CATEGORY_ROLE, page->category().toSetting());
    }
    if (known.isEmpty())
        m_title->setText(tr("No plugin has options."));
    m_categories->setCurrentRow(0);
}

void OptionsDialog::filter(const QString &text)
{
    const QRegularExpression expression(QRegularExpression::escape(text),
                                        QRegularExpression::CaseInsensitiveOption);
    QListWidgetItem *firstShown = nullptr;
    for (int i = 0; i < m_categories->count(); ++i) {
        QListWidgetItem *item = m_categories->item(i);
        const QList<IOptionsPage *> pages = pagesOf(categoryOf(item));
        const bool isFound =
            item->text().contains(expression)
            || std::any_of(pages.begin(), pages.end(), [&](auto *page) {
                   return page->displayName().contains(expression) || page->matches(expression);
               });
        item->setHidden(!isFound);
        if (isFound && !firstShown)
            firstShown = item;
    }
    const QListWidgetItem *current = m_categories->currentItem();
    if (!current || current->isHidden())
        m_categories->setCurrentItem(firstShown);
}

void OptionsDialog::showCategory()
{
    const QListWidgetItem *item = m_categories->currentItem();
    m_stack->setVisible(item);
    m_title->setText(item ? item->text() : tr("Nothing found"));
    if (!item)
        return;
    QWidget *&widget = m_categoryWidgets[categoryOf(item)];
    if (!widget) {
        widget = makeCategoryWidget(categoryOf(item));
        m_stack->addWidget(widget);
    }
    m_stack->setCurrentWidget(widget);
}

QWidget *OptionsDialog::makeCategoryWidget(Id category)
{
    auto *tabs = new QTabWidget;
    for (IOptionsPage *page : pagesOf(category)) {
        auto *area = new QScrollArea;
        area->setFrameShape(QFrame::NoFrame);
        area->setWidgetResizable(true);
        area->setWidget(page->widget());
        tabs->addTab(area, page->displayName());
        m_visited << page;
    }
    return tabs;
}

void OptionsDialog::apply()
{
    for (IOptionsPage *page : std::as_const(m_visited))
        page->apply();
    emit applied();
}

void OptionsDialog::done(int result)
{
    if (std::exchange(m_isDone, true))
        return;
    if (result == Accepted)
        apply();
    for (IOptionsPage *page : IOptionsPage::allOptionsPages()) {
        if (result == Rejected)
            page->cancel();
        page->finish();
    }
    QDialog::done(result);
}

} // namespace Workbench
