#include "ui/menu_colors.h"

#include "ui/contrast.h"

namespace ferrowyn {

namespace {

/// Symbols and short notes need less contrast than text that is read.
constexpr double symbolRatio = 3;

/// The accent, moved no further than needed toward the label until it can be told from the ground.
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

}  // namespace ferrowyn
