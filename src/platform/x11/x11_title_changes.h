#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <optional>
#include <vector>

#include "core/published.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// Passes on which windows have changed their titles: those of all windows together, twice a second at most. A refresh
/// of the window list waits until changes pause, so a page that shows its progress in its title would otherwise keep a
/// new window from being listed. Main thread.
class X11TitleChanges {
public:
    /// A client sets two properties for one title.
    static constexpr Seconds gatheringTime{0.05};
    static constexpr Seconds interval{0.5};

    /// `tell` is called for each window that has changed since it was told of. The loop outlives this.
    X11TitleChanges(MainLoop& mainLoop, std::function<void(xcb_window_t)> tell);

    void note(xcb_window_t window);

private:
    void tellAll();

    MainLoop& mainLoop_;
    std::function<void(xcb_window_t)> tell_;
    std::vector<xcb_window_t> changed_;
    std::optional<TimePoint> lastTold_;
    Subscription timer_;
};

}  // namespace ferrowyn
