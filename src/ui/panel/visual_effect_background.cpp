#include "ui/panel/visual_effect_background.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "ui/common/colors.h"

namespace ferrowyn {

namespace {

/// The upper or lower strip of the area, from `edge`, which has round corners, to `inner`, where the straight middle
/// begins.
QPainterPath roundedEnd(const QRectF& area, double edge, double inner) {
    constexpr double radius = VisualEffectBackground::cornerRadius;
    const bool isTop = inner >= edge;
    const double corner = isTop ? edge : edge - 2 * radius;
    const double sweep = isTop ? -90 : 90;
    QPainterPath path(QPointF(area.left(), inner));
    path.arcTo(area.left(), corner, 2 * radius, 2 * radius, 180, sweep);
    path.arcTo(area.right() - 2 * radius, corner, 2 * radius, 2 * radius, isTop ? 90 : -90, sweep);
    path.lineTo(area.right(), inner);
    path.closeSubpath();
    return path;
}

}  // namespace

void VisualEffectBackground::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const QRectF area = toQt(rect);
    const QColor color = context.theme.background;
    if (blendingMode == BlendingMode::withinWindow) {
        painter.fillRect(area, color);
        return;
    }
    // Antialiased corners must be blended; the straight middle, nearly the whole area, is replaced. They meet between
    // device pixels, because a pixel that both paint would show as a line.
    const double scale = context.devicePixelRatio;
    const double top = std::ceil((area.top() + cornerRadius) * scale) / scale;
    const double bottom = std::max(top, std::floor((area.bottom() - cornerRadius) * scale) / scale);
    const auto mode = painter.compositionMode();
    const bool isAntialiased = painter.testRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(area, Qt::transparent);
    painter.fillRect(QRectF(QPointF(area.left(), top), QPointF(area.right(), bottom)), color);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(roundedEnd(area, area.top(), top), color);
    painter.fillPath(roundedEnd(area, area.bottom(), bottom), color);
    painter.setRenderHint(QPainter::Antialiasing, isAntialiased);
    painter.setCompositionMode(mode);
}

void VisualEffectBackground::paintOutline(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const double width = hairline::width(context.devicePixelRatio);
    const QRectF edge = toQt(rect).adjusted(width / 2, width / 2, -width / 2, -width / 2);
    painter.setPen(QPen(context.theme.hairline, width));
    painter.setBrush(Qt::NoBrush);
    if (blendingMode == BlendingMode::withinWindow) {
        painter.drawRect(edge);
    } else {
        painter.drawRoundedRect(edge, cornerRadius - width / 2, cornerRadius - width / 2);
    }
}

}  // namespace ferrowyn
