#include "ui/window_row_view.h"

#include <algorithm>
#include <cmath>

#include "core/window_presentation.h"
#include "ui/app_icon_view.h"
#include "ui/badge_view.h"
#include "ui/favourite_button.h"
#include "ui/key_cap_view.h"
#include "ui/row_title.h"
#include "ui/selection_background.h"

namespace ferrowyn {

namespace {

constexpr double inset = 12;
constexpr double indentation = 12;
constexpr double iconSide = 32;
constexpr double gap = 12;
constexpr double starPoints = 12.5;
constexpr double starSide = SymbolImages::boxSide(starPoints);
/// Ordinals stand in a column of their own, so that badges and stars of all rows line up.
constexpr double ordinalColumn = KeyCapView::height;
constexpr int ordinalsWithAKey = 9;

/// Where the next part to the left of the ordinal ends.
double ordinalLeft(const Rect& rect) {
    return rect.maxX() - inset - ordinalColumn;
}

}  // namespace

bool WindowRowView::showsOrdinal() const {
    return ordinal >= 1 && ordinal <= ordinalsWithAKey;
}

std::optional<Rect> WindowRowView::favouriteButton(const Rect& rect) const {
    if (!WindowPresentation::showsFavouriteButton(row.isFavourite, isSelected)) {
        return std::nullopt;
    }
    return Rect{ordinalLeft(rect) - gap - starSide, rect.midY() - starSide / 2, starSide, starSide};
}

void WindowRowView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    SelectionBackground{isSelected}.paint(painter, rect, context);
    const double left = rect.x + inset + (isIndented ? indentation : 0);
    AppIconView{icon, iconSide, row.window->isMinimized}.paint(painter, {left, rect.y, iconSide, rect.height}, context);
    const double textLeft = left + iconSide + gap;
    const double textRight = paintTrailingParts(painter, rect, context);
    paintText(painter, {textLeft, rect.y, std::max(textRight - textLeft, 0.0), rect.height}, context);
}

double WindowRowView::paintTrailingParts(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    double right = ordinalLeft(rect);
    if (showsOrdinal()) {
        const KeyCapView cap{QString::number(ordinal), isSelected};
        const double width = cap.width(context);
        right = std::min(right, rect.maxX() - inset - width);
        cap.paint(painter, {rect.maxX() - inset - width, rect.y, width, rect.height}, context);
    }
    if (const auto star = favouriteButton(rect)) {
        FavouriteButton{row.isFavourite, isSelected, starPoints, onToggleFavourite}.paint(painter, *star, context);
        right = star->x;
    }
    if (const auto badge = WindowPresentation::badge(row.window, context.texts)) {
        const BadgeView view{*badge, false, isSelected};
        right -= gap + view.width(context);
        view.paint(painter, {right, rect.y, view.width(context), rect.height}, context);
    }
    return right - gap;
}

void WindowRowView::paintText(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double lineGap = 2;
    const Theme& theme = context.theme;
    const double scale = context.devicePixelRatio;
    const auto snapped = [scale](double edge) { return std::round(edge * scale) / scale; };
    const TextLine& title = context.lines.line(row_title::text(row.window), TextStyle::rowTitle, rect.width,
                                               row_title::emphasis(row, isSelected, theme));
    const QColor titleColor = isSelected ? theme.selectionText : theme.textPrimary;
    if (!showsAppName) {
        const double centred = context.lines.centredBaseline(TextStyle::rowTitle, rect.y, rect.height, scale);
        title.paint(painter, rect.x, centred, titleColor);
        return;
    }
    const auto titleMetrics = context.lines.metrics(TextStyle::rowTitle);
    const auto nameMetrics = context.lines.metrics(TextStyle::rowAppName);
    const double titleHeight = titleMetrics.ascent + titleMetrics.descent;
    const double height = titleHeight + lineGap + nameMetrics.ascent + nameMetrics.descent;
    const double top = rect.midY() - height / 2;
    title.paint(painter, rect.x, snapped(top + titleMetrics.ascent), titleColor);
    const TextLine& name =
        context.lines.line(display_text::singleLine(row.window->appName), TextStyle::rowAppName, rect.width);
    name.paint(painter, rect.x, snapped(top + titleHeight + lineGap + nameMetrics.ascent),
               isSelected ? theme.selectionTextSecondary : theme.textSecondary);
}

}  // namespace ferrowyn
