#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "core/geometry.h"
#include "core/published.h"

namespace ferrowyn {

/// One screen. In `Screens`, `Pointer` and `Panel`, coordinates are in points, y grows upward, and the origin is the
/// lower left corner of the primary screen.
struct Screen {
    Rect frame;
    /// The frame without the desktop's panels and docks.
    Rect visibleFrame;

    /// Whether a pointer at this place, as `Pointer` returns it, is on the screen. The place of a pixel is its upper
    /// left corner. With y growing upward, the left and the upper edge therefore belong to the screen, and the right
    /// and the lower edge to its neighbours.
    [[nodiscard]] bool hasPointerAt(const Point& pointer) const {
        return pointer.x >= frame.minX() && pointer.x < frame.maxX() && pointer.y > frame.minY() &&
               pointer.y <= frame.maxY();
    }
    friend bool operator==(const Screen&, const Screen&) = default;
};

/// The current screens. Main thread. The adapter keeps them up to date, so a call makes no round trip.
class Screens {
public:
    virtual ~Screens() = default;

    [[nodiscard]] virtual std::vector<Screen> all() const = 0;
    /// The screen with the keyboard focus, else the primary one; nothing when there is no screen at all.
    [[nodiscard]] virtual std::optional<Screen> main() const = 0;
    /// Calls the handler after screens were added, removed or moved, or changed their size, scale or visible frame. The
    /// functions above return the new state then.
    [[nodiscard]] virtual Subscription observe(std::function<void()> handler) const = 0;
};

/// The mouse pointer. Main thread.
class Pointer {
public:
    virtual ~Pointer() = default;

    /// The place of the pointer: the upper left corner of the pixel under it, y growing upward (see
    /// `Screen::hasPointerAt`). Never waits: where asking needs a round trip, it is the place that came with the latest
    /// key or pointer event.
    [[nodiscard]] virtual Point location() const = 0;
    /// Updates `location` to the current place, for callers that were not called by a key or pointer event. May wait
    /// for a round trip.
    virtual void refresh() = 0;

    /// Calls the handler for each press of a mouse button that goes to another application. The press still reaches its
    /// target.
    [[nodiscard]] virtual Subscription observeClicksElsewhere(std::function<void()> handler) = 0;
};

}  // namespace ferrowyn
