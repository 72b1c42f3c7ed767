#pragma once

#include <coreplugin/coreconstants.h>
#include <coreplugin/icontext.h>

#include <QObject>

class QAction;

namespace Core {

class ActionContainer;
class Command;

/// All actions and menus by their ids.
class ActionManager : public QObject
{
    Q_OBJECT

public:
    static ActionManager *instance();

    /// The action stays the caller's; its command goes with it.
    static Command *registerAction(QAction *action,
                                   Utils::Id id,
                                   const Context &context = Context(Constants::C_GLOBAL));
    /// The menu with this id, made when it is not there yet.
    static ActionContainer *createMenu(Utils::Id id);
    /// Null when there is none.
    static ActionContainer *actionContainer(Utils::Id id);
    static Command *command(Utils::Id id);

private:
    ActionManager() = default;
};

} // namespace Core
