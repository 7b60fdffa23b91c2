#include "ui/panel/panel_messages.h"

#include <QPainter>
#include <QString>
#include <QStringList>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "ui/common/display_text.h"
#include "ui/panel/panel_geometry.h"

namespace ferrowyn {

namespace {

/// Paints symbols and lines of text below each other, centred in a rectangle, from `top` downward.
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

    /// Breaks the text between words into lines that are no wider than `width`.
    [[nodiscard]] static QStringList wrapped(const QString& text, TextStyle style, double width);
    /// The height of a line of this style in such a column.
    [[nodiscard]] static double lineHeight(TextStyle style, const PaintContext& context);

private:
    QPainter& painter_;
    Rect rect_;
    double top_;
    const PaintContext& context_;
};

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

}  // namespace

void EmptyStateView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double symbolPoints = 26;
    constexpr double belowSymbol = 10;
    constexpr double belowTitle = 5;
    const Theme& theme = context.theme;
    double height =
        SymbolImages::boxSide(symbolPoints) + belowSymbol + CentredColumn::lineHeight(TextStyle::emptyTitle, context);
    if (!state.detail.empty()) {
        height += belowTitle + CentredColumn::lineHeight(TextStyle::emptyDetail, context);
    }
    CentredColumn column(painter, rect, rect.y + std::max((rect.height - height) / 2, 0.0), context);
    column.addSymbol(state.symbol, symbolPoints, theme.textTertiary, SymbolWeight::light);
    column.addSpace(belowSymbol);
    column.addText(display_text::singleLine(state.title), TextStyle::emptyTitle, theme.textPrimary);
    if (!state.detail.empty()) {
        column.addSpace(belowTitle);
        column.addText(display_text::singleLine(state.detail), TextStyle::emptyDetail, theme.textSecondary);
    }
}

namespace {

constexpr double symbolPoints = 26;
constexpr double belowSymbol = 6;
constexpr double belowTitle = 2;
constexpr double aboveButton = 9;
constexpr double buttonHeight = 26;

/// The explanation, on lines of a length that is comfortable to read.
QStringList explanation(const PaintContext& context) {
    constexpr double lineWidth = 540;
    return CentredColumn::wrapped(display_text::singleLine(context.texts.permissionExplanation), TextStyle::emptyDetail,
                                  lineWidth);
}

double columnHeight(const PaintContext& context) {
    return SymbolImages::boxSide(symbolPoints) + belowSymbol +
           CentredColumn::lineHeight(TextStyle::emptyTitle, context) + belowTitle +
           CentredColumn::lineHeight(TextStyle::emptyDetail, context) *
               static_cast<double>(explanation(context).size()) +
           aboveButton + buttonHeight;
}

double columnTop(const Rect& rect, const PaintContext& context) {
    return std::round(rect.y + std::max((rect.height - columnHeight(context)) / 2, 0.0));
}

}  // namespace

Rect PermissionStateView::button(const Rect& rect, const PaintContext& context) {
    constexpr double padding = 14;
    const QString text = display_text::singleLine(context.texts.permissionButton);
    const double width = std::ceil(context.lines.line(text, TextStyle::button, rect.width).width()) + 2 * padding;
    const double bottom = columnTop(rect, context) + columnHeight(context);
    return {std::round(rect.midX() - width / 2), bottom - buttonHeight, width, buttonHeight};
}

void PermissionStateView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const Theme& theme = context.theme;
    CentredColumn column(painter, rect, columnTop(rect, context), context);
    column.addSymbol(WindowPresentation::permissionSymbol, symbolPoints,
                     theme.badgeText(WindowPresentation::Tint::orange), SymbolWeight::medium);
    column.addSpace(belowSymbol);
    column.addText(display_text::singleLine(context.texts.permissionTitle), TextStyle::emptyTitle, theme.textPrimary);
    column.addSpace(belowTitle);
    column.addText(explanation(context), TextStyle::emptyDetail, theme.textSecondary);
    paintButton(painter, button(rect, context), context);
}

void PermissionStateView::paintButton(QPainter& painter, const Rect& button, const PaintContext& context) const {
    constexpr double cornerRadius = 6;
    const Theme& theme = context.theme;
    const double edge = 1 / context.devicePixelRatio;
    painter.setPen(QPen(theme.keyCapEdge, edge));
    painter.setBrush(isButtonHovered ? theme.buttonFillHovered : theme.buttonFill);
    painter.drawRoundedRect(toQt(button).adjusted(edge / 2, edge / 2, -edge / 2, -edge / 2), cornerRadius,
                            cornerRadius);
    if (isButtonHovered && isButtonPressed) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.countFill);
        painter.drawRoundedRect(toQt(button), cornerRadius, cornerRadius);
    }
    const TextLine& line =
        context.lines.line(display_text::singleLine(context.texts.permissionButton), TextStyle::button, button.width);
    line.paint(painter, button.midX() - line.width() / 2,
               context.lines.centredBaseline(TextStyle::button, button.y, button.height, context.devicePixelRatio),
               theme.textPrimary);
}

}  // namespace ferrowyn
