#pragma once

#include <coreplugin/dialogs/ioptionspage.h>

#include <QObject>
#include <QPointer>

namespace Sealkit::Internal {

class SignOptionsWidget;

/// The page "Sign packages" among the options of the target operating system.
class SignOptionsPage : public QObject, public Core::IOptionsPage
{
    Q_OBJECT

public:
    explicit SignOptionsPage(QObject *parent = nullptr);
    ~SignOptionsPage() override;

    QWidget *widget() override;
    /// Stores what the widget shows. Without a widget that is a soft assert.
    void apply() override;
    void finish() override;
    /// Also works while the page has no widget.
    bool matches(const QRegularExpression &regexp) const override;

private:
    QPointer<SignOptionsWidget> m_widget;
    mutable QString m_searchKeywords; ///< collected by the first search
};

} // namespace Sealkit::Internal
