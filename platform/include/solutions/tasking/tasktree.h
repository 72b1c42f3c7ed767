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

/// An asynchronous piece of work. The tree calls start() once and then waits for done(). A tree
/// that goes away deletes its task, also while a function or a signal of the task is on the stack.
class TaskInterface : public QObject
{
    Q_OBJECT

public:
    virtual void start() = 0;
    /// Asks the work to end soon; done() is still expected, from here or later.
    virtual void cancel() = 0;

signals:
    void done(Tasking::DoneResult result);
};

/// One element of a recipe: a group, a task, or a handler of the group that it stands in.
class GroupItem
{
public:
    using SetupHandler = std::function<SetupResult()>;
    using DoneHandler = std::function<DoneResult(DoneWith)>;
    using TaskCreator = std::function<std::unique_ptr<TaskInterface>()>;

    enum class Type { Group, SetupHandler, DoneHandler, Task };

    Type type() const { return m_type; }
    const QList<GroupItem> &children() const { return m_children; }
    const SetupHandler &setupHandler() const { return m_setupHandler; }
    const DoneHandler &doneHandler() const { return m_doneHandler; }
    const TaskCreator &taskCreator() const { return m_taskCreator; }

    explicit GroupItem(const SetupHandler &handler)
        : m_type(Type::SetupHandler)
        , m_setupHandler(handler)
    {
    }
    explicit GroupItem(const DoneHandler &handler)
        : m_type(Type::DoneHandler)
        , m_doneHandler(handler)
    {
    }

protected:
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

private:
    Type m_type;
    QList<GroupItem> m_children;
    SetupHandler m_setupHandler;
    DoneHandler m_doneHandler;
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
};

/// A task made by \a creator when its turn comes.
class CustomTask : public ExecutableItem
{
public:
    explicit CustomTask(const TaskCreator &creator)
        : ExecutableItem(creator)
    {
    }
};

/// \a handler takes nothing and returns SetupResult, or nothing at all (which means Continue).
template<typename Handler>
GroupItem onGroupSetup(Handler &&handler)
{
    using Result = std::invoke_result_t<std::decay_t<Handler> &>;
    static_assert(std::is_same_v<Result, SetupResult> || std::is_void_v<Result>,
                  "A setup handler returns SetupResult or void");
    return GroupItem(GroupItem::SetupHandler([handler = std::forward<Handler>(handler)]() mutable {
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
GroupItem onGroupDone(Handler &&handler)
{
    return GroupItem(
        GroupItem::DoneHandler([handler = std::forward<Handler>(handler)](DoneWith with) mutable {
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

/// Runs a recipe in the caller's thread. A done handler is also called, and decides, after a setup
/// handler that stopped the group, and with DoneWith::Cancel after cancel().
class TaskTree : public QObject
{
    Q_OBJECT

public:
    explicit TaskTree(const Group &recipe);
    /// Calls no handler any more. To delete a tree from within one of its handlers is a programming
    /// error that ends the program.
    ~TaskTree() override;

    /// Handlers run from here; done() may be emitted before this returns.
    void start();
    /// While a handler runs, the tree stops as soon as that handler has returned.
    void cancel();
    bool isRunning() const;

signals:
    void started();
    void done(Tasking::DoneWith result);

private:
    class Private;
    const std::shared_ptr<Private> d;
};

} // namespace Tasking
