#include "ui/menu_header_view.h"

#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>

#include "ui/display_text.h"
#include "ui/menu_geometry.h"
#include "ui/resources.h"

namespace ferrowyn {

namespace {

constexpr double textToGear = 8;

/// As wide as the space between the icon and the gear.
Rect textRect(const Rect& header, double top, double height) {
    const double left = header.x + MenuHeaderView::textLeft;
    const double right = MenuHeaderView::gearArea(header).x - textToGear;
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
    loadResources();
    icon_ = std::make_unique<QSvgRenderer>(QStringLiteral(":/ferrowyn/ferrowyn.svg"));
    icon_->setAspectRatioMode(Qt::KeepAspectRatio);
}
MenuHeaderView::~MenuHeaderView() = default;

Rect MenuHeaderView::iconRect(const Rect& header) {
    return {header.x + iconLeft, header.midY() - iconSide / 2, iconSide, iconSide};
}

Rect MenuHeaderView::gearArea(const Rect& header) {
    return {header.maxX() - gearRightInset - gearSide, header.midY() - gearSide / 2, gearSide, gearSide};
}

Rect MenuHeaderView::titleRect(const Rect& header) {
    constexpr double top = 15;
    constexpr double height = 17;
    return textRect(header, top, height);
}

Rect MenuHeaderView::subtitleRect(const Rect& header) {
    constexpr double top = 33;
    constexpr double height = 15;
    return textRect(header, top, height);
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

    constexpr double hoverInset = 1;
    constexpr double hoverRadius = 5;
    const Rect gear = placed(gearArea(rect));
    if (isHoveringGear_ || hasKeyboard) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(hasKeyboard ? colors.selection : colors.gearHover);
        painter.drawRoundedRect(toQt(gear).adjusted(hoverInset, hoverInset, -hoverInset, -hoverInset), hoverRadius,
                                hoverRadius);
    }
    context.symbols.paint(painter, "gearshape", gear.midX(), gear.midY(), gearSymbolPoints,
                          hasKeyboard ? colors.selectionText : colors.label, SymbolWeight::regular);
}

}  // namespace ferrowyn
