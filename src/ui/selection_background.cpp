#include "ui/selection_background.h"

#include <QPainter>

namespace ferrowyn {

void SelectionBackground::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    if (!isSelected) {
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(context.theme.selection);
    painter.drawRoundedRect(toQt(rect), cornerRadius, cornerRadius);
}

}  // namespace ferrowyn
