#pragma once

#include <functional>

#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// The star that pins an application to the top. Drawn only where `WindowPresentation::showsFavouriteButton` says. A
/// plain value.
struct FavouriteButton {
    bool isFavourite = false;
    bool isSelected = false;
    /// Of the symbol, in points.
    double size = 12.5;
    std::function<void()> action;

    /// Where a click counts: larger than the symbol, which is small for a pointer.
    [[nodiscard]] static Rect hitArea(const Rect& rect);
    /// Centred in the rectangle.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn
