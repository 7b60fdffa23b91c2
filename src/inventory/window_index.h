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

/// Publishes the window list in the order of the switcher. Main thread; AppServices owns it. Snapshots are taken on
/// worker threads, one at a time; one that ends after `stop` has no effect.
class WindowIndex {
public:
    explicit WindowIndex(const Platform& platform);
    /// For tests that observe or replace the parts.
    WindowIndex(const Platform& platform, std::unique_ptr<RecencyTracker> recency,
                std::unique_ptr<WindowObservationCenter> observation);
    ~WindowIndex();
    WindowIndex(const WindowIndex&) = delete;
    WindowIndex& operator=(const WindowIndex&) = delete;

    [[nodiscard]] const Published<std::vector<AppWindow>>& windows() const { return windows_; }
    /// When the last refresh pass completed; nothing before the first.
    [[nodiscard]] const Published<std::optional<TimePoint>>& lastRefresh() const { return lastRefresh_; }

    /// Starts the observation, and the first refresh in the next turn of the loop.
    void start();
    /// Ends the observation and empties the list. The recency of the windows is kept.
    void stop();
    /// Starts a refresh and returns at once. A request during a refresh starts another one after it.
    void refresh();
    /// One refresh, `coalescingInterval` after the last request of a burst.
    void scheduleRefresh();
    /// The switcher has activated this window. It moves to the front of the list at once; a listed dialog that blocks
    /// it comes before it.
    void noteActivated(WindowId id);

    static constexpr Seconds coalescingInterval{0.12};
    /// How long an application may take to say which of its windows has the focus. The main thread waits for the
    /// answer.
    static constexpr Seconds focusedWindowTimeout{0.1};

private:
    void handle(const WindowChange& change);
    void beginPass();
    void finishPass(std::uint64_t generation, WindowEnumerator::Snapshot snapshot);
    void apply(WindowEnumerator::Snapshot snapshot);
    void use(WindowId id);
    void moveToFront(WindowId id);
    /// The focused window itself, or, for a dialog that is not listed (it has no title), the window that it blocks.
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
    /// The number of stops. Work that began before the last stop has no effect.
    std::uint64_t generation_ = 0;
    Subscription coalescedRefresh_;
    Subscription changes_;
    /// For the callbacks that wait on the loop or on a worker. Checked on the main thread only.
    LifeToken life_;
};

}  // namespace ferrowyn
