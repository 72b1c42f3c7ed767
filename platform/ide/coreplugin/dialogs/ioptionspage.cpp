#include <coreplugin/dialogs/ioptionspage.h>

#include <QHash>

namespace Core {

struct Category
{
    QString displayName;
    Utils::FilePath iconPath;
};

static QList<IOptionsPage *> &allPages()
{
    static QList<IOptionsPage *> pages;
    return pages;
}

static QHash<Utils::Id, Category> &categories()
{
    static QHash<Utils::Id, Category> theCategories;
    return theCategories;
}

IOptionsPage::IOptionsPage(bool registerGlobally)
{
    if (registerGlobally)
        allPages().append(this);
}

IOptionsPage::~IOptionsPage()
{
    allPages().removeOne(this);
}

const QList<IOptionsPage *> IOptionsPage::allOptionsPages()
{
    return allPages();
}

void IOptionsPage::registerCategory(Utils::Id id,
                                    const QString &displayName,
                                    const Utils::FilePath &iconPath)
{
    categories().insert(id, {displayName, iconPath});
}

QString IOptionsPage::displayCategory() const
{
    return categories().value(m_category).displayName;
}

Utils::FilePath IOptionsPage::categoryIconPath() const
{
    return categories().value(m_category).iconPath;
}

} // namespace Core
