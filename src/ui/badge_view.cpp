#include "ui/badge_view.h"

#include <QPainter>
#include <cmath>

#include "ui/contrast.h"

namespace ferrowyn {

namespace {

constexpr double cornerRadius = 5;
constexpr double longestText = 140;

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

/// Without the alpha: what it looks like on the ground it lies on.
QColor opaque(const QColor& top, const QColor& ground) {
    QColor solid = ground;
    solid.setAlpha(255);
    return contrast::blended(top, solid);
}

}  // namespace

const TextLine& BadgeView::line(const PaintContext& context) const {
    return context.lines.line(QString::fromStdString(badge.text), TextStyle::badge, longestText);
}

double BadgeView::width(const PaintContext& context) const {
    return std::ceil(2 * padding(compact) + symbolSide(compact) + gap(compact) + line(context).width());
}

void BadgeView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const Theme& theme = context.theme;
    const double scale = context.devicePixelRatio;
    const auto snapped = [scale](double edge) { return std::round(edge * scale) / scale; };
    const QRectF chip(snapped(rect.x), snapped(rect.midY() - height() / 2), width(context), height());
    const QColor text = isOnSelection ? theme.selectionText : theme.badgeText(badge.tint);
    QColor fill = isOnSelection ? theme.selectionChip : theme.badgeFill(badge.tint);
    if (compact) {
        fill = opaque(fill, isOnSelection ? theme.selection : theme.background);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(chip, cornerRadius, cornerRadius);

    const double side = symbolSide(compact);
    double x = chip.x() + padding(compact);
    context.symbols.paint(painter, badge.symbol, x + side / 2, chip.center().y(), symbolPoints(compact), text,
                          SymbolWeight::semibold);
    x += side + gap(compact);
    const double baseline = context.lines.centredBaseline(TextStyle::badge, chip.y(), chip.height(), scale);
    line(context).paint(painter, x, baseline, text);
}

}  // namespace ferrowyn
