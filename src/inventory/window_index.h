#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"
#include "core/subscription.h"
#include "platform/main_loop.h"

namespace ferrowyn {

struct Platform;

/// The single source of the window list that the rest of the program shows, in switcher order. Main thread.
class WindowIndex {
public:
    explicit WindowIndex(const Platform& platform);
    ~WindowIndex();
    WindowIndex(const WindowIndex&) = delete;
    WindowIndex& operator=(const WindowIndex&) = delete;

    [[nodiscard]] const Published<std::vector<AppWindow>>& windows() const { return windows_; }
    /// When the last refresh pass completed; nothing before the first.
    [[nodiscard]] const Published<std::optional<TimePoint>>& lastRefresh() const { return lastRefresh_; }

    void start();
    void stop();
    /// Refresh passes until no further one is asked for; returns at once.
    void refresh();
    /// One refresh, `coalescingInterval` after the last request of a burst.
    void scheduleRefresh();
    /// The switcher just activated this window: it leads the list at once.
    void noteActivated(WindowId id);

    static constexpr Seconds coalescingInterval{0.12};

private:
    Published<std::vector<AppWindow>> windows_;
    Published<std::optional<TimePoint>> lastRefresh_;
};

}  // namespace ferrowyn
