#include "ui/permission_state_view.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "core/window_presentation.h"
#include "ui/centred_column.h"
#include "ui/display_text.h"

namespace ferrowyn {

namespace {

constexpr double symbolPoints = 26;
constexpr double belowSymbol = 6;
constexpr double belowTitle = 2;
constexpr double aboveButton = 9;
constexpr double buttonHeight = 26;

/// A sentence or two: on lines that are comfortable to read.
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
