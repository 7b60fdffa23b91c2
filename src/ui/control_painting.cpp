#include "ui/control_painting.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

namespace ferrowyn::control_painting {

int controlHeight(const QFontMetrics& metrics) {
    constexpr int usual = 26;
    constexpr int aroundText = 6;
    return std::max(usual, metrics.height() + aroundText);
}

bool showsFocus(const QWidget& widget) {
    return widget.hasFocus() && widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void paintFocusRing(QPainter& painter, const QRectF& shape, double cornerRadius, const WindowTheme& theme) {
    constexpr double width = 2;
    constexpr double distance = 2;
    painter.setPen(QPen(theme.focusRing, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(shape.adjusted(-distance, -distance, distance, distance), cornerRadius + distance,
                            cornerRadius + distance);
}

void paintBox(QPainter& painter, const QRectF& box, double cornerRadius, const QColor& fill, const QColor& edge) {
    const double width = 1 / painter.deviceTransform().m11();
    painter.setPen(QPen(edge, width));
    painter.setBrush(fill);
    painter.drawRoundedRect(box.adjusted(width / 2, width / 2, -width / 2, -width / 2), cornerRadius, cornerRadius);
}

void paintText(QPainter& painter, const QWidget& widget, const QRectF& rect, const QString& text, const QFont& font,
               const QColor& color) {
    painter.setFont(font);
    painter.setPen(color);
    const QString shown = QFontMetricsF(font).elidedText(text, Qt::ElideRight, rect.width());
    // A text of the other direction keeps it, and stands at the same edge as its neighbours.
    const Qt::Alignment edge = widget.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
    painter.drawText(rect, static_cast<int>(edge | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
}

QRectF mirrored(const QWidget& widget, const QRectF& shape) {
    if (!widget.isRightToLeft()) {
        return shape;
    }
    return {widget.width() - shape.left() - shape.width(), shape.top(), shape.width(), shape.height()};
}

}  // namespace ferrowyn::control_painting
