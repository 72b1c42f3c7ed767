#pragma once

#include <QList>
#include <QObject>

#include <functional>
#include <memory>
#include <type_traits>

namespace Tasking {

enum class SetupResult { Continue, StopWithSuccess, StopWithError };
enum class DoneResult { Success, Error };
enum class DoneWith { Success, Error, Cancel };

inline DoneResult toDoneResult(bool success)
{
    return success ? DoneResult::Success : DoneResult::Error;
}

/// An asynchronous piece of work, as the tree sees it; TaskAdapter is what to derive from. The tree
/// calls start() once and then waits for done(). A tree that goes away deletes its task, also while
/// a function or a signal of the task is on the stack.
class TaskInterface : public QObject
{
    Q_OBJECT

signals:
    void done(Tasking::DoneResult result);

private:
    template<typename Task>
    friend class TaskAdapter;
    friend class TaskTree;
    TaskInterface() = default;
    virtual void start() = 0;
};

/// Makes a task of a \a Task, which says what is to be done.
template<typename Task>
class TaskAdapter : public TaskInterface
{
protected:
    TaskAdapter() = default;
    Task *task() { return &m_task; }
    const Task *task() const { return &m_task; }

private:
    using TaskType = Task;
    template<typename Adapter>
    friend class CustomTask;
    Task m_task;
};

/// One element of a recipe: a group, a task, or a handler of the group that it stands in.
class GroupItem
{
public:
    using GroupSetupHandler = std::function<SetupResult()>;
    using GroupDoneHandler = std::function<DoneResult(DoneWith)>;

protected:
    using TaskCreator = std::function<TaskInterface *()>;

    enum class Type { Group, SetupHandler, DoneHandler, Task };

    explicit GroupItem(const GroupSetupHandler &handler)
        : m_type(Type::SetupHandler)
        , m_setupHandler(handler)
    {
    }
    explicit GroupItem(const GroupDoneHandler &handler)
        : m_type(Type::DoneHandler)
        , m_doneHandler(handler)
    {
    }
    explicit GroupItem(const QList<GroupItem> &children)
        : m_type(Type::Group)
        , m_children(children)
    {
    }
    explicit GroupItem(const TaskCreator &creator)
        : m_type(Type::Task)
        , m_taskCreator(creator)
    {
    }

    template<typename Handler>
    static GroupItem groupHandler(const Handler &handler)
    {
        return GroupItem(handler);
    }

private:
    friend class TaskTree;
    Type m_type;
    QList<GroupItem> m_children;
    GroupSetupHandler m_setupHandler;
    GroupDoneHandler m_doneHandler;
    TaskCreator m_taskCreator;
};

using GroupItems = QList<GroupItem>;

class ExecutableItem : public GroupItem
{
protected:
    using GroupItem::GroupItem;
};

/// Runs its children one after the other and stops at the first that fails.
class Group : public ExecutableItem
{
public:
    Group(const GroupItems &children)
        : ExecutableItem(children)
    {
    }
    Group(std::initializer_list<GroupItem> children)
        : ExecutableItem(GroupItems(children))
    {
    }

    template<typename Handler>
    static GroupItem onGroupSetup(Handler &&handler);
    template<typename Handler>
    static GroupItem onGroupDone(Handler &&handler);
};

/// A task by \a Adapter, whose task \a setup fills when its turn comes.
template<typename Adapter>
class CustomTask final : public ExecutableItem
{
public:
    using Task = typename Adapter::TaskType;

    template<typename SetupHandler>
    CustomTask(SetupHandler &&setup) // NOLINT(bugprone-forwarding-reference-overload): the IDE's
        : ExecutableItem(TaskCreator([setup = std::forward<SetupHandler>(setup)] {
            auto *adapter = new Adapter;
            setup(*adapter->task());
            return adapter;
        }))
    {
    }
};

/// \a handler takes nothing and returns SetupResult, or nothing at all (which means Continue).
template<typename Handler>
GroupItem Group::onGroupSetup(Handler &&handler)
{
    using Result = std::invoke_result_t<std::decay_t<Handler> &>;
    static_assert(std::is_same_v<Result, SetupResult> || std::is_void_v<Result>,
                  "A setup handler returns SetupResult or void");
    return groupHandler(GroupSetupHandler([handler = std::forward<Handler>(handler)]() mutable {
        if constexpr (std::is_void_v<Result>) {
            handler();
            return SetupResult::Continue;
        } else {
            return handler();
        }
    }));
}

/// \a handler takes DoneWith or nothing. What it returns (DoneResult or bool) becomes the group's
/// result; without a return value the group keeps its own.
template<typename Handler>
GroupItem Group::onGroupDone(Handler &&handler)
{
    return groupHandler(
        GroupDoneHandler([handler = std::forward<Handler>(handler)](DoneWith with) mutable {
            const auto call = [&handler, with]() -> decltype(auto) {
                if constexpr (std::is_invocable_v<decltype(handler), DoneWith>)
                    return handler(with);
                else
                    return handler();
            };
            using Result = decltype(call());
            if constexpr (std::is_void_v<Result>) {
                call();
                return toDoneResult(with == DoneWith::Success);
            } else if constexpr (std::is_same_v<Result, bool>) {
                return toDoneResult(call());
            } else {
                static_assert(std::is_same_v<Result, DoneResult>,
                              "A done handler returns DoneResult, bool or void");
                return call();
            }
        }));
}

template<typename Handler>
GroupItem onGroupSetup(Handler &&handler)
{
    return Group::onGroupSetup(std::forward<Handler>(handler));
}

template<typename Handler>
GroupItem onGroupDone(Handler &&handler)
{
    return Group::onGroupDone(std::forward<Handler>(handler));
}

/// Runs a recipe in the caller's thread. A done handler is also called, and decides, after a setup
/// handler that stopped the group.
class TaskTree final : public QObject
{
    Q_OBJECT

public:
    TaskTree(const Group &recipe);
    /// Calls no handler any more. To delete a tree from within one of its handlers is a programming
    /// error that ends the program.
    ~TaskTree() override;

    /// Handlers run from here; done() may be emitted before this returns.
    void start();

signals:
    void started();
    void done(Tasking::DoneWith result);

private:
    class Private;
    const std::shared_ptr<Private> d;
};

} // namespace Tasking
