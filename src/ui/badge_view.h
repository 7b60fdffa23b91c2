#pragma once

#include "core/window_presentation.h"
#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// A window's state, on a tint of its colour. A plain value.
struct BadgeView {
    WindowPresentation::Badge badge;
    /// Smaller, and opaque, for a place over an icon.
    bool compact = false;
    bool isOnSelection = false;

    [[nodiscard]] double width(const PaintContext& context) const;
    [[nodiscard]] double height() const { return compact ? 16 : 19; }
    /// Centred in the rectangle's height, from its left edge, as wide as `width`.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;

private:
    [[nodiscard]] const TextLine& line(const PaintContext& context) const;
};

}  // namespace ferrowyn
