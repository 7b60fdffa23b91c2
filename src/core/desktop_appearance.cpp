#include "core/desktop_appearance.h"

#include <string>

#include "core/prepared_text.h"

namespace ferrowyn {

namespace {

std::optional<ColorScheme> schemeOfGtk(const AppearanceSources& sources) {
    const auto& name = sources.xsettingsTheme ? sources.xsettingsTheme : sources.gtkFileTheme;
    const bool isDark = sources.gtkFilePrefersDark || (name && isNameOfDarkTheme(*name));
    return isDark ? std::optional(ColorScheme::dark) : std::nullopt;
}

}  // namespace

bool isDark(const RgbColor& ground) {
    constexpr int middle = 128;
    // The weights are those of perceived brightness, in which green counts most.
    return (ground.red * 299 + ground.green * 587 + ground.blue * 114) / 1000 < middle;
}

DesktopAppearance desktopAppearance(const AppearanceSources& sources) {
    DesktopAppearance appearance{.scheme = sources.portalScheme, .accent = sources.portalAccent};
    const bool hasPlasmaColors = sources.isPlasma && sources.plasmaWindow;
    if (!appearance.scheme) {
        appearance.scheme = hasPlasmaColors
                                ? std::optional(isDark(*sources.plasmaWindow) ? ColorScheme::dark : ColorScheme::light)
                                : schemeOfGtk(sources);
    }
    if (!appearance.accent && sources.isPlasma) {
        appearance.accent = sources.plasmaAccent;
    }
    return appearance;
}

bool isNameOfDarkTheme(std::string_view gtkTheme) {
    constexpr std::string_view dark = "dark";
    // The only dark theme of GTK whose name does not contain the word.
    if (gtkTheme == "HighContrastInverse") {
        return true;
    }
    std::string word;
    for (const char character : gtkTheme) {
        const char lower = plain_ascii::lower(character);
        if (lower >= 'a' && lower <= 'z') {
            word += lower;
        } else if (word == dark) {
            return true;
        } else {
            word.clear();
        }
    }
    return word == dark;
}

}  // namespace ferrowyn
