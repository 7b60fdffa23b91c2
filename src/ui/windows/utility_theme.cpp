#include "ui/windows/utility_theme.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

#include "ui/common/colors.h"
#include "ui/common/desktop_looks.h"
#include "ui/common/theme.h"

namespace ferrowyn {

namespace {

using contrast::readableRatio;
using contrast::withAlpha;

QColor lightenedFor(const QColor& color, const QColor& ground, double minimumRatio) {
    constexpr int steps = 50;
    QColor result = color;
    for (int step = 1; step <= steps && contrast::ratio(result, ground) < minimumRatio; ++step) {
        result = contrast::blended(withAlpha(Qt::white, static_cast<double>(step) / steps), color);
    }
    return result;
}

void setLightColors(UtilityTheme& theme) {
    theme.ground = QColor(0xF5, 0xF5, 0xF7);
    theme.sidebar = QColor(0xE9, 0xEA, 0xEE);
    theme.groupFill = Qt::white;
    theme.groupEdge = withAlpha(Qt::black, 0.09);
    theme.selectionInactive = QColor(0xD3, 0xD5, 0xDC);
    theme.rowHovered = withAlpha(Qt::black, 0.05);
    theme.controlFill = Qt::white;
    theme.controlFillHovered = QColor(0xF4, 0xF5, 0xF7);
    theme.controlFillPressed = QColor(0xE6, 0xE8, 0xEC);
    theme.controlEdge = withAlpha(Qt::black, 0.18);
    theme.switchOff = QColor(0xC4, 0xC7, 0xCF);
    theme.switchOffEdge = QColor(0x8C, 0x90, 0x9B);
    theme.success = QColor(0x1F, 0x96, 0x43);
    theme.warning = QColor(0xC7, 0x70, 0x00);
    theme.link = contrast::darkenedFor(theme.accent, theme.sidebar, readableRatio);
}

void setDarkColors(UtilityTheme& theme) {
    theme.ground = QColor(0x22, 0x23, 0x28);
    theme.sidebar = QColor(0x2A, 0x2B, 0x31);
    theme.groupFill = QColor(0x2D, 0x2E, 0x34);
    theme.groupEdge = withAlpha(Qt::white, 0.08);
    theme.selectionInactive = QColor(0x44, 0x46, 0x4E);
    theme.rowHovered = withAlpha(Qt::white, 0.06);
    theme.keyCapFill = withAlpha(Qt::white, 0.06);
    theme.controlFill = QColor(0x3E, 0x40, 0x48);
    theme.controlFillHovered = QColor(0x48, 0x4A, 0x53);
    theme.controlFillPressed = QColor(0x36, 0x38, 0x3F);
    theme.controlEdge = withAlpha(Qt::white, 0.14);
    theme.switchOff = QColor(0x4A, 0x4C, 0x55);
    theme.switchOffEdge = QColor(0x80, 0x84, 0x90);
    theme.success = QColor(0x34, 0xC7, 0x59);
    theme.warning = QColor(0xFF, 0xB3, 0x40);
    theme.link = lightenedFor(theme.accent, theme.groupFill, readableRatio);
}

}  // namespace

QColor UtilityTheme::color(Tone tone) const {
    switch (tone) {
        case Tone::primary:
            return textPrimary;
        case Tone::secondary:
            return textSecondary;
        case Tone::success:
            return success;
        case Tone::warning:
            return warning;
    }
    return textPrimary;
}

UtilityTheme UtilityTheme::fromPalette(const QPalette& palette) {
    const Theme panel = Theme::fromPalette(palette, false);
    UtilityTheme theme;
    theme.isDark = panel.isDark;
    theme.textPrimary = panel.textPrimary;
    theme.hairline = panel.hairline;
    theme.textSecondary = panel.textSecondary;
    theme.keyCapFill = panel.keyCapFill;
    theme.keyCapEdge = panel.keyCapEdge;
    theme.favourite = panel.favourite;
    theme.accent = panel.selection;
    theme.accentText = panel.selectionText;
    theme.accentHovered = contrast::blended(withAlpha(Qt::black, 0.08), theme.accent);
    theme.accentPressed = contrast::blended(withAlpha(Qt::black, 0.18), theme.accent);
    theme.switchKnob = Qt::white;
    if (theme.isDark) {
        setDarkColors(theme);
    } else {
        setLightColors(theme);
    }
    if (SystemLooksInUse::current() != nullptr) {
        theme.warning = panel.orange;
    }
    theme.focusRing = withAlpha(theme.link, 0.9);
    return theme;
}

UtilityTheme UtilityTheme::current() {
    return fromPalette(QApplication::palette());
}

namespace control_painting {

int controlHeight(const QFontMetrics& metrics) {
    constexpr int usual = 26;
    constexpr int aroundText = 6;
    return std::max(usual, metrics.height() + aroundText);
}

bool showsFocus(const QWidget& widget) {
    return widget.hasFocus() && widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void paintFocusRing(QPainter& painter, const QRectF& shape, double cornerRadius, const QColor& color) {
    constexpr double width = 2;
    constexpr double distance = 2;
    painter.setPen(QPen(color, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(shape.adjusted(-distance, -distance, distance, distance), cornerRadius + distance,
                            cornerRadius + distance);
}

void paintBox(QPainter& painter, const QRectF& box, double cornerRadius, const QColor& fill, const QColor& edge) {
    const double width = 1 / painter.deviceTransform().m11();
    painter.setPen(QPen(edge, width));
    painter.setBrush(fill);
    painter.drawRoundedRect(box.adjusted(width / 2, width / 2, -width / 2, -width / 2), cornerRadius, cornerRadius);
}

void paintText(QPainter& painter, const QWidget& widget, const QRectF& rect, const QString& text, const QFont& font,
               const QColor& color) {
    painter.setFont(font);
    painter.setPen(color);
    const QString shown = QFontMetricsF(font).elidedText(text, Qt::ElideRight, rect.width());
    // The side follows the widget, not the direction of the text.
    const Qt::Alignment edge = widget.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
    painter.drawText(rect, static_cast<int>(edge | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine, shown);
}

QRectF mirrored(const QWidget& widget, const QRectF& shape) {
    if (!widget.isRightToLeft()) {
        return shape;
    }
    return {widget.width() - shape.left() - shape.width(), shape.top(), shape.width(), shape.height()};
}

}  // namespace control_painting

}  // namespace ferrowyn
