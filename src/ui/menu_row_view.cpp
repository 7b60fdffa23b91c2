#include "ui/menu_row_view.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/display_text.h"
#include "ui/hairline.h"
#include "ui/menu_geometry.h"

namespace ferrowyn {

namespace {

constexpr double selectionRadius = 5;
constexpr double checkPoints = 11;
/// Between a title and the keys at the right.
constexpr double keyGap = 16;
constexpr double anyWidth = 10000;

QString fromUtf8(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

void paintSeparator(QPainter& painter, const Rect& rect, const MenuColors& colors, double scale) {
    const double top = std::floor(rect.midY() * scale) / scale;
    painter.fillRect(
        QRectF(rect.x + MenuGeometry::inset, top, rect.width - 2 * MenuGeometry::inset, hairline::width(scale)),
        colors.separator);
}

/// The left edge of a piece of a row, from the one that it has where lines run from left to right.
double placeOf(const Rect& row, double left, double width, const PaintContext& context) {
    return context.isRightToLeft ? MenuGeometry::mirrored(row, {left, row.y, width, row.height}).x : left;
}

}  // namespace

QString MenuRowView::keyEquivalentText(const MenuRow& row, const TextTable& texts) {
    if (row.keyEquivalent.empty()) {
        return {};
    }
    return fromUtf8(texts.sessionCommandKey) + fromUtf8(texts.keySeparator) + fromUtf8(row.keyEquivalent).toUpper();
}

QString MenuRowView::suffixText() const {
    const QString suffix = display_text::singleLine(row.titleSuffix).trimmed();
    return suffix.isEmpty() ? suffix : QStringLiteral("   ") + suffix;
}

double MenuRowView::neededWidth(const PaintContext& context) const {
    if (row.kind != MenuRow::Kind::item) {
        return 0;
    }
    const auto width = [&](const QString& text) {
        return text.isEmpty() ? 0 : context.lines.line(text, TextStyle::menuItem, anyWidth).width();
    };
    const double keys = width(keyEquivalentText(row, context.texts));
    return std::ceil(MenuGeometry::titleLeft + width(display_text::singleLine(row.title)) + width(suffixText()) +
                     (keys > 0 ? keyGap + keys : 0) + MenuGeometry::inset);
}

void MenuRowView::paint(QPainter& painter, const Rect& rect, const MenuColors& colors,
                        const PaintContext& context) const {
    switch (row.kind) {
        case MenuRow::Kind::header:
            return;
        case MenuRow::Kind::separator:
            paintSeparator(painter, rect, colors, context.devicePixelRatio);
            return;
        case MenuRow::Kind::sectionTitle: {
            const double baseline = context.lines.centredBaseline(TextStyle::menuSectionTitle, rect.y, rect.height,
                                                                  context.devicePixelRatio);
            const TextLine& line = context.lines.line(display_text::singleLine(row.title), TextStyle::menuSectionTitle,
                                                      rect.width - 2 * MenuGeometry::inset);
            const double left = placeOf(rect, rect.x + MenuGeometry::inset, line.width(), context);
            line.paint(painter, left, baseline, colors.tertiaryLabel);
            return;
        }
        case MenuRow::Kind::item:
            paintItem(painter, rect, colors, context);
            return;
    }
}

void MenuRowView::paintItem(QPainter& painter, const Rect& rect, const MenuColors& colors,
                            const PaintContext& context) const {
    if (isSelected) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.selection);
        painter.drawRoundedRect(toQt(rect).adjusted(MenuGeometry::selectionInset, 0, -MenuGeometry::selectionInset, 0),
                                selectionRadius, selectionRadius);
    }
    const QColor label = row.isEnabled ? colors.label : colors.disabledLabel;
    const QColor text = isSelected ? colors.selectionText : label;
    const QColor note = isSelected ? colors.selectionTextSecondary : colors.tertiaryLabel;
    if (row.isChecked) {
        context.symbols.paint(painter, "checkmark", placeOf(rect, rect.x + MenuGeometry::checkCenter, 0, context),
                              rect.midY(), checkPoints, text);
    }
    if (!row.symbol.empty()) {
        const QColor tint = row.symbolTint == MenuTint::label ? label : colors.tint(row.symbolTint);
        context.symbols.paint(painter, row.symbol, placeOf(rect, rect.x + MenuGeometry::symbolCenter, 0, context),
                              rect.midY(), MenuGeometry::symbolPoints, isSelected ? colors.selectionText : tint,
                              SymbolWeight::regular);
    }

    const double baseline =
        context.lines.centredBaseline(TextStyle::menuItem, rect.y, rect.height, context.devicePixelRatio);
    double right = rect.maxX() - MenuGeometry::inset;
    if (const QString keys = keyEquivalentText(row, context.texts); !keys.isEmpty()) {
        const TextLine& line = context.lines.line(keys, TextStyle::menuItem, anyWidth);
        line.paint(painter, placeOf(rect, right - line.width(), line.width(), context), baseline, note);
        right -= line.width() + keyGap;
    }
    const double left = rect.x + MenuGeometry::titleLeft;
    const TextLine& title =
        context.lines.line(display_text::singleLine(row.title), TextStyle::menuItem, std::max(right - left, 0.0));
    const double titleEnd = left + title.width();
    title.paint(painter, placeOf(rect, left, title.width(), context), baseline, text);
    if (const QString suffix = suffixText(); !suffix.isEmpty() && titleEnd < right) {
        // The spaces stand before it, which is the wrong side where the title stands behind it.
        const double bareWidth = context.lines.line(suffix.trimmed(), TextStyle::menuItem, anyWidth).width();
        const TextLine& line = context.lines.line(suffix, TextStyle::menuItem, right - titleEnd);
        const double spaces = context.isRightToLeft ? std::max(line.width() - bareWidth, 0.0) : 0;
        line.paint(painter, placeOf(rect, titleEnd, line.width(), context) - spaces, baseline, note);
    }
}

}  // namespace ferrowyn
