#pragma once

#include <optional>

#include "core/geometry.h"

namespace ferrowyn {

/// Keeps the mouse pointer from stealing the keyboard's selection: rows that move under a resting pointer, and the
/// jitter of a hand on the desk, are no choice of the user's. A plain value.
struct PointerActivityGate {
    /// The pointer must get farther than this many points from the anchor before it counts again.
    static constexpr double activityDistance = 3.0;

    /// Where the pointer was at the last key; absent while the pointer is live.
    std::optional<Point> anchor;

    /// The keyboard is driving from now on.
    void arm(const Point& pointer) { anchor = pointer; }
    /// Whether a hover with the pointer at this place counts; the first that does makes the pointer live.
    [[nodiscard]] bool admitsHover(const Point& pointer);
};

}  // namespace ferrowyn
