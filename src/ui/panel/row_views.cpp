#include "ui/panel/row_views.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "core/window_presentation.h"
#include "ui/panel/row_parts.h"

namespace ferrowyn {

namespace row_title {

QString text(const AppWindow& window) {
    QString title = display_text::singleLine(window.displayTitle());
    return display_text::hasVisibleCharacters(title) ? title : display_text::singleLine(window.appName);
}

TextEmphasis emphasis(const SwitcherViewModel::Row& row, bool isSelected, const Theme& theme) {
    if (row.highlightedTitleIndices.empty()) {
        return {};
    }
    return {display_text::rangesOfCharacters(row.window->displayTitle(), row.highlightedTitleIndices),
            isSelected ? theme.selectionText : theme.matchedCharacters, isSelected};
}

}  // namespace row_title

void GroupHeaderView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double inset = 12;
    constexpr double iconSide = 16;
    constexpr double gap = 7;
    constexpr double countInset = 4;
    constexpr double countRadius = 4;
    const double scale = context.devicePixelRatio;
    const Theme& theme = context.theme;

    AppIconView{icon, iconSide, false}.paint(painter, {rect.x + inset, rect.y, iconSide, rect.height}, context);
    const double nameLeft = rect.x + inset + iconSide + gap;

    const QString countText = QString::fromStdString(WindowPresentation::groupCountText(count));
    const double countWidth =
        std::ceil(context.lines.line(countText, TextStyle::groupCount, rect.width).width()) + 2 * countInset;
    const double room = rect.maxX() - inset - countWidth - gap - nameLeft;
    const TextLine& name = context.lines.line(appName, TextStyle::groupName, std::max(room, 0.0));
    const double nameWidth = name.width();
    name.paint(painter, nameLeft, context.lines.centredBaseline(TextStyle::groupName, rect.y, rect.height, scale),
               theme.textSecondary);

    const auto metrics = context.lines.metrics(TextStyle::groupCount);
    const double boxHeight = std::round(metrics.ascent + metrics.descent + 2);
    const QRectF box(context.snapped(nameLeft + nameWidth + gap), context.snapped(rect.midY() - boxHeight / 2),
                     countWidth, boxHeight);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.countFill);
    painter.drawRoundedRect(box, countRadius, countRadius);
    const TextLine& number = context.lines.line(countText, TextStyle::groupCount, rect.width);
    number.paint(painter, box.center().x() - number.width() / 2,
                 context.lines.centredBaseline(TextStyle::groupCount, box.y(), box.height(), scale), theme.countText);
}

namespace {

constexpr double rowInset = 12;
constexpr double rowIndentation = 12;
constexpr double rowIconSide = 32;
constexpr double rowGap = 12;
constexpr double rowStarPoints = 12.5;
constexpr double rowStarSide = SymbolImages::boxSide(rowStarPoints);
/// The ordinals form a column, so that badges and stars of all rows line up.
constexpr double ordinalColumn = KeyCapView::height;

/// Whether a key jumps to this row.
bool hasKey(int ordinal) {
    constexpr int lastWithAKey = 9;
    return ordinal >= 1 && ordinal <= lastWithAKey;
}

/// The left edge of the ordinals' column.
double ordinalLeft(const Rect& rect) {
    return rect.maxX() - rowInset - ordinalColumn;
}

}  // namespace

bool WindowRowView::showsOrdinal() const {
    return hasKey(ordinal);
}

std::optional<Rect> WindowRowView::favouriteButton(const Rect& rect) const {
    if (!WindowPresentation::showsFavouriteButton(row.isFavourite, isSelected)) {
        return std::nullopt;
    }
    return Rect{ordinalLeft(rect) - rowGap - rowStarSide, rect.midY() - rowStarSide / 2, rowStarSide, rowStarSide};
}

void WindowRowView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    SelectionBackground{isSelected}.paint(painter, rect, context);
    const double left = rect.x + rowInset + (isIndented ? rowIndentation : 0);
    AppIconView{icon, rowIconSide, row.window->isMinimized}.paint(painter, {left, rect.y, rowIconSide, rect.height},
                                                                  context);
    const double textLeft = left + rowIconSide + rowGap;
    const double textRight = paintTrailingParts(painter, rect, context);
    paintText(painter, {textLeft, rect.y, std::max(textRight - textLeft, 0.0), rect.height}, context);
}

double WindowRowView::paintTrailingParts(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    double right = ordinalLeft(rect);
    if (showsOrdinal()) {
        const KeyCapView cap{QString::number(ordinal), isSelected};
        const double width = cap.width(context);
        right = std::min(right, rect.maxX() - rowInset - width);
        cap.paint(painter, {rect.maxX() - rowInset - width, rect.y, width, rect.height}, context);
    }
    if (const auto star = favouriteButton(rect)) {
        FavouriteButton{row.isFavourite, isSelected, rowStarPoints, onToggleFavourite}.paint(painter, *star, context);
        right = star->x;
    }
    if (const auto badge = WindowPresentation::badge(row.window, context.texts)) {
        const BadgeView view{*badge, false, isSelected};
        right -= rowGap + view.width(context);
        view.paint(painter, {right, rect.y, view.width(context), rect.height}, context);
    }
    return right - rowGap;
}

void WindowRowView::paintText(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double lineGap = 2;
    const Theme& theme = context.theme;
    const double scale = context.devicePixelRatio;
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
    title.paint(painter, rect.x, context.snapped(top + titleMetrics.ascent), titleColor);
    const TextLine& name =
        context.lines.line(display_text::singleLine(row.window->appName), TextStyle::rowAppName, rect.width);
    name.paint(painter, rect.x, context.snapped(top + titleHeight + lineGap + nameMetrics.ascent),
               isSelected ? theme.selectionTextSecondary : theme.textSecondary);
}

namespace {

constexpr double cardInset = 8;
constexpr double cardIconTop = 12;
constexpr double cardIconSide = 40;
constexpr double cardStarPoints = 11;
constexpr double cardStarSide = SymbolImages::boxSide(cardStarPoints);

}  // namespace

std::optional<Rect> WindowCardView::favouriteButton(const Rect& rect) const {
    if (!WindowPresentation::showsFavouriteButton(row.isFavourite, isSelected)) {
        return std::nullopt;
    }
    return Rect{rect.maxX() - cardInset - cardStarSide, rect.y + cardInset, cardStarSide, cardStarSide};
}

void WindowCardView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    SelectionBackground{isSelected}.paint(painter, rect, context);
    const Rect iconRect{rect.midX() - cardIconSide / 2, rect.y + cardIconTop, cardIconSide, cardIconSide};
    AppIconView{icon, cardIconSide, row.window->isMinimized}.paint(painter, iconRect, context);
    paintCorners(painter, rect, context);
    if (const auto badge = WindowPresentation::badge(row.window, context.texts)) {
        const BadgeView view{*badge, true, isSelected};
        const double width = view.width(context);
        // Over the icon's lower edge, but above the title.
        view.paint(painter, {rect.midX() - width / 2, iconRect.maxY() - view.height() + 4, width, view.height()},
                   context);
    }
    paintText(painter, rect, context);
}

void WindowCardView::paintCorners(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    if (hasKey(ordinal)) {
        const double baseline = context.lines.centredBaseline(TextStyle::cardOrdinal, rect.y + cardInset, cardStarSide,
                                                              context.devicePixelRatio);
        context.lines.line(QString::number(ordinal), TextStyle::cardOrdinal, rect.width)
            .paint(painter, rect.x + cardInset, baseline,
                   isSelected ? context.theme.selectionTextSecondary : context.theme.textSecondary);
    }
    if (const auto star = favouriteButton(rect)) {
        FavouriteButton{row.isFavourite, isSelected, cardStarPoints, onToggleFavourite}.paint(painter, *star, context);
    }
}

void WindowCardView::paintText(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double textTop = cardIconTop + cardIconSide + 4;
    constexpr double bottomMargin = 6;
    constexpr double lineGap = 1;
    const Theme& theme = context.theme;
    const double width = rect.width - 2 * cardInset;
    const auto titleMetrics = context.lines.metrics(TextStyle::rowTitle);
    const auto nameMetrics = context.lines.metrics(TextStyle::rowAppName);
    const double titleHeight = titleMetrics.ascent + titleMetrics.descent;
    const double height = titleHeight + lineGap + nameMetrics.ascent + nameMetrics.descent;
    const double room = rect.height - textTop - bottomMargin;
    const double top = rect.y + textTop + std::max((room - height) / 2, 0.0);

    const TextLine& title = context.lines.line(row_title::text(row.window), TextStyle::rowTitle, width,
                                               row_title::emphasis(row, isSelected, theme));
    title.paint(painter, rect.midX() - title.width() / 2, context.snapped(top + titleMetrics.ascent),
                isSelected ? theme.selectionText : theme.textPrimary);
    const TextLine& name =
        context.lines.line(display_text::singleLine(row.window->appName), TextStyle::rowAppName, width);
    name.paint(painter, rect.midX() - name.width() / 2,
               context.snapped(top + titleHeight + lineGap + nameMetrics.ascent),
               isSelected ? theme.selectionTextSecondary : theme.textSecondary);
}

}  // namespace ferrowyn
