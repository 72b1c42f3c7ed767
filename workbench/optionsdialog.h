#pragma once

#include <utils/id.h>

#include <QDialog>
#include <QHash>
#include <QList>

class QLabel;
class QLineEdit;
class QListWidget;
class QStackedWidget;

namespace Core {
class IOptionsPage;
}

namespace Workbench {

/// The pages of all plugins by category. A page's content is made when its category is first
/// chosen; only such pages are applied, but all are canceled and finished.
class OptionsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit OptionsDialog(QWidget *parent = nullptr);

    void done(int result) override;

signals:
    /// Pages have taken over what the user chose.
    void applied();

private:
    void fillCategories();
    void filter(const QString &text);
    void showCategory();
    QWidget *makeCategoryWidget(Utils::Id category);
    void apply();

    QLineEdit *m_filterEdit;
    QListWidget *m_categories;
    QLabel *m_title;
    QStackedWidget *m_stack;
    QHash<Utils::Id, QWidget *> m_categoryWidgets;
    QList<Core::IOptionsPage *> m_visited;
    bool m_isDone = false;
};

} // namespace Workbench
