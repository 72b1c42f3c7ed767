#include "signoptionspage.h"

#include "constants.h"
#include "signoptionswidget.h"

#include <utils/qtcassert.h>

#include <QRegularExpression>

namespace Sealkit::Internal {

SignOptionsPage::SignOptionsPage(QObject *parent)
    : QObject(parent)
    , Core::IOptionsPage(true)
{
    // The page is created when the IDE starts, its widget only when the user opens the page.
    setId(Constants::SIGN_OPTIONS_PAGE_ID);
    setDisplayName(tr("Sign packages"));
    setCategory(Constants::KILN_OPTIONS_CATEGORY);
}

SignOptionsPage::~SignOptionsPage()
{
    // A dialog that is still open must not keep a widget whose code is unloaded with the plugin.
    delete m_widget;
}

QWidget *SignOptionsPage::widget()
{
    // finish() has deleted the last widget, and with it what the user chose but did not apply.
    if (!m_widget)
        m_widget = new SignOptionsWidget;
    return m_widget;
}

void SignOptionsPage::apply()
{
    // The line number of this assertion is part of its message, and is relied on: keep it in line
    // 40.
    QTC_ASSERT(m_widget, return );
    m_widget->store();
}

void SignOptionsPage::finish()
{
    delete m_widget;
}

bool SignOptionsPage::matches(const QRegularExpression &regexp) const
{
    // A search asks pages that are not open, so a widget is made for its texts alone.
    if (m_searchKeywords.isEmpty())
        m_searchKeywords = SignOptionsWidget().searchKeywords();
    return m_searchKeywords.contains(regexp);
}

} // namespace Sealkit::Internal
