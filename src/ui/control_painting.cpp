#include "ui/control_painting.h"

#include <QFontMetricsF>
#include <QPainter>

namespace ferrowyn::control_painting {

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

void paintText(QPainter& painter, const QRectF& rect, const QString& text, const QFont& font, const QColor& color,
               Qt::Alignment alignment) {
    painter.setFont(font);
    painter.setPen(color);
    const QString shown = QFontMetricsF(font).elidedText(text, Qt::ElideRight, rect.width());
    // A text of the other direction keeps it, and stands at the same edge as its neighbours.
    painter.drawText(rect, static_cast<int>(alignment | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine,
                     shown);
}

}  // namespace ferrowyn::control_painting
