#include "platform/qt/qt_icon_image.h"

#include <QPainter>
#include <QPixmap>

#include "platform/qt/pixel_buffer_image.h"

namespace ferrowyn {

PixelBuffer QtIconImage::render(int side) const {
    QImage canvas(side, side, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    // The icon never gives more than it has: a small one is scaled up here, so that all rows look alike.
    const QPixmap pixmap = icon_.pixmap(QSize(side, side), 1.0);
    if (!pixmap.isNull()) {
        QPainter painter(&canvas);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        QRectF target(QPointF(), QSizeF(pixmap.size()).scaled(side, side, Qt::KeepAspectRatio));
        target.moveCenter(QPointF(side / 2.0, side / 2.0));
        painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
    }
    return pixelBufferFrom(canvas);
}

}  // namespace ferrowyn
