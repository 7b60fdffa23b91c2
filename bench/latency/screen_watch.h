#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ferrowyn::latency {

using Clock = std::chrono::steady_clock;

/// Looks at points of the screen and at the active window, with the time at which each answer came. A change is learnt
/// from a Damage object on the root, made beforehand: one on the panel would report the whole window when it is made.
class ScreenWatch {
public:
    explicit ScreenWatch(const std::string& display);
    ~ScreenWatch();
    ScreenWatch(const ScreenWatch&) = delete;
    ScreenWatch& operator=(const ScreenWatch&) = delete;

    struct Place {
        int x, y, width, height;
    };
    /// Points spread over this place are looked at from now on.
    void look(const Place& place);

    using Picture = std::vector<std::uint32_t>;
    [[nodiscard]] Picture picture();
    [[nodiscard]] xcb_window_t activeWindow();

    struct Moment {
        Clock::time_point time;
        Picture picture;
    };
    /// Every picture that differs from the one before, for this long. (A caret that blinks never lets a screen rest.)
    [[nodiscard]] std::vector<Moment> changes(std::chrono::milliseconds duration);
    /// When another window than this one is active; nothing when that takes more than the budget.
    [[nodiscard]] std::optional<Clock::time_point> activationAfter(xcb_window_t previous,
                                                                   std::chrono::milliseconds budget);

private:
    /// False when nothing came in that time.
    bool waitForEvent(std::chrono::milliseconds budget);

    xcb_connection_t* connection_;
    xcb_window_t root_;
    std::uint32_t damage_;
    xcb_atom_t activeWindowAtom_;
    std::vector<std::pair<std::int16_t, std::int16_t>> points_;
};

}  // namespace ferrowyn::latency
