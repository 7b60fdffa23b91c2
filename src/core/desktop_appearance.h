#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ferrowyn {

struct RgbColor {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    friend bool operator==(const RgbColor&, const RgbColor&) = default;
};

enum class ColorScheme { light, dark };

/// Whether the colour, as the ground of windows, is dark.
[[nodiscard]] bool isDark(const RgbColor& ground);

/// What each part of the desktop reports about its appearance. A field is absent when that part is missing or reports
/// nothing.
struct AppearanceSources {
    /// From the settings portal. Absent for "no preference".
    std::optional<ColorScheme> portalScheme;
    std::optional<RgbColor> portalAccent;

    /// Whether this is a KDE session. The two KDE colours count only then: their file stays when the user changes to
    /// another desktop.
    bool isPlasma = false;
    std::optional<RgbColor> plasmaWindow;
    std::optional<RgbColor> plasmaAccent;

    /// The GTK theme's name as the running XSETTINGS manager reports it.
    std::optional<std::string> xsettingsTheme;
    /// The theme's name in GTK's settings file, which GTK reads when no XSETTINGS manager runs.
    std::optional<std::string> gtkFileTheme;
    /// Whether that file asks for the dark variant of the theme.
    bool gtkFilePrefersDark = false;

    friend bool operator==(const AppearanceSources&, const AppearanceSources&) = default;
};

/// How the desktop wants programs to look. The toolkit decides what is absent.
struct DesktopAppearance {
    std::optional<ColorScheme> scheme;
    std::optional<RgbColor> accent;
    friend bool operator==(const DesktopAppearance&, const DesktopAppearance&) = default;
};

/// Combines the sources. The portal comes first, because it has the user's choice for programs of every toolkit. Then,
/// in a KDE session, the colours of KDE's windows. Then the GTK theme, whose name can only say that it is dark: any
/// other name gives no scheme.
[[nodiscard]] DesktopAppearance desktopAppearance(const AppearanceSources& sources);

/// Whether "dark" is a whole word of the theme's name, as in "Adwaita-dark", "Mint-Y-Dark-Aqua" and "Adwaita:dark".
/// "Arc-Darker" is a light theme.
[[nodiscard]] bool isNameOfDarkTheme(std::string_view gtkTheme);

}  // namespace ferrowyn
