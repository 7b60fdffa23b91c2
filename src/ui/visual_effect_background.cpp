#include "ui/visual_effect_background.h"

#include <QPainter>
#include <algorithm>

namespace ferrowyn {

void VisualEffectBackground::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const QRectF area = toQt(rect);
    const QColor color = context.theme.background;
    if (blendingMode == BlendingMode::withinWindow) {
        painter.fillRect(area, color);
        return;
    }
    const auto mode = painter.compositionMode();
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(area, Qt::transparent);
    // Antialiased edges need blending; only the straight middle, which is nearly everything, can be replaced.
    painter.fillRect(area.adjusted(0, cornerRadius, 0, -cornerRadius), color);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.save();
    QRegion ends(area.toAlignedRect());
    ends -= area.adjusted(0, cornerRadius, 0, -cornerRadius).toAlignedRect();
    painter.setClipRegion(ends, Qt::IntersectClip);
    painter.drawRoundedRect(area, cornerRadius, cornerRadius);
    painter.restore();
    painter.setCompositionMode(mode);
}

void VisualEffectBackground::paintOutline(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double lineWidth = 0.5;
    // Half a point is less than the finest line at scale 1: there it is one device pixel.
    const double width = std::max(lineWidth, 1 / context.devicePixelRatio);
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
