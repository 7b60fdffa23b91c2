#include "ui/common/desktop_looks.h"

#include <QApplication>
#include <QColor>
#include <QStyle>
#include <QToolTip>
#include <QWidget>

namespace ferrowyn {

bool isDark(const QPalette& palette) {
    const QColor ground = palette.color(QPalette::Window).toRgb();
    return isDark(RgbColor{static_cast<std::uint8_t>(ground.red()), static_cast<std::uint8_t>(ground.green()),
                           static_cast<std::uint8_t>(ground.blue())});
}

namespace {

/// A light or a dark palette; Qt derives the shades and the disabled state from its two colours.
QPalette paletteOf(ColorScheme scheme) {
    if (scheme == ColorScheme::light) {
        return {QColor(0xF0, 0xF0, 0xF0), QColor(0xF4, 0xF4, 0xF4)};
    }
    QPalette palette(QColor(0x3A, 0x3A, 0x3F), QColor(0x2A, 0x2A, 0x2E));
    palette.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x22));
    palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x26, 0x2A));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3A, 0x3A, 0x3F));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x6F, 0xB1, 0xFF));
    palette.setColor(QPalette::LinkVisited, QColor(0xCF, 0x9B, 0xFF));
    return palette;
}

}  // namespace

void DesktopPalette::apply(const DesktopAppearance& appearance) {
    if (!hasChanged_) {
        own_ = QApplication::palette();
    }
    const bool isOwnRight = !appearance.scheme || (*appearance.scheme == ColorScheme::dark) == isDark(own_);
    QPalette palette;
    if (!isOwnRight) {
        palette = paletteOf(*appearance.scheme);
    }
    if (appearance.accent) {
        palette.setColor(QPalette::Highlight,
                         QColor(appearance.accent->red, appearance.accent->green, appearance.accent->blue));
    }
    // An appearance that says nothing restores the toolkit's palette, which may have changed meanwhile.
    hasChanged_ = !isOwnRight || appearance.accent.has_value();
    QApplication::setPalette(palette);
    QToolTip::setPalette(QApplication::palette());
}

namespace {

const SystemLooks* looksInUse = nullptr;

}  // namespace

SystemLooksInUse::SystemLooksInUse(const SystemLooks& looks) {
    looksInUse = &looks;
}

SystemLooksInUse::~SystemLooksInUse() {
    looksInUse = nullptr;
}

const SystemLooks* SystemLooksInUse::current() {
    return looksInUse;
}

bool prefersReducedMotion(const QWidget& widget) {
    if (qEnvironmentVariableIntValue("FERROWYN_REDUCED_MOTION") != 0) {
        return true;
    }
    return widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) == 0;
}

}  // namespace ferrowyn
