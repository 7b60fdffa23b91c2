#include "ui/theme.h"

#include <gtest/gtest.h>

#include "ui/contrast.h"

namespace ferrowyn {
namespace {

constexpr double readable = 4.5;
constexpr double readableTertiary = 3;

QColor ground(const Theme& theme) {
    QColor background = theme.background;
    background.setAlpha(255);
    return background;
}

class ThemeContrastTest : public testing::TestWithParam<std::tuple<bool, QColor>> {
protected:
    Theme theme = Theme::make(std::get<0>(GetParam()), std::get<1>(GetParam()), false);

    [[nodiscard]] double onGround(const QColor& text, const QColor& fill = Qt::transparent) const {
        return contrast::ratio(text, contrast::blended(fill, ground(theme)));
    }
    [[nodiscard]] double onSelection(const QColor& text, const QColor& fill = Qt::transparent) const {
        const QColor below = contrast::blended(fill, theme.selection);
        return contrast::ratio(contrast::blended(text, below), below);
    }
};

TEST_P(ThemeContrastTest, EveryTextCanBeReadOnItsGround) {
    EXPECT_GE(onGround(theme.textPrimary), readable);
    EXPECT_GE(onGround(theme.textSecondary), readable);
    EXPECT_GE(onGround(theme.matchedCharacters), readable);
    EXPECT_GE(onGround(theme.textSecondary, theme.keyCapFill), readable);
    EXPECT_GE(onGround(theme.textPrimary, theme.buttonFill), readable);
    EXPECT_GE(onGround(theme.textPrimary, theme.buttonFillHovered), readable);
    EXPECT_GE(onGround(theme.textTertiary), readableTertiary);
    EXPECT_GE(onGround(theme.countText, theme.countFill), readableTertiary);
}

TEST_P(ThemeContrastTest, EveryBadgeCanBeReadOnItsTint) {
    using WindowPresentation::Tint;
    for (const auto tint : {Tint::orange, Tint::blue, Tint::purple}) {
        EXPECT_GE(onGround(theme.badgeText(tint), theme.badgeFill(tint)), readable) << static_cast<int>(tint);
    }
}

TEST_P(ThemeContrastTest, EveryTextCanBeReadOnTheSelectionWhateverTheAccent) {
    EXPECT_GE(onSelection(theme.selectionText), readable);
    EXPECT_GE(onSelection(theme.selectionTextSecondary), readable);
    EXPECT_GE(onSelection(theme.selectionText, theme.selectionChip), readable);
}

INSTANTIATE_TEST_SUITE_P(Schemes, ThemeContrastTest,
                         testing::Combine(testing::Bool(),
                                          testing::Values(QColor(0x2F, 0x6F, 0xED), QColor(0x3D, 0xAE, 0xE9),
                                                          QColor(Qt::yellow), QColor(Qt::white), QColor(Qt::black),
                                                          QColor(0xE9, 0x54, 0x20))));

TEST(ThemeTest, TheDefaultAccentIsTheSelectionAsItIs) {
    EXPECT_EQ(Theme::make(true, QColor(0x2F, 0x6F, 0xED), false).selection, QColor(0x2F, 0x6F, 0xED));
}

TEST(ThemeTest, FollowsTheLightnessOfTheDesktopsWindows) {
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x20, 0x20, 0x20));
    EXPECT_TRUE(Theme::fromPalette(palette, false).isDark);
    palette.setColor(QPalette::Window, QColor(0xEF, 0xEF, 0xEF));
    EXPECT_FALSE(Theme::fromPalette(palette, false).isDark);
}

TEST(ThemeTest, TakesTheDesktopsAccentButNotTheToolkitsOwn) {
    QPalette palette;
    palette.setColor(QPalette::Highlight, QColor(0xE9, 0x54, 0x20));
    EXPECT_EQ(Theme::fromPalette(palette, false).accent, QColor(0xE9, 0x54, 0x20));
    for (const QColor toolkits : {QColor(0, 0, 128), QColor(48, 140, 198)}) {
        palette.setColor(QPalette::Highlight, toolkits);
        EXPECT_EQ(Theme::fromPalette(palette, false).accent, QColor(0x2F, 0x6F, 0xED));
    }
}

TEST(ThemeTest, IsOpaqueWithoutACompositor) {
    EXPECT_EQ(Theme::make(true, Qt::blue, false).background.alpha(), 255);
    EXPECT_NEAR(Theme::make(true, Qt::blue, true).background.alphaF(), 0.96, 0.005);
    EXPECT_NEAR(Theme::make(false, Qt::blue, true).background.alphaF(), 0.97, 0.005);
}

}  // namespace
}  // namespace ferrowyn
