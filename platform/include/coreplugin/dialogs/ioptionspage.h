#pragma once

#include <utils/filepath.h>
#include <utils/id.h>

#include <QList>
#include <QString>

class QRegularExpression;
class QWidget;

namespace Core {

/// A page of the options dialog.
class IOptionsPage
{
public:
    /// With \a registerGlobally the page is among allOptionsPages() as long as it lives.
    explicit IOptionsPage(bool registerGlobally = true);
    virtual ~IOptionsPage();
    IOptionsPage(const IOptionsPage &) = delete;
    IOptionsPage &operator=(const IOptionsPage &) = delete;

    static const QList<IOptionsPage *> allOptionsPages();
    /// Gives the pages of category \a id their common title and icon.
    static void
    registerCategory(Utils::Id id, const QString &displayName, const Utils::FilePath &iconPath);

    Utils::Id id() const { return m_id; }
    QString displayName() const { return m_displayName; }
    Utils::Id category() const { return m_category; }
    QString displayCategory() const;
    Utils::FilePath categoryIconPath() const;

    /// The page's content, made when first asked for.
    virtual QWidget *widget() = 0;
    /// Takes over what the user chose. For pages that were shown.
    virtual void apply() = 0;
    /// The dialog was canceled. For all pages, before finish().
    virtual void cancel() {}
    /// The dialog is about to close: the content can go, too. For all pages.
    virtual void finish() = 0;
    /// Whether a search for \a regexp finds this page.
    virtual bool matches(const QRegularExpression &regexp) const = 0;

protected:
    void setId(Utils::Id id) { m_id = id; }
    void setDisplayName(const QString &name) { m_displayName = name; }
    void setCategory(Utils::Id category) { m_category = category; }

private:
    Utils::Id m_id;
    Utils::Id m_category;
    QString m_displayName;
};

} // namespace Core
