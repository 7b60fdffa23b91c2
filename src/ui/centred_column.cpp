#include "ui/centred_column.h"

#include <algorithm>
#include <cmath>

#include "ui/panel_geometry.h"

namespace ferrowyn {

void CentredColumn::addSymbol(std::string_view name, double side, const QColor& color, SymbolWeight weight) {
    context_.symbols.paint(painter_, name, rect_.midX(), top_ + side / 2, side, color, weight);
    top_ += side;
}

void CentredColumn::addText(const QString& text, TextStyle style, const QColor& color) {
    const double room = std::max(rect_.width - 2 * PanelGeometry::sideMargin, 0.0);
    const double height = lineHeight(style, context_);
    const TextLine& line = context_.lines.line(text, style, room);
    line.paint(painter_, rect_.midX() - line.width() / 2,
               context_.lines.centredBaseline(style, top_, height, context_.devicePixelRatio), color);
    top_ += height;
}

double CentredColumn::lineHeight(TextStyle style, const PaintContext& context) {
    const auto& metrics = context.lines.metrics(style);
    return std::round(metrics.ascent + metrics.descent);
}

}  // namespace ferrowyn
