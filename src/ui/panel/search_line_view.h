#pragma once

#include <QString>

#include "core/switcher_options.h"
#include "ui/common/paint_context.h"

class QPainter;

namespace ferrowyn {

/// The blinking caret behind the query. A plain value.
struct Caret {
    static constexpr double width = 1.5;
    /// Seconds from visible to invisible, and again from invisible to visible.
    static constexpr double halfPeriod = 0.55;

    bool isVisible = true;

    /// Paints it at the rectangle's left edge, as high as the rectangle. `opacity` is 1 while it does not blink.
    void paint(QPainter& painter, const Rect& rect, double opacity, const PaintContext& context) const;
    /// The opacity so many seconds after the blinking began. It eases out and in endlessly.
    [[nodiscard]] static double opacityAfter(double seconds);
};

/// The query with its caret, and the layout indicator with the number of rows. A plain value.
struct SearchLineView {
    QString query;
    SwitcherLayout layout = SwitcherLayout::list;
    int rowCount = 0;
    double caretOpacity = 1;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    /// The caret's rectangle: all that changes while it blinks.
    [[nodiscard]] Rect caretRect(const Rect& rect, const PaintContext& context) const;

private:
    /// Paints it at the right end. Returns its left edge.
    [[nodiscard]] double paintIndicator(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    [[nodiscard]] double queryWidth(const PaintContext& context) const;
};

}  // namespace ferrowyn
