#include "ui/panel/search_line_view.h"

#include <QEasingCurve>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <string>

#include "core/window_presentation.h"
#include "ui/common/display_text.h"
#include "ui/panel/panel_geometry.h"

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

namespace {

constexpr double symbolPoints = 14;
/// The left edge of the text: behind the symbol and a gap. Whole, so that it lies on a device pixel.
constexpr double textLeft = PanelGeometry::sideMargin + 26;
constexpr double caretHeight = 19;
constexpr double caretGap = 1;
/// Room for the indicator: its symbol, and a count of five digits.
constexpr double indicatorRoom = 80;

double textRoom(const Rect& rect) {
    return rect.width - textLeft - PanelGeometry::sideMargin - indicatorRoom;
}

}  // namespace

double SearchLineView::queryWidth(const PaintContext& context) const {
    return query.isEmpty() ? 0 : context.lines.line(query, TextStyle::searchText, TextLine::unlimitedWidth).width();
}

Rect SearchLineView::caretRect(const Rect& rect, const PaintContext& context) const {
    const double behindQuery = query.isEmpty() ? 0 : std::min(queryWidth(context), textRoom(rect)) + caretGap;
    const double left = context.snapped(rect.x + textLeft + behindQuery);
    return {left, rect.midY() - caretHeight / 2, Caret::width, caretHeight};
}

void SearchLineView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const Theme& theme = context.theme;
    context.symbols.paint(painter, WindowPresentation::searchSymbol,
                          rect.x + PanelGeometry::sideMargin + SymbolImages::boxSide(symbolPoints) / 2, rect.midY(),
                          symbolPoints, theme.textSecondary, SymbolWeight::medium);
    const double baseline =
        context.lines.centredBaseline(TextStyle::searchText, rect.y, rect.height, context.devicePixelRatio);
    const double indicatorLeft = paintIndicator(painter, rect, context);
    const double left = rect.x + textLeft;
    if (query.isEmpty()) {
        constexpr double behindCaret = 3;
        context.lines
            .line(display_text::fromUtf8(WindowPresentation::searchPlaceholder), TextStyle::searchText,
                  indicatorLeft - left)
            .paint(painter, left + behindCaret, baseline, theme.textTertiary);
    } else {
        // A query that is too long loses its beginning, because the user types at its end.
        const double hidden = std::max(queryWidth(context) - textRoom(rect), 0.0);
        painter.save();
        painter.setClipRect(QRectF(left - 1, rect.y, textRoom(rect) + 2, rect.height), Qt::IntersectClip);
        context.lines.line(query, TextStyle::searchText, TextLine::unlimitedWidth)
            .paint(painter, left - hidden, baseline, theme.textPrimary);
        painter.restore();
    }
    Caret{}.paint(painter, caretRect(rect, context), caretOpacity, context);
}

double SearchLineView::paintIndicator(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double indicatorPoints = 9;
    constexpr double indicatorSide = SymbolImages::boxSide(indicatorPoints);
    constexpr double gap = 6;
    const QString count = QString::fromStdString(std::to_string(rowCount));
    const TextLine& number = context.lines.line(count, TextStyle::rowCount, indicatorRoom);
    const double numberLeft = rect.maxX() - PanelGeometry::sideMargin - number.width();
    number.paint(painter, numberLeft,
                 context.lines.centredBaseline(TextStyle::rowCount, rect.y, rect.height, context.devicePixelRatio),
                 context.theme.textSecondary);
    const double symbolLeft = numberLeft - gap - indicatorSide;
    context.symbols.paint(painter, WindowPresentation::layoutSymbol(layout), symbolLeft + indicatorSide / 2,
                          rect.midY(), indicatorPoints, context.theme.textSecondary, SymbolWeight::semibold);
    return symbolLeft;
}

}  // namespace ferrowyn
