#pragma once

#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// The blinking insertion mark behind the query. A plain value.
struct Caret {
    static constexpr double width = 1.5;
    /// Seconds from visible to invisible, and again back.
    static constexpr double halfPeriod = 0.55;

    bool isVisible = true;

    /// From its left edge, centred in the rectangle's height. `opacity` while it fades; 1 at rest.
    void paint(QPainter& painter, const Rect& rect, double opacity, const PaintContext& context) const;
    /// How opaque it is this many seconds after it was last put to rest: eased in and out, back and forth for ever.
    [[nodiscard]] static double opacityAfter(double seconds);
};

}  // namespace ferrowyn
