#include "ui/common/desktop_looks.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QToolTip>

#include "ui/common/colors.h"
#include "ui/common/theme.h"
#include "ui/windows/window_theme.h"

namespace ferrowyn {
namespace {

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
    ASSERT_FALSE(WindowTheme::current().isDark);
    palette.apply({});
    EXPECT_EQ(QApplication::palette(), own);
    palette.apply({.scheme = ColorScheme::light});
    EXPECT_EQ(QApplication::palette(), own) << "the toolkit's own is light already";
    palette.apply({.scheme = ColorScheme::dark});
    EXPECT_TRUE(WindowTheme::current().isDark);
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
    EXPECT_FALSE(WindowTheme::current().isDark);
    palette.apply({.scheme = ColorScheme::dark, .accent = RgbColor{0x3D, 0xAE, 0xE9}});
    EXPECT_EQ(Theme::fromPalette(QApplication::palette(), false).accent, QColor(0x3D, 0xAE, 0xE9));
    EXPECT_TRUE(WindowTheme::current().isDark);
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

}  // namespace
}  // namespace ferrowyn
