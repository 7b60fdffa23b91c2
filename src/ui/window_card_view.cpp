#include "ui/window_card_view.h"

#include <algorithm>
#include <cmath>

#include "core/window_presentation.h"
#include "ui/app_icon_view.h"
#include "ui/badge_view.h"
#include "ui/favourite_button.h"
#include "ui/row_title.h"
#include "ui/selection_background.h"

namespace ferrowyn {

namespace {

constexpr double inset = 8;
constexpr double iconTop = 12;
constexpr double iconSide = 40;
constexpr double starPoints = 11;
constexpr double starSide = SymbolImages::boxSide(starPoints);
constexpr int ordinalsWithAKey = 9;

}  // namespace

std::optional<Rect> WindowCardView::favouriteButton(const Rect& rect) const {
    if (!WindowPresentation::showsFavouriteButton(row.isFavourite, isSelected)) {
        return std::nullopt;
    }
    return Rect{rect.maxX() - inset - starSide, rect.y + inset, starSide, starSide};
}

void WindowCardView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    SelectionBackground{isSelected}.paint(painter, rect, context);
    const Rect iconRect{rect.midX() - iconSide / 2, rect.y + iconTop, iconSide, iconSide};
    AppIconView{icon, iconSide, row.window->isMinimized}.paint(painter, iconRect, context);
    paintCorners(painter, rect, context);
    if (const auto badge = WindowPresentation::badge(row.window, context.texts)) {
        const BadgeView view{*badge, true, isSelected};
        const double width = view.width(context);
        // Over the lower edge of the icon, and no further down than the title allows.
        view.paint(painter, {rect.midX() - width / 2, iconRect.maxY() - view.height() + 4, width, view.height()},
                   context);
    }
    paintText(painter, rect, context);
}

void WindowCardView::paintCorners(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    if (ordinal >= 1 && ordinal <= ordinalsWithAKey) {
        const double baseline =
            context.lines.centredBaseline(TextStyle::cardOrdinal, rect.y + inset, starSide, context.devicePixelRatio);
        context.lines.line(QString::number(ordinal), TextStyle::cardOrdinal, rect.width)
            .paint(painter, rect.x + inset, baseline,
                   isSelected ? context.theme.selectionTextSecondary : context.theme.textSecondary);
    }
    if (const auto star = favouriteButton(rect)) {
        FavouriteButton{row.isFavourite, isSelected, starPoints, onToggleFavourite}.paint(painter, *star, context);
    }
}

void WindowCardView::paintText(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double textTop = iconTop + iconSide + 4;
    constexpr double bottomMargin = 6;
    constexpr double lineGap = 1;
    const Theme& theme = context.theme;
    const double scale = context.devicePixelRatio;
    const auto snapped = [scale](double edge) { return std::round(edge * scale) / scale; };
    const double width = rect.width - 2 * inset;
    const auto titleMetrics = context.lines.metrics(TextStyle::rowTitle);
    const auto nameMetrics = context.lines.metrics(TextStyle::rowAppName);
    const double titleHeight = titleMetrics.ascent + titleMetrics.descent;
    const double height = titleHeight + lineGap + nameMetrics.ascent + nameMetrics.descent;
    const double room = rect.height - textTop - bottomMargin;
    const double top = rect.y + textTop + std::max((room - height) / 2, 0.0);

    const TextLine& title = context.lines.line(row_title::text(row.window), TextStyle::rowTitle, width,
                                               row_title::emphasis(row, isSelected, theme));
    title.paint(painter, rect.midX() - title.width() / 2, snapped(top + titleMetrics.ascent),
                isSelected ? theme.selectionText : theme.textPrimary);
    const TextLine& name =
        context.lines.line(display_text::singleLine(row.window->appName), TextStyle::rowAppName, width);
    name.paint(painter, rect.midX() - name.width() / 2, snapped(top + titleHeight + lineGap + nameMetrics.ascent),
               isSelected ? theme.selectionTextSecondary : theme.textSecondary);
}

}  // namespace ferrowyn
