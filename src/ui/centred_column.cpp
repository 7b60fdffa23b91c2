#include "ui/centred_column.h"

#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "ui/panel_geometry.h"

namespace ferrowyn {

void CentredColumn::addSymbol(std::string_view name, double points, const QColor& color, SymbolWeight weight) {
    const double side = SymbolImages::boxSide(points);
    context_.symbols.paint(painter_, name, rect_.midX(), top_ + side / 2, points, color, weight);
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

void CentredColumn::addText(const QStringList& lines, TextStyle style, const QColor& color) {
    for (const QString& line : lines) {
        addText(line, style, color);
    }
}

QStringList CentredColumn::wrapped(const QString& text, TextStyle style, double width) {
    QTextLayout layout(text, fontFor(style));
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines.append(text.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
    return lines;
}

double CentredColumn::lineHeight(TextStyle style, const PaintContext& context) {
    const auto& metrics = context.lines.metrics(style);
    return std::round(metrics.ascent + metrics.descent);
}

}  // namespace ferrowyn
