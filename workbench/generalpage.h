#pragma once

#include <coreplugin/dialogs/ioptionspage.h>

#include <QCoreApplication>
#include <QPointer>

class QComboBox;

namespace Utils {
class PathChooser;
}

namespace Workbench {

class Session;

/// The options of the workbench itself: its language and its SDK, both from the next start on.
class GeneralPage : public Core::IOptionsPage
{
    Q_DECLARE_TR_FUNCTIONS(Workbench::GeneralPage)

public:
    explicit GeneralPage(Session *session);
    ~GeneralPage() override;

    QWidget *widget() override;
    void apply() override;
    void finish() override;
    bool matches(const QRegularExpression &regexp) const override;

private:
    Session *const m_session;
    QPointer<QWidget> m_widget;
    QComboBox *m_languages = nullptr;
    Utils::PathChooser *m_sdk = nullptr;
};

} // namespace Workbench
