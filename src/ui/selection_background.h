#pragma once

#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// What the selected row stands on. A plain value.
struct SelectionBackground {
    static constexpr double cornerRadius = 9;

    bool isSelected = false;

    /// Nothing unless selected.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn
