#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <utility>

#include "core/posted_work.h"
#include "core/published.h"

namespace ferrowyn {

/// Durations are seconds in double precision.
using Seconds = std::chrono::duration<double>;
/// A moment on the main loop's clock, which never goes backward and has no relation to the calendar.
using TimePoint = std::chrono::time_point<std::chrono::steady_clock, Seconds>;
/// A moment by the calendar, counted from 1970-01-01 00:00 UTC. It jumps when someone sets the clock.
using WallTime = std::chrono::time_point<std::chrono::system_clock, Seconds>;

/// The main thread's event loop, and the program's only source of time.
class MainLoop {
public:
    using Task = std::function<void()>;

    virtual ~MainLoop() = default;

    /// Main thread.
    [[nodiscard]] virtual TimePoint now() const = 0;
    /// For times that are stored or shown; not for measuring durations. Main thread.
    [[nodiscard]] virtual WallTime wallTime() const = 0;

    /// Runs the task on the main thread, after every task posted before it. From any thread; never waits, and never
    /// runs the task before it returns.
    virtual void post(Task task) = 0;

    /// Runs the task once after `delay`; dropping the token cancels it. Main thread.
    [[nodiscard]] virtual Subscription after(Seconds delay, Task task) = 0;

    /// Runs the task again and again, first after `interval`; dropping the token, also from the task itself, ends it.
    /// Main thread. It also runs while a menu is open.
    [[nodiscard]] virtual Subscription every(Seconds interval, Task task) = 0;

    /// For assertions. From any thread.
    [[nodiscard]] virtual bool isMainThread() const = 0;
};

/// Returns a function that posts to the loop. The loop outlives it.
[[nodiscard]] inline PostTask postTo(MainLoop& mainLoop) {
    return [&mainLoop](std::function<void()> task) { mainLoop.post(std::move(task)); };
}

/// Worker threads for work that must not block the main thread.
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
