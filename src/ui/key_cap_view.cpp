#include "ui/key_cap_view.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace ferrowyn {

namespace {

constexpr double padding = 6;
constexpr double cornerRadius = 5;
constexpr double longestKey = 120;

}  // namespace

double KeyCapView::width(const PaintContext& context) const {
    const double textWidth = context.lines.line(text, TextStyle::keyCap, longestKey).width();
    return std::max(std::ceil(textWidth + 2 * padding), height);
}

void KeyCapView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const Theme& theme = context.theme;
    const double scale = context.devicePixelRatio;
    const auto snapped = [scale](double edge) { return std::round(edge * scale) / scale; };
    const QRectF cap(snapped(rect.x), snapped(rect.midY() - height / 2), width(context), height);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isOnSelection ? theme.selectionChip : theme.keyCapFill);
    painter.drawRoundedRect(cap, cornerRadius, cornerRadius);
    if (!isOnSelection) {
        const double edge = 1 / scale;
        painter.setPen(QPen(theme.keyCapEdge, edge));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(cap.adjusted(edge / 2, edge / 2, -edge / 2, -edge / 2), cornerRadius, cornerRadius);
    }
    const double baseline = context.lines.centredBaseline(TextStyle::keyCap, cap.y(), height, scale);
    const TextLine& line = context.lines.line(text, TextStyle::keyCap, longestKey);
    line.paint(painter, cap.center().x() - line.width() / 2, baseline,
               isOnSelection ? theme.selectionText : theme.textSecondary);
}

}  // namespace ferrowyn
