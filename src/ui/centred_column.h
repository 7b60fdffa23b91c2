#pragma once

#include <QString>
#include <QStringList>

#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// Paints symbols and lines of text under each other, centred in a rectangle, from `top` down.
class CentredColumn {
public:
    CentredColumn(QPainter& painter, const Rect& rect, double top, const PaintContext& context)
        : painter_(painter), rect_(rect), top_(top), context_(context) {}

    void addSymbol(std::string_view name, double points, const QColor& color, SymbolWeight weight);
    void addText(const QString& text, TextStyle style, const QColor& color);
    void addText(const QStringList& lines, TextStyle style, const QColor& color);
    void addSpace(double height) { top_ += height; }
    /// Where the next part begins.
    [[nodiscard]] double top() const { return top_; }

    /// The text's lines when it is broken between words so that none is wider than this.
    [[nodiscard]] static QStringList wrapped(const QString& text, TextStyle style, double width);
    /// The height of a line of this style in such a column.
    [[nodiscard]] static double lineHeight(TextStyle style, const PaintContext& context);

private:
    QPainter& painter_;
    Rect rect_;
    double top_;
    const PaintContext& context_;
};

}  // namespace ferrowyn
