#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "core/geometry.h"
#include "core/published.h"

namespace ferrowyn {

/// One screen. Coordinates are points, and grow upward as far as `Screens`, `Pointer` and `Panel` are concerned: the
/// origin is the lower left corner of the whole desktop's primary screen.
struct Screen {
    Rect frame;
    /// The frame without the desktop's panels and docks.
    Rect visibleFrame;

    /// Whether a pointer at this place, as `Pointer` gives it, is on the screen. A pixel is named by its upper left
    /// corner on every desktop, so where y grows upward the left and the upper edge belong to the screen, and the right
    /// and the lower edge to its neighbours.
    [[nodiscard]] bool hasPointerAt(const Point& pointer) const {
        return pointer.x >= frame.minX() && pointer.x < frame.maxX() && pointer.y > frame.minY() &&
               pointer.y <= frame.maxY();
    }
    friend bool operator==(const Screen&, const Screen&) = default;
};

/// The screens as they are now. Main thread; answers from what the adapter has been told, without a round trip.
class Screens {
public:
    virtual ~Screens() = default;

    [[nodiscard]] virtual std::vector<Screen> all() const = 0;
    /// The screen with the keyboard focus, else the primary one; nothing when there is no screen at all.
    [[nodiscard]] virtual std::optional<Screen> main() const = 0;
    /// Told when screens came, went, moved or changed in their size, their scale or in what docks leave of them, and
    /// the answers above say so.
    [[nodiscard]] virtual Subscription observe(std::function<void()> handler) const = 0;
};

/// The mouse pointer. Main thread.
class Pointer {
public:
    virtual ~Pointer() = default;

    /// Where the pointer is, in points growing upward: the upper left corner of the pixel under it
    /// (`Screen::hasPointerAt`). Never waits: an adapter for which asking is a round trip answers with the place that
    /// came with the latest key or pointer event.
    [[nodiscard]] virtual Point location() const = 0;
    /// Makes `location` the place of this moment, for what no key or pointer event has led to. May wait for a round
    /// trip.
    virtual void refresh() = 0;

    /// Told about each press of any mouse button that goes to another application. The press still reaches its target.
    [[nodiscard]] virtual Subscription observeClicksElsewhere(std::function<void()> handler) = 0;
};

}  // namespace ferrowyn
