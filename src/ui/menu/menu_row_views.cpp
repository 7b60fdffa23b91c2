#include "ui/menu/menu_row_views.h"

#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>

#include "ui/common/colors.h"
#include "ui/common/display_text.h"
#include "ui/common/images.h"
#include "ui/menu/menu_geometry.h"

namespace ferrowyn {

namespace {

/// Symbols and short notes need less contrast than longer text.
constexpr double symbolRatio = 3;

/// The colour, mixed with that of labels only as far as needed to stand out from the ground.
QColor visibleOn(const QColor& ground, QColor color, const QColor& label) {
    constexpr double step = 0.05;
    QColor part = label;
    for (double share = 0; share < 1; share += step) {
        part.setAlphaF(static_cast<float>(share));
        const QColor mixed = contrast::blended(part, color);
        if (contrast::ratio(mixed, ground) >= symbolRatio) {
            return mixed;
        }
    }
    return label;
}

QColor opaque(QColor color) {
    color.setAlpha(255);
    return color;
}

}  // namespace

QColor MenuColors::tint(MenuTint tint) const {
    switch (tint) {
        case MenuTint::label:
            return label;
        case MenuTint::secondaryLabel:
            return secondaryLabel;
        case MenuTint::tertiaryLabel:
            return tertiaryLabel;
        case MenuTint::orange:
            return orange;
        case MenuTint::accent:
            return accent;
    }
    return label;
}

MenuColors MenuColors::fromTheme(const Theme& theme) {
    MenuColors colors;
    colors.background = theme.isDark ? QColor(0x2C, 0x2D, 0x32) : opaque(theme.background);
    colors.edge = theme.isDark ? QColor(0x4A, 0x4C, 0x53) : QColor(0xC6, 0xC8, 0xCE);
    colors.separator = theme.hairline;
    colors.label = theme.textPrimary;
    colors.secondaryLabel = theme.textSecondary;
    colors.tertiaryLabel = theme.isDark ? QColor(0x80, 0x85, 0x91) : theme.textTertiary;
    colors.disabledLabel = colors.tertiaryLabel;
    colors.orange = theme.badgeText(WindowPresentation::Tint::orange);
    colors.accent = visibleOn(colors.background, theme.accent, colors.label);
    colors.gearHover = colors.label;
    colors.gearHover.setAlphaF(0.10F);
    colors.selection = theme.selection;
    colors.selectionText = theme.selectionText;
    colors.selectionTextSecondary = theme.selectionTextSecondary;
    return colors;
}

namespace {

/// As wide as the space between the icon and the gear.
Rect textRect(const Rect& header, double top, double height) {
    const double left = header.x + menu_header::textLeft;
    const double right = MenuHeaderView::gearArea(header).x - menu_header::textToGear;
    return {left, header.y + top, std::max(right - left, 0.0), height};
}

void paintText(QPainter& painter, const std::string& text, TextStyle style, const Rect& rect, const QColor& color,
               const PaintContext& context) {
    const double baseline = context.lines.centredBaseline(style, rect.y, rect.height, context.devicePixelRatio);
    const TextLine& line = context.lines.line(display_text::singleLine(text), style, rect.width);
    line.paint(painter, context.isRightToLeft ? rect.maxX() - line.width() : rect.x, baseline, color);
}

}  // namespace

MenuHeaderView::MenuHeaderView() {
    icon_ = std::make_unique<QSvgRenderer>(productIconFile());
    icon_->setAspectRatioMode(Qt::KeepAspectRatio);
}
MenuHeaderView::~MenuHeaderView() = default;

Rect MenuHeaderView::iconRect(const Rect& header) {
    return {header.x + menu_header::iconLeft, header.midY() - menu_header::iconSide / 2, menu_header::iconSide,
            menu_header::iconSide};
}

Rect MenuHeaderView::gearArea(const Rect& header) {
    return {header.maxX() - menu_header::gearRightInset - menu_header::gearSide,
            header.midY() - menu_header::gearSide / 2, menu_header::gearSide, menu_header::gearSide};
}

Rect MenuHeaderView::titleRect(const Rect& header) {
    return textRect(header, menu_header::titleTop, menu_header::titleHeight);
}

Rect MenuHeaderView::subtitleRect(const Rect& header) {
    return textRect(header, menu_header::subtitleTop, menu_header::subtitleHeight);
}

bool MenuHeaderView::pointerMoved(const Rect& gear, const Point& point) {
    const bool isInside = gear.contains(point);
    return std::exchange(isHoveringGear_, isInside) != isInside;
}

bool MenuHeaderView::pointerExited() {
    return std::exchange(isHoveringGear_, false);
}

void MenuHeaderView::paint(QPainter& painter, const Rect& rect, const MenuHeader& header, bool hasKeyboard,
                           const MenuColors& colors, const PaintContext& context) {
    const auto placed = [&](const Rect& piece) {
        return context.isRightToLeft ? MenuGeometry::mirrored(rect, piece) : piece;
    };
    icon_->render(&painter, toQt(placed(iconRect(rect))));
    paintText(painter, header.title, TextStyle::menuHeaderTitle, placed(titleRect(rect)), colors.label, context);
    paintText(painter, header.subtitle, TextStyle::menuHeaderSubtitle, placed(subtitleRect(rect)),
              colors.tint(header.subtitleTint), context);

    const Rect gear = placed(gearArea(rect));
    if (isHoveringGear_ || hasKeyboard) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(hasKeyboard ? colors.selection : colors.gearHover);
        painter.drawRoundedRect(toQt(gear).adjusted(menu_header::hoverInset, menu_header::hoverInset,
                                                    -menu_header::hoverInset, -menu_header::hoverInset),
                                menu_header::hoverRadius, menu_header::hoverRadius);
    }
    context.symbols.paint(painter, "gearshape", gear.midX(), gear.midY(), menu_header::gearPointSize,
                          hasKeyboard ? colors.selectionText : colors.label, SymbolWeight::regular);
}

namespace {

constexpr double selectionRadius = 5;
constexpr double checkPoints = 11;
/// Between a title and the keys at the right.
constexpr double keyGap = 16;

void paintSeparator(QPainter& painter, const Rect& rect, const MenuColors& colors, double scale) {
    const double top = std::floor(rect.midY() * scale) / scale;
    painter.fillRect(
        QRectF(rect.x + MenuGeometry::inset, top, rect.width - 2 * MenuGeometry::inset, hairline::width(scale)),
        colors.separator);
}

/// The left edge of a piece of a row in the user's language; `left` is the one in a language that runs from left to
/// right.
double placeOf(const Rect& row, double left, double width, const PaintContext& context) {
    return context.isRightToLeft ? MenuGeometry::mirrored(row, {left, row.y, width, row.height}).x : left;
}

}  // namespace

QString MenuRowView::keyEquivalentText(const MenuRow& row, const TextTable& texts) {
    if (row.keyEquivalent.empty()) {
        return {};
    }
    using display_text::fromUtf8;
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
        return text.isEmpty() ? 0 : context.lines.line(text, TextStyle::menuItem, TextLine::unlimitedWidth).width();
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
        const TextLine& line = context.lines.line(keys, TextStyle::menuItem, TextLine::unlimitedWidth);
        line.paint(painter, placeOf(rect, right - line.width(), line.width(), context), baseline, note);
        right -= line.width() + keyGap;
    }
    const double left = rect.x + MenuGeometry::titleLeft;
    const TextLine& title =
        context.lines.line(display_text::singleLine(row.title), TextStyle::menuItem, std::max(right - left, 0.0));
    const double titleEnd = left + title.width();
    title.paint(painter, placeOf(rect, left, title.width(), context), baseline, text);
    if (const QString suffix = suffixText(); !suffix.isEmpty() && titleEnd < right) {
        // The suffix begins with spaces. From right to left they are on the wrong side, so it is moved by their width.
        const double bareWidth =
            context.lines.line(suffix.trimmed(), TextStyle::menuItem, TextLine::unlimitedWidth).width();
        const TextLine& line = context.lines.line(suffix, TextStyle::menuItem, right - titleEnd);
        const double spaces = context.isRightToLeft ? std::max(line.width() - bareWidth, 0.0) : 0;
        line.paint(painter, placeOf(rect, titleEnd, line.width(), context) - spaces, baseline, note);
    }
}

}  // namespace ferrowyn
