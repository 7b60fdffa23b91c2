#include "ui/panel/row_parts.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/common/colors.h"

namespace ferrowyn {

void SelectionBackground::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    if (!isSelected) {
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(context.theme.selection);
    painter.drawRoundedRect(toQt(rect), cornerRadius, cornerRadius);
}

void AppIconView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double dimmedOpacity = 0.55;
    const double scale = context.devicePixelRatio;
    const int deviceSide = static_cast<int>(std::lround(size * scale));
    const QImage& image = context.icons.image(icon, deviceSide);
    if (image.isNull()) {
        return;
    }
    const double shown = deviceSide / scale;
    const double left = context.snapped(rect.midX() - shown / 2);
    const double top = context.snapped(rect.midY() - shown / 2);
    const double opacity = painter.opacity();
    if (isDimmed) {
        painter.setOpacity(opacity * dimmedOpacity);
    }
    painter.drawImage(QRectF(left, top, shown, shown), image);
    painter.setOpacity(opacity);
}

Rect FavouriteButton::hitArea(const Rect& rect) {
    constexpr double reach = 5;
    return {rect.x - reach, rect.y - reach, rect.width + 2 * reach, rect.height + 2 * reach};
}

void FavouriteButton::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const QColor outline = isSelected ? context.theme.selectionText : context.theme.textSecondary;
    const QColor star = isSelected ? context.theme.selectionFavourite : context.theme.favourite;
    context.symbols.paint(painter, WindowPresentation::favouriteSymbol(isFavourite), rect.midX(), rect.midY(), size,
                          isFavourite ? star : outline);
}

namespace {

constexpr double chipRadius = 5;
constexpr double longestBadge = 140;

double symbolPoints(bool compact) {
    return compact ? 7 : 8;
}
double symbolSide(bool compact) {
    return SymbolImages::boxSide(symbolPoints(compact));
}
double padding(bool compact) {
    return compact ? 5 : 7;
}
double gap(bool compact) {
    return compact ? 3 : 4;
}

/// The opaque colour of `top` on the ground.
QColor opaque(const QColor& top, const QColor& ground) {
    QColor solid = ground;
    solid.setAlpha(255);
    return contrast::blended(top, solid);
}

}  // namespace

const TextLine& BadgeView::line(const PaintContext& context) const {
    return context.lines.line(QString::fromStdString(badge.text), TextStyle::badge, longestBadge);
}

double BadgeView::width(const PaintContext& context) const {
    return std::ceil(2 * padding(compact) + symbolSide(compact) + gap(compact) + line(context).width());
}

void BadgeView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const Theme& theme = context.theme;
    const double scale = context.devicePixelRatio;
    const QRectF chip(context.snapped(rect.x), context.snapped(rect.midY() - height() / 2), width(context), height());
    const QColor text = isOnSelection ? theme.selectionText : theme.badgeText(badge.tint);
    QColor fill = isOnSelection ? theme.selectionChip : theme.badgeFill(badge.tint);
    if (compact) {
        fill = opaque(fill, isOnSelection ? theme.selection : theme.background);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(chip, chipRadius, chipRadius);

    const double side = symbolSide(compact);
    double x = chip.x() + padding(compact);
    context.symbols.paint(painter, badge.symbol, x + side / 2, chip.center().y(), symbolPoints(compact), text,
                          SymbolWeight::semibold);
    x += side + gap(compact);
    const double baseline = context.lines.centredBaseline(TextStyle::badge, chip.y(), chip.height(), scale);
    line(context).paint(painter, x, baseline, text);
}

namespace {

constexpr double keyPadding = 6;
constexpr double longestKey = 120;

}  // namespace

double KeyCapView::width(const PaintContext& context) const {
    const double textWidth = context.lines.line(text, TextStyle::keyCap, longestKey).width();
    return std::max(std::ceil(textWidth + 2 * keyPadding), height);
}

void KeyCapView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const Theme& theme = context.theme;
    const double scale = context.devicePixelRatio;
    const QRectF cap(context.snapped(rect.x), context.snapped(rect.midY() - height / 2), width(context), height);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isOnSelection ? theme.selectionChip : theme.keyCapFill);
    painter.drawRoundedRect(cap, chipRadius, chipRadius);
    if (!isOnSelection) {
        const double edge = 1 / scale;
        painter.setPen(QPen(theme.keyCapEdge, edge));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(cap.adjusted(edge / 2, edge / 2, -edge / 2, -edge / 2), chipRadius, chipRadius);
    }
    const double baseline = context.lines.centredBaseline(TextStyle::keyCap, cap.y(), height, scale);
    const TextLine& line = context.lines.line(text, TextStyle::keyCap, longestKey);
    line.paint(painter, cap.center().x() - line.width() / 2, baseline,
               isOnSelection ? theme.selectionText : theme.textSecondary);
}

}  // namespace ferrowyn
