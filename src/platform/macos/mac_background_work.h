#pragma once

#include <functional>
#include <memory>

#include "platform/main_loop.h"

namespace ferrowyn {

/// The toolkit's workers, with an autorelease pool around each task: their threads have none, and the system's
/// functions autorelease objects.
class MacBackgroundWork final : public BackgroundWork {
public:
    /// `workers` outlives this.
    explicit MacBackgroundWork(BackgroundWork& workers) : workers_(workers) {}

    void run(std::function<void()> work) override;
    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override;

private:
    BackgroundWork& workers_;
};

/// Calls `work` inside an autorelease pool, which is drained before this returns. A thread that the program started has
/// no pool, and what the system's functions autorelease there would never be freed. Any thread.
void inAutoreleasePool(const std::function<void()>& work);

/// Keeps the system from slowing the program's timers, as it does to programs that show no window, for as long as this
/// lives. The Mac may still go to sleep. Main thread.
class MacActivity {
public:
    MacActivity();
    ~MacActivity();
    MacActivity(const MacActivity&) = delete;
    MacActivity& operator=(const MacActivity&) = delete;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn
