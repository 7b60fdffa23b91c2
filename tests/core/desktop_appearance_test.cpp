#include "core/desktop_appearance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ferrowyn {
namespace {

constexpr RgbColor black{0x20, 0x22, 0x24};
constexpr RgbColor white{0xEF, 0xF0, 0xF1};
constexpr RgbColor orange{0xE9, 0x54, 0x20};
constexpr RgbColor blue{0x3D, 0xAE, 0xE9};

std::optional<ColorScheme> schemeOf(const AppearanceSources& sources) {
    return desktopAppearance(sources).scheme;
}

TEST(DesktopAppearanceTest, WhereNobodySaysAnythingItIsAsTheToolkitFinds) {
    EXPECT_EQ(desktopAppearance({}), DesktopAppearance{});
}

TEST(DesktopAppearanceTest, ThePortalWinsOverEverythingElse) {
    AppearanceSources sources{.portalScheme = ColorScheme::light,
                              .isPlasma = true,
                              .plasmaWindow = black,
                              .xsettingsTheme = "Adwaita-dark",
                              .gtkFilePrefersDark = true};
    EXPECT_EQ(schemeOf(sources), ColorScheme::light);
    sources = {.portalScheme = ColorScheme::dark, .isPlasma = true, .plasmaWindow = white, .xsettingsTheme = "Adwaita"};
    EXPECT_EQ(schemeOf(sources), ColorScheme::dark);
}

TEST(DesktopAppearanceTest, WithoutThePortalsWordPlasmasColorsCountInAPlasmaSessionAlone) {
    AppearanceSources sources{.isPlasma = true, .plasmaWindow = black, .xsettingsTheme = "Breeze"};
    EXPECT_EQ(schemeOf(sources), ColorScheme::dark);
    sources.plasmaWindow = white;
    sources.xsettingsTheme = "Breeze-Dark";
    EXPECT_EQ(schemeOf(sources), ColorScheme::light);
    sources.isPlasma = false;
    EXPECT_EQ(schemeOf(sources), ColorScheme::dark);
    sources.xsettingsTheme = "Adwaita";
    sources.plasmaWindow = black;
    EXPECT_EQ(schemeOf(sources), std::nullopt) << "left behind by another session";
    EXPECT_EQ(schemeOf({.isPlasma = true, .xsettingsTheme = "Breeze-Dark"}), ColorScheme::dark);
}

TEST(DesktopAppearanceTest, AGroundIsDarkBelowTheMiddleOfWhatPeopleSee) {
    const auto schemeOn = [](RgbColor ground) { return schemeOf({.isPlasma = true, .plasmaWindow = ground}); };
    EXPECT_EQ(schemeOn({128, 128, 128}), ColorScheme::light);
    EXPECT_EQ(schemeOn({127, 127, 127}), ColorScheme::dark);
    EXPECT_EQ(schemeOn({0, 255, 0}), ColorScheme::light) << "green counts most";
    EXPECT_EQ(schemeOn({255, 0, 255}), ColorScheme::dark);
    EXPECT_EQ(schemeOn({255, 90, 0}), ColorScheme::light) << "red more than blue";
    EXPECT_EQ(schemeOn({0, 90, 255}), ColorScheme::dark);
    EXPECT_EQ(schemeOn({100, 129, 196}), ColorScheme::dark) << "with a little more of any of the three it is light";
}

TEST(DesktopAppearanceTest, TheThemeThatTheRunningManagerTellsWinsOverTheFile) {
    EXPECT_EQ(schemeOf({.gtkFileTheme = "Arc-Dark"}), ColorScheme::dark);
    EXPECT_EQ(schemeOf({.xsettingsTheme = "Arc", .gtkFileTheme = "Arc-Dark"}), std::nullopt);
    EXPECT_EQ(schemeOf({.xsettingsTheme = "Arc-Dark", .gtkFileTheme = "Arc"}), ColorScheme::dark);
    EXPECT_EQ(schemeOf({.xsettingsTheme = "Adwaita", .gtkFilePrefersDark = true}), ColorScheme::dark);
}

TEST(DesktopAppearanceTest, TheAccentIsThePortalsOrPlasmas) {
    AppearanceSources sources{.portalAccent = orange, .isPlasma = true, .plasmaAccent = blue};
    EXPECT_EQ(desktopAppearance(sources).accent, orange);
    sources.portalAccent.reset();
    EXPECT_EQ(desktopAppearance(sources).accent, blue);
    sources.isPlasma = false;
    EXPECT_EQ(desktopAppearance(sources).accent, std::nullopt);
}

TEST(DesktopAppearanceTest, AThemeIsDarkWhenItsNameSaysSoInAWordOfItsOwn) {
    for (const char* name : {"Adwaita-dark", "Arc-Dark", "Mint-Y-Dark-Aqua", "Breeze-Dark", "Yaru-blue-dark", "DARK",
                             "Adwaita:dark", "Materia-dark-compact", "Greybird_dark", "HighContrastInverse"}) {
        EXPECT_TRUE(isNameOfDarkTheme(name)) << name;
    }
    for (const char* name : {"", "Adwaita", "Arc-Darker", "Darkness", "Mint-Y", "HighContrast", "Numix-darkish"}) {
        EXPECT_FALSE(isNameOfDarkTheme(name)) << name;
    }
}

}  // namespace
}  // namespace ferrowyn
