#include "ui/caret.h"

#include <QEasingCurve>
#include <QPainter>
#include <cmath>

namespace ferrowyn {

void Caret::paint(QPainter& painter, const Rect& rect, double opacity, const PaintContext& context) const {
    if (!isVisible) {
        return;
    }
    QColor color = context.theme.accent;
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    painter.fillRect(QRectF(rect.x, rect.y, width, rect.height), color);
}

double Caret::opacityAfter(double seconds) {
    const double phase = std::fmod(seconds, 2 * halfPeriod) / halfPeriod;
    const double progress = phase <= 1 ? phase : 2 - phase;
    return 1 - QEasingCurve(QEasingCurve::InOutQuad).valueForProgress(progress);
}

}  // namespace ferrowyn
