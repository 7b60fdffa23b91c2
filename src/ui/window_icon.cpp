#include "ui/window_icon.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include "ui/resources.h"

namespace ferrowyn {

QIcon windowIcon() {
    loadResources();
    QSvgRenderer drawing(QStringLiteral(":/ferrowyn/ferrowyn.svg"));
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

}  // namespace ferrowyn
