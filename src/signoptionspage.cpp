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
    // No widget yet: pages are made when the IDE starts, and most of them are not opened before it
    // ends.
    setId(Constants::SIGN_OPTIONS_PAGE_ID);
    setDisplayName(tr("Sign packages"));
    setCategory(Constants::KILN_OPTIONS_CATEGORY);
}

SignOptionsPage::~SignOptionsPage()
{
    // The widget's code goes with the plugin, so a dialog that is still open must not keep it.
    delete m_widget;
}

QWidget *SignOptionsPage::widget()
{
    // Each opening of the dialog gets a widget of its own: finish() has dropped the last one, and
    // with it all that was chosen, but not applied.
    if (!m_widget)
        m_widget = new SignOptionsWidget;
    return m_widget;
}

void SignOptionsPage::apply()
{
    QTC_ASSERT(m_widget, return );
    m_widget->store();
}

void SignOptionsPage::finish()
{
    delete m_widget;
}

bool SignOptionsPage::matches(const QRegularExpression &regexp) const
{
    // A search asks all pages, and most are not opened then. A widget that is made for the search
    // alone need not be finished.
    if (m_searchKeywords.isEmpty())
        m_searchKeywords = SignOptionsWidget().searchKeywords();
    return m_searchKeywords.contains(regexp);
}

} // namespace Sealkit::Internal
