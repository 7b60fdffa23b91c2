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

/// What the parts of a desktop say about its appearance. Each is absent where that part is not there or says nothing.
struct AppearanceSources {
    /// Of the settings portal; "no preference" says nothing.
    std::optional<ColorScheme> portalScheme;
    std::optional<RgbColor> portalAccent;

    /// The session is KDE's, whose colours below lie in a file that outlives the session.
    bool isPlasma = false;
    std::optional<RgbColor> plasmaWindow;
    std::optional<RgbColor> plasmaAccent;

    /// The GTK theme's name as the running XSETTINGS manager tells it.
    std::optional<std::string> xsettingsTheme;
    /// The same from GTK's own settings file, which GTK reads where no manager runs.
    std::optional<std::string> gtkFileTheme;
    /// In that file the user asks for the dark variant of whatever theme.
    bool gtkFilePrefersDark = false;

    friend bool operator==(const AppearanceSources&, const AppearanceSources&) = default;
};

/// How the desktop wants programs to look. Absent: as the toolkit finds by itself.
struct DesktopAppearance {
    std::optional<ColorScheme> scheme;
    std::optional<RgbColor> accent;
    friend bool operator==(const DesktopAppearance&, const DesktopAppearance&) = default;
};

/// The portal is asked first: it is what the user chose for programs of every toolkit, and desktops that have the
/// choice keep it there. Then the colours of KDE's own windows in a session of KDE, then the GTK theme, whose name
/// tells only that it is dark: a name without that word says nothing.
[[nodiscard]] DesktopAppearance desktopAppearance(const AppearanceSources& sources);

/// "Adwaita-dark", "Mint-Y-Dark-Aqua", "Adwaita:dark": the word stands for itself. "Arc-Darker" is light.
[[nodiscard]] bool isNameOfDarkTheme(std::string_view gtkTheme);

}  // namespace ferrowyn
