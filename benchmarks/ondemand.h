#pragma once

#include <functional>
#include <memory>

namespace Benchmarks {

/// What a row measures with, made when it is used first: a row that is filtered out costs nothing.
/// Copies share it.
template<typename T>
class OnDemand
{
public:
    using Maker = std::function<std::unique_ptr<T>()>;

    explicit OnDemand(const Maker &make)
        : m_shared(std::make_shared<Shared>(Shared{make, nullptr}))
    {
    }

    T *operator->() const
    {
        if (!m_shared->value)
            m_shared->value = m_shared->make();
        return m_shared->value.get();
    }
    T &operator*() const { return *operator->(); }

private:
    struct Shared
    {
        Maker make;
        std::unique_ptr<T> value;
    };

    std::shared_ptr<Shared> m_shared;
};

} // namespace Benchmarks
