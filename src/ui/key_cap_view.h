#pragma once

#include <QString>

#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// One key, drawn as a key cap. A plain value.
struct KeyCapView {
    static constexpr double height = 20;

    QString text;
    bool isOnSelection = false;

    [[nodiscard]] double width(const PaintContext& context) const;
    /// Centred in the rectangle's height, from its left edge, as wide as `width`.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn
