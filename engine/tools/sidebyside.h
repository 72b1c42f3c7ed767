#pragma once

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

/// Does work(0) to work(count - 1) side by side on all cores, and calls take(i, result) here, in
/// order. What the first one in this order throws ends all of it.
template<typename Result>
void sideBySide(std::size_t count,
                const std::function<Result(std::size_t)> &work,
                const std::function<void(std::size_t, Result)> &take)
{
    struct Outcome
    {
        std::optional<Result> result;
        std::exception_ptr error;
    };
    std::vector<Outcome> outcomes(count);
    std::mutex mutex;
    std::condition_variable isNews;
    std::atomic<std::size_t> next = 0;
    const auto run = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            Outcome outcome;
            try {
                outcome.result = work(i);
            } catch (...) {
                outcome.error = std::current_exception();
            }
            const std::lock_guard lock(mutex);
            outcomes[i] = std::move(outcome);
            isNews.notify_one();
        }
    };
    // Declared behind what they use, and before what ends them early.
    std::vector<std::jthread> threads;
    const struct Stop
    {
        ~Stop() { m_next = m_count; }
        std::atomic<std::size_t> &m_next;
        const std::size_t m_count;
    } stop{next, count};
    // More than there are cores, for some wait for the disk.
    const std::size_t threadCount = std::thread::hardware_concurrency() + 6;
    for (std::size_t i = 0; i < std::min(threadCount, count); ++i)
        threads.emplace_back(run);
    for (std::size_t i = 0; i < count; ++i) {
        std::unique_lock lock(mutex);
        isNews.wait(lock, [&] { return outcomes[i].result || outcomes[i].error; });
        Outcome outcome = std::exchange(outcomes[i], {});
        lock.unlock();
        if (outcome.error)
            std::rethrow_exception(outcome.error);
        take(i, std::move(*outcome.result));
    }
}
