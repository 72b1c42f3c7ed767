#pragma once

#include <utils/id.h>

#include <QObject>

#include <memory>

class QMenu;

namespace Core {

class Command;

/// A menu that plugins add their commands and sub-menus to.
class ActionContainer : public QObject
{
    Q_OBJECT

public:
    explicit ActionContainer(Utils::Id id);
    ~ActionContainer() override;

    Utils::Id id() const { return m_id; }
    QMenu *menu() const { return m_menu.get(); }

    /// Adds at the end of the menu.
    void addAction(Command *command);
    void addMenu(ActionContainer *menu);

private:
    Utils::Id m_id;
    const std::unique_ptr<QMenu> m_menu;
};

} // namespace Core
