#include "ui/empty_state_view.h"

#include <algorithm>

#include "ui/centred_column.h"
#include "ui/display_text.h"

namespace ferrowyn {

void EmptyStateView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double symbolPoints = 26;
    constexpr double belowSymbol = 10;
    constexpr double belowTitle = 5;
    const Theme& theme = context.theme;
    double height =
        SymbolImages::boxSide(symbolPoints) + belowSymbol + CentredColumn::lineHeight(TextStyle::emptyTitle, context);
    if (!state.detail.empty()) {
        height += belowTitle + CentredColumn::lineHeight(TextStyle::emptyDetail, context);
    }
    CentredColumn column(painter, rect, rect.y + std::max((rect.height - height) / 2, 0.0), context);
    column.addSymbol(state.symbol, symbolPoints, theme.textTertiary, SymbolWeight::light);
    column.addSpace(belowSymbol);
    column.addText(display_text::singleLine(state.title), TextStyle::emptyTitle, theme.textPrimary);
    if (!state.detail.empty()) {
        column.addSpace(belowTitle);
        column.addText(display_text::singleLine(state.detail), TextStyle::emptyDetail, theme.textSecondary);
    }
}

}  // namespace ferrowyn
