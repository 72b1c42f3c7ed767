#include <solutions/tasking/tasktree.h>

#include <QDebug>
#include <QScopedValueRollback>

#include <utility>
#include <vector>

namespace Tasking {

template<typename Handler>
static void setHandler(Handler &target, const Handler &handler, const char *kind)
{
    if (target)
        qDebug("SOFT ASSERT: a group has more than one %s handler", kind);
    target = handler;
}

// A task may destroy the tree that starts it. What is left on the stack then is this object, which
// lives until it has returned, and which touches nothing after it found its tree gone.
class TaskTree::Private : public std::enable_shared_from_this<Private>
{
public:
    Private(TaskTree *owner, const Group &theRecipe)
        : tree(owner)
        , recipe(GroupItems{theRecipe})
    {
    }

    /// A group that has been entered and not left yet.
    struct Frame
    {
        explicit Frame(const GroupItem &group);

        GroupItem::GroupSetupHandler setupHandler;
        GroupItem::GroupDoneHandler doneHandler;
        QList<GroupItem> pending;
        DoneResult result = DoneResult::Success;
    };

    void start();
    void advance();
    void step();
    void enterGroup(const GroupItem &group);
    void leaveGroup();
    void startTask(const GroupItem &item);
    void endTask(DoneResult result);
    void endItem(DoneResult result);

    TaskTree *tree;
    const Group recipe;
    std::vector<Frame> frames;
    TaskInterface *task = nullptr;
    DoneResult result = DoneResult::Success;
    bool running = false;
    bool advancing = false;
    bool inHandler = false;
};

TaskTree::Private::Frame::Frame(const GroupItem &group)
{
    for (const GroupItem &child : group.m_children) {
        switch (child.m_type) {
        case GroupItem::Type::SetupHandler:
            setHandler(setupHandler, child.m_setupHandler, "setup");
            break;
        case GroupItem::Type::DoneHandler:
            setHandler(doneHandler, child.m_doneHandler, "done");
            break;
        case GroupItem::Type::Group:
        case GroupItem::Type::Task:
            pending.append(child);
            break;
        }
    }
}

void TaskTree::Private::start()
{
    const auto keepAlive = shared_from_this();
    running = true;
    emit tree->started();
    if (!tree)
        return;
    frames.emplace_back(recipe);
    advance();
}

/// Goes on until the end, or until there is a task to wait for.
void TaskTree::Private::advance()
{
    const auto keepAlive = shared_from_this();
    {
        const QScopedValueRollback guard(advancing, true);
        while (tree && !task && !frames.empty())
            step();
    }
    if (!tree || task)
        return;
    running = false;
    const DoneWith with = result == DoneResult::Success ? DoneWith::Success : DoneWith::Error;
    emit tree->done(with);
}

void TaskTree::Private::step()
{
    Frame &frame = frames.back();
    if (frame.pending.isEmpty()) {
        leaveGroup();
        return;
    }
    const GroupItem child = frame.pending.takeFirst();
    if (child.m_type == GroupItem::Type::Group)
        enterGroup(child);
    else
        startTask(child);
}

void TaskTree::Private::enterGroup(const GroupItem &group)
{
    Frame &frame = frames.emplace_back(group);
    if (!frame.setupHandler)
        return;
    const SetupResult setupResult = [this, &frame] {
        const QScopedValueRollback guard(inHandler, true);
        return frame.setupHandler();
    }();
    if (setupResult == SetupResult::Continue)
        return;
    frame.pending.clear();
    frame.result = toDoneResult(setupResult == SetupResult::StopWithSuccess);
}

void TaskTree::Private::leaveGroup()
{
    Frame &frame = frames.back();
    DoneResult groupResult = frame.result;
    if (frame.doneHandler) {
        const DoneWith with =
            groupResult == DoneResult::Success ? DoneWith::Success : DoneWith::Error;
        const QScopedValueRollback guard(inHandler, true);
        groupResult = frame.doneHandler(with);
    }
    frames.pop_back();
    endItem(groupResult);
}

void TaskTree::Private::startTask(const GroupItem &item)
{
    task = item.m_taskCreator();
    task->setParent(tree);
    QObject::connect(
        task, &TaskInterface::done, tree, [this](DoneResult taskResult) { endTask(taskResult); });
    task->start();
}

void TaskTree::Private::endTask(DoneResult taskResult)
{
    task->disconnect(tree);
    task->deleteLater(); // this comes from one of its signals
    task = nullptr;
    endItem(taskResult);
    if (!advancing)
        advance();
}

void TaskTree::Private::endItem(DoneResult itemResult)
{
    if (frames.empty()) {
        result = itemResult;
    } else if (itemResult == DoneResult::Error) {
        frames.back().result = DoneResult::Error;
        frames.back().pending.clear();
    }
}

TaskTree::TaskTree(const Group &recipe)
    : d(std::make_shared<Private>(this, recipe))
{
}

TaskTree::~TaskTree()
{
    // Where the IDE goes on it crashes later, and nobody can tell why.
    if (d->inHandler)
        qFatal("A task tree was deleted from within one of its handlers");
    d->tree = nullptr;
}

void TaskTree::start()
{
    if (d->running) {
        qDebug("SOFT ASSERT: a task tree is started while it runs");
        return;
    }
    d->start();
}

} // namespace Tasking
