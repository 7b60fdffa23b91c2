#include "ui/common/theme.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QToolTip>
#include <vector>

#include "ui/common/colors.h"
#include "ui/common/desktop_looks.h"
#include "ui/common/images.h"
#include "ui/windows/utility_theme.h"

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

/// A desktop with a colour of each name, and with one symbol.
class StubLooks final : public SystemLooks {
public:
    [[nodiscard]] std::optional<RgbColor> color(Color color, ColorScheme scheme) const override {
        return RgbColor{static_cast<std::uint8_t>(color),
                        scheme == ColorScheme::dark ? std::uint8_t{200} : std::uint8_t{100}, 0};
    }
    [[nodiscard]] std::optional<PixelBuffer> symbol(std::string_view name, double pointSize, SymbolWeight /*weight*/,
                                                    double scale) const override {
        if (name != "star") {
            return std::nullopt;
        }
        pointSizes.push_back(pointSize);
        const auto side = static_cast<int>(4 * scale);
        return PixelBuffer{side, side, std::vector<std::uint32_t>(static_cast<std::size_t>(side * side), 0xFF000000U)};
    }

    mutable std::vector<double> pointSizes;
};

TEST(SystemLooksTest, ThePanelAndTheWindowsTakeTheDesktopsColours) {
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::white);
    const Theme own = Theme::fromPalette(palette, false);
    {
        const StubLooks looks;
        const SystemLooksInUse inUse(looks);
        const Theme theme = Theme::fromPalette(palette, false);
        EXPECT_EQ(theme.badgeText(WindowPresentation::Tint::orange), QColor(0, 100, 0));
        EXPECT_EQ(theme.badgeText(WindowPresentation::Tint::blue), QColor(1, 100, 0));
        EXPECT_EQ(theme.badgeText(WindowPresentation::Tint::purple), QColor(2, 100, 0));
        EXPECT_EQ(theme.favourite, QColor(3, 100, 0));
        EXPECT_EQ(theme.selectionFavourite, QColor(3, 200, 0)) << "the accent is dark";
        const UtilityTheme windows = UtilityTheme::fromPalette(palette);
        EXPECT_EQ(windows.warning, QColor(0, 100, 0));
        EXPECT_EQ(windows.favourite, QColor(3, 100, 0));
        palette.setColor(QPalette::Window, Qt::black);
        EXPECT_EQ(Theme::fromPalette(palette, false).badgeText(WindowPresentation::Tint::orange), QColor(0, 200, 0));
        palette.setColor(QPalette::Window, Qt::white);
    }
    EXPECT_EQ(Theme::fromPalette(palette, false), own);
}

/// The smallest rectangle around what is painted.
QRect paintedArea(std::string_view name, double points, double scale) {
    QImage image((QSizeF(32, 32) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        SymbolImages().paint(painter, name, 16, 16, points, Qt::red);
    }
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 0) {
                EXPECT_EQ(image.pixelColor(x, y).rgb(), QColor(Qt::red).rgb());
                area |= QRect(x, y, 1, 1);
            }
        }
    }
    return area;
}

TEST(SystemLooksTest, SymbolsAreTheDesktopsWhereItHasThem) {
    const StubLooks looks;
    const SystemLooksInUse inUse(looks);
    EXPECT_EQ(paintedArea("star", 14, 1), QRect(14, 14, 4, 4)) << "in the middle, as large as it is";
    EXPECT_EQ(paintedArea("star", 14, 2), QRect(28, 28, 8, 8));
    EXPECT_EQ(looks.pointSizes, (std::vector<double>{14, 14}));
    const QRect own = paintedArea("square.grid.3x2", 14, 1);
    EXPECT_GT(own.width(), 8) << "which the desktop has not";
    EXPECT_LE(own.width(), 17) << "the square in which it stands";
}

class DesktopPaletteTest : public testing::Test {
protected:
    ~DesktopPaletteTest() override {
        QApplication::setPalette(QPalette());
        QToolTip::setPalette(QApplication::palette());
    }
    DesktopPalette palette;
};

TEST_F(DesktopPaletteTest, FollowsTheDesktopThereAndBack) {
    const QPalette own = QApplication::palette();
    ASSERT_FALSE(UtilityTheme::current().isDark);
    palette.apply({});
    EXPECT_EQ(QApplication::palette(), own);
    palette.apply({.scheme = ColorScheme::light});
    EXPECT_EQ(QApplication::palette(), own) << "the toolkit's own is light already";
    palette.apply({.scheme = ColorScheme::dark});
    EXPECT_TRUE(UtilityTheme::current().isDark);
    palette.apply({.scheme = ColorScheme::light});
    EXPECT_EQ(QApplication::palette(), own);
    palette.apply({.scheme = ColorScheme::dark});
    palette.apply({});
    EXPECT_EQ(QApplication::palette(), own);
}

TEST_F(DesktopPaletteTest, TakesTheAccent) {
    const QPalette own = QApplication::palette();
    palette.apply({.accent = RgbColor{0xE9, 0x54, 0x20}});
    EXPECT_EQ(Theme::fromPalette(QApplication::palette(), false).accent, QColor(0xE9, 0x54, 0x20));
    EXPECT_FALSE(UtilityTheme::current().isDark);
    palette.apply({.scheme = ColorScheme::dark, .accent = RgbColor{0x3D, 0xAE, 0xE9}});
    EXPECT_EQ(Theme::fromPalette(QApplication::palette(), false).accent, QColor(0x3D, 0xAE, 0xE9));
    EXPECT_TRUE(UtilityTheme::current().isDark);
    palette.apply({});
    EXPECT_EQ(QApplication::palette(), own);
}

TEST_F(DesktopPaletteTest, WhatTheToolkitDrawsItselfCanBeReadInEither) {
    for (const auto scheme : {ColorScheme::dark, ColorScheme::light}) {
        palette.apply({.scheme = scheme});
        const auto& all = QApplication::palette();
        const auto ratio = [](const QPalette& of, QPalette::ColorRole text, QPalette::ColorRole ground) {
            return contrast::ratio(of.color(text), of.color(ground));
        };
        EXPECT_GE(ratio(all, QPalette::WindowText, QPalette::Window), 4.5);
        EXPECT_GE(ratio(all, QPalette::Text, QPalette::Base), 4.5);
        EXPECT_GE(ratio(all, QPalette::ButtonText, QPalette::Button), 4.5);
        EXPECT_GE(ratio(all, QPalette::Link, QPalette::Base), 4.5);
        EXPECT_GE(ratio(QToolTip::palette(), QPalette::ToolTipText, QPalette::ToolTipBase), 4.5);
    }
}

/// The longer side of each drawing differs by a fifth at most from the points that were asked for.
TEST(SymbolImagesTest, EverySymbolIsDrawnAsLargeAsItsPointsSay) {
    loadResources();
    SymbolImages symbols;
    const QStringList files = QDir(QStringLiteral(":/ferrowyn/symbols")).entryList();
    ASSERT_FALSE(files.isEmpty());
    for (const QString& file : files) {
        const std::string name = file.chopped(4).toStdString();
        QImage image(200, 200, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            symbols.paint(painter, name, 100, 100, 100, Qt::black);
        }
        int left = 200, right = 0, top = 200, bottom = 0;
        for (int y = 0; y < 200; ++y) {
            for (int x = 0; x < 200; ++x) {
                if (qAlpha(image.pixel(x, y)) > 128) {
                    left = std::min(left, x);
                    right = std::max(right, x + 1);
                    top = std::min(top, y);
                    bottom = std::max(bottom, y + 1);
                }
            }
        }
        const int larger = std::max(right - left, bottom - top);
        EXPECT_GE(larger, 80) << name;
        EXPECT_LE(larger, 120) << name;
    }
}

}  // namespace
}  // namespace ferrowyn
