#pragma once

#include <QString>

#include "core/switcher_options.h"
#include "ui/common/paint_context.h"

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

/// The query with its caret, and the layout indicator with the number of rows. A plain value.
struct SearchLineView {
    QString query;
    SwitcherLayout layout = SwitcherLayout::list;
    int rowCount = 0;
    double caretOpacity = 1;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    /// What changes while the caret blinks.
    [[nodiscard]] Rect caretRect(const Rect& rect, const PaintContext& context) const;

private:
    /// Paints it at the right end; returns where it begins.
    [[nodiscard]] double paintIndicator(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    [[nodiscard]] double queryWidth(const PaintContext& context) const;
};

}  // namespace ferrowyn
