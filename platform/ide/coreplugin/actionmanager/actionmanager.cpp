#include <coreplugin/actionmanager/actionmanager.h>

#include <coreplugin/actionmanager/actioncontainer.h>
#include <coreplugin/actionmanager/command.h>

#include <QAction>
#include <QCoreApplication>
#include <QHash>
#include <QPointer>

#include <map>
#include <memory>

namespace Core {

struct Registry
{
    std::map<Utils::Id, std::unique_ptr<ActionContainer>> containers;
    QHash<Utils::Id, QPointer<Command>> commands;
};

static Registry &registry()
{
    static std::unique_ptr<Registry> theRegistry;
    if (!theRegistry) {
        theRegistry = std::make_unique<Registry>();
        // Menus must not outlive the application.
        qAddPostRoutine([] { theRegistry.reset(); });
    }
    return *theRegistry;
}

ActionManager *ActionManager::instance()
{
    static ActionManager theInstance;
    return &theInstance;
}

Command *ActionManager::registerAction(QAction *action, Utils::Id id, const Context &)
{
    auto command = new Command(id, action);
    registry().commands.insert(id, command);
    return command;
}

ActionContainer *ActionManager::createMenu(Utils::Id id)
{
    std::unique_ptr<ActionContainer> &container = registry().containers[id];
    if (!container)
        container = std::make_unique<ActionContainer>(id);
    return container.get();
}

ActionContainer *ActionManager::actionContainer(Utils::Id id)
{
    const auto &containers = registry().containers;
    const auto found = containers.find(id);
    return found == containers.end() ? nullptr : found->second.get();
}

Command *ActionManager::command(Utils::Id id)
{
    return registry().commands.value(id);
}

} // namespace Core
