#include "ui/common/theme.h"

#include <algorithm>
#include <array>

#include "ui/common/colors.h"
#include "ui/common/desktop_looks.h"

namespace ferrowyn {

namespace {

using contrast::readableRatio;
using contrast::withAlpha;

/// The highlight colours of Qt's styles: a palette has one of them when the desktop chose none.
const std::array toolkitHighlights{QColor(0, 0, 128), QColor(48, 140, 198)};
const QColor ownAccent(0x2F, 0x6F, 0xED);

/// White with the lowest opacity, from `preferred` up, at which it can be read on the ground.
QColor readableWhite(const QColor& ground, double preferred) {
    QColor white(Qt::white);
    for (double alpha = preferred; alpha < 1; alpha += 0.01) {
        white.setAlphaF(static_cast<float>(alpha));
        if (contrast::ratio(contrast::blended(white, ground), ground) >= readableRatio) {
            return white;
        }
    }
    return Qt::white;
}

void setSelectionColors(Theme& theme) {
    theme.selection = contrast::darkenedFor(theme.accent, Qt::white, readableRatio);
    theme.selectionText = Qt::white;
    // Bright in both themes: the darker yellow is hard to see on some accent colours.
    theme.selectionFavourite = QColor(0xFF, 0xD6, 0x0A);
    theme.selectionTextSecondary = readableWhite(theme.selection, 0.77);
    // A light chip lowers the contrast of the white text on it, with most accent colours too far.
    const QColor lightChip = withAlpha(Qt::white, 0.18);
    const bool isReadable = contrast::ratio(Qt::white, contrast::blended(lightChip, theme.selection)) >= readableRatio;
    theme.selectionChip = isReadable ? lightChip : withAlpha(Qt::black, 0.18);
}

void setDarkColors(Theme& theme) {
    theme.background = QColor(0x22, 0x23, 0x28);
    theme.textPrimary = QColor(0xF3, 0xF4, 0xF6);
    theme.textSecondary = QColor(0xA4, 0xA8, 0xB2);
    theme.textTertiary = QColor(0x74, 0x79, 0x85);
    theme.matchedCharacters = QColor(0x6F, 0xB1, 0xFF);
    theme.countText = QColor(0x80, 0x85, 0x91);
    theme.keyCapFill = withAlpha(Qt::white, 0.08);
    theme.keyCapEdge = withAlpha(Qt::white, 0.10);
    theme.favourite = QColor(0xFF, 0xD2, 0x0A);
    theme.orange = QColor(0xFF, 0xB3, 0x40);
    theme.blue = QColor(0x6F, 0xB6, 0xFF);
    theme.purple = QColor(0xCF, 0x9B, 0xFF);
    theme.buttonFill = withAlpha(Qt::white, 0.12);
    theme.buttonFillHovered = withAlpha(Qt::white, 0.18);
}

void setLightColors(Theme& theme) {
    theme.background = QColor(0xF6, 0xF6, 0xF8);
    theme.textPrimary = QColor(0x1C, 0x1D, 0x21);
    theme.textSecondary = QColor(0x60, 0x65, 0x70);
    theme.textTertiary = QColor(0x83, 0x88, 0x93);
    theme.matchedCharacters = QColor(0x0A, 0x60, 0xFF);
    theme.countText = QColor(0x7A, 0x7F, 0x8A);
    theme.keyCapFill = Qt::white;
    theme.keyCapEdge = withAlpha(Qt::black, 0.12);
    theme.favourite = QColor(0xE5, 0xA5, 0x00);
    theme.orange = QColor(0x9A, 0x45, 0x06);
    theme.blue = QColor(0x0B, 0x58, 0xB8);
    theme.purple = QColor(0x73, 0x30, 0xE4);
    theme.buttonFill = Qt::white;
    theme.buttonFillHovered = QColor(0xEA, 0xEB, 0xEF);
}

void takeSystemColor(QColor& own, SystemLooks::Color name, ColorScheme scheme) {
    const SystemLooks* const looks = SystemLooksInUse::current();
    if (const auto color = looks != nullptr ? looks->color(name, scheme) : std::nullopt) {
        own = QColor(color->red, color->green, color->blue);
    }
}

void takeSystemColors(Theme& theme) {
    const ColorScheme scheme = theme.isDark ? ColorScheme::dark : ColorScheme::light;
    takeSystemColor(theme.orange, SystemLooks::Color::orange, scheme);
    takeSystemColor(theme.blue, SystemLooks::Color::blue, scheme);
    takeSystemColor(theme.purple, SystemLooks::Color::purple, scheme);
    takeSystemColor(theme.favourite, SystemLooks::Color::yellow, scheme);
    // The selection is dark in both themes.
    takeSystemColor(theme.selectionFavourite, SystemLooks::Color::yellow, ColorScheme::dark);
}

}  // namespace

QColor Theme::badgeText(WindowPresentation::Tint tint) const {
    switch (tint) {
        case WindowPresentation::Tint::orange:
            return orange;
        case WindowPresentation::Tint::blue:
            return blue;
        case WindowPresentation::Tint::purple:
            return purple;
    }
    return textPrimary;
}

QColor Theme::badgeFill(WindowPresentation::Tint tint) const {
    return withAlpha(badgeText(tint), isDark ? 0.18 : 0.14);
}

Theme Theme::fromPalette(const QPalette& palette, bool isTranslucent) {
    const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
    const bool isChosen =
        std::find(toolkitHighlights.begin(), toolkitHighlights.end(), highlight) == toolkitHighlights.end();
    Theme theme = make(ferrowyn::isDark(palette), isChosen ? highlight : ownAccent, isTranslucent);
    takeSystemColors(theme);
    return theme;
}

Theme Theme::make(bool isDark, const QColor& accent, bool isTranslucent) {
    Theme theme;
    theme.isDark = isDark;
    theme.isTranslucent = isTranslucent;
    theme.accent = accent;
    if (isDark) {
        setDarkColors(theme);
    } else {
        setLightColors(theme);
    }
    theme.hairline = hairline::color(theme.textPrimary);
    theme.countFill = withAlpha(theme.textPrimary, 0.07);
    if (isTranslucent) {
        theme.background.setAlphaF(isDark ? 0.96F : 0.97F);
    }
    setSelectionColors(theme);
    return theme;
}

}  // namespace ferrowyn
