#include "ui/app_icon_view.h"

#include <QPainter>
#include <cmath>

namespace ferrowyn {

void AppIconView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double dimmedOpacity = 0.55;
    const double scale = context.devicePixelRatio;
    const int deviceSide = static_cast<int>(std::lround(size * scale));
    const QImage& image = context.icons.image(icon, deviceSide);
    if (image.isNull()) {
        return;
    }
    const double shown = deviceSide / scale;
    const double left = std::round((rect.midX() - shown / 2) * scale) / scale;
    const double top = std::round((rect.midY() - shown / 2) * scale) / scale;
    const double opacity = painter.opacity();
    if (isDimmed) {
        painter.setOpacity(opacity * dimmedOpacity);
    }
    painter.drawImage(QRectF(left, top, shown, shown), image);
    painter.setOpacity(opacity);
}

}  // namespace ferrowyn
