#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "core/app_window.h"
#include "core/posted_work.h"
#include "core/published.h"
#include "inventory/window_enumerator.h"
#include "platform/main_loop.h"

namespace ferrowyn {

struct Platform;
struct WindowChange;
class RecencyTracker;
class WindowObservationCenter;

/// The single source of the window list that the rest of the program shows, in switcher order. Main thread; only the
/// snapshots are taken on workers, one at a time, and none of them outlasts `stop` with any effect.
class WindowIndex {
public:
    explicit WindowIndex(const Platform& platform);
    /// For tests, which want to see, or to be, the parts.
    WindowIndex(const Platform& platform, std::unique_ptr<RecencyTracker> recency,
                std::unique_ptr<WindowObservationCenter> observation);
    ~WindowIndex();
    WindowIndex(const WindowIndex&) = delete;
    WindowIndex& operator=(const WindowIndex&) = delete;

    [[nodiscard]] const Published<std::vector<AppWindow>>& windows() const { return windows_; }
    /// When the last refresh pass completed; nothing before the first.
    [[nodiscard]] const Published<std::optional<TimePoint>>& lastRefresh() const { return lastRefresh_; }

    /// Begins the observation, and the first refresh without delay.
    void start();
    /// Ends the observation and empties the list. What is known of recency stays.
    void stop();
    /// Refresh passes until no further one is asked for; returns at once.
    void refresh();
    /// One refresh, `coalescingInterval` after the last request of a burst.
    void scheduleRefresh();
    /// The switcher just activated this window: it leads the list at once, behind the dialog that blocks it if one
    /// does.
    void noteActivated(WindowId id);

    static constexpr Seconds coalescingInterval{0.12};
    /// How long the application of a focus change may take to say which window that is. The main thread waits for it.
    static constexpr Seconds focusedWindowTimeout{0.1};

private:
    void handle(const WindowChange& change);
    void beginPass();
    void finishPass(std::uint64_t generation, WindowEnumerator::Snapshot snapshot);
    void apply(WindowEnumerator::Snapshot snapshot);
    void use(WindowId id);
    void moveToFront(WindowId id);
    /// The window itself, or, for a dialog that is not listed (it has no title), the window that it blocks: in the list
    /// that one stands for both.
    [[nodiscard]] WindowId listedWindowFor(WindowId focused) const;
    void publish(std::vector<AppWindow> windows);
    [[nodiscard]] std::vector<AppWindow> carryingOver(WindowEnumerator::Snapshot snapshot) const;

    MainLoop& mainLoop_;
    BackgroundWork& backgroundWork_;
    Log& log_;
    const WindowInventory& windowInventory_;
    Published<std::vector<AppWindow>> windows_;
    Published<std::optional<TimePoint>> lastRefresh_;
    WindowEnumerator enumerator_;
    std::unique_ptr<RecencyTracker> recency_;
    std::unique_ptr<WindowObservationCenter> observation_;
    bool isEnumerating_ = false;
    bool needsAnotherPass_ = false;
    std::int64_t rankAtPassBegin_ = 0;
    bool isStarted_ = false;
    /// Counts the stops: work that was begun before the last one has no effect any more.
    std::uint64_t generation_ = 0;
    Subscription coalescedRefresh_;
    Subscription changes_;
    /// Held weakly by what waits on the loop or on a worker, and looked at on the main thread only.
    LifeToken life_;
};

}  // namespace ferrowyn
