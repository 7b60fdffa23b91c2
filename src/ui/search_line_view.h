#pragma once

#include <QString>

#include "core/switcher_options.h"
#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

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
