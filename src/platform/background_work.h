#pragma once

#include <cstddef>
#include <functional>

namespace ferrowyn {

/// Worker threads for the work that must not hold up the main thread.
class BackgroundWork {
public:
    virtual ~BackgroundWork() = default;

    /// Runs the work on a worker thread, soon and at user-initiated priority. Main thread; never waits. Work that has
    /// not started when the implementation is destroyed is dropped; work that has started is waited for.
    virtual void run(std::function<void()> work) = 0;

    /// Calls `iteration(0)` to `iteration(count - 1)`, several at a time on the worker threads, and returns when all
    /// have ended. From a worker thread.
    virtual void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) = 0;
};

}  // namespace ferrowyn
