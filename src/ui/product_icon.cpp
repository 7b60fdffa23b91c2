#include "ui/product_icon.h"

#include <QPainter>
#include <QSvgRenderer>

#include "ui/accessible_roles.h"

// A static library's resources are linked only when something asks for them; the macro must stand outside namespaces.
static void loadIconResource() {
    Q_INIT_RESOURCE(ferrowyn);
}

namespace ferrowyn {

ProductIcon::ProductIcon(int side, const QString& name) {
    loadIconResource();
    setFixedSize(side, side);
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(name);
}

void ProductIcon::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QSvgRenderer(QStringLiteral(":/ferrowyn/ferrowyn.svg")).render(&painter, rect());
}

}  // namespace ferrowyn
