#include "ui/windows/window_theme.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QVBoxLayout>
#include <vector>

#include "ui/common/colors.h"
#include "ui/windows/choice_box.h"
#include "ui/windows/labels.h"

namespace ferrowyn {
namespace {

QPalette palette(bool isDark, const QColor& accent) {
    QPalette palette(isDark ? QColor(0x2A, 0x2A, 0x2E) : QColor(0xF0, 0xF0, 0xF0));
    palette.setColor(QPalette::Highlight, accent);
    return palette;
}

const std::vector<QColor> accents{QColor(0x2F, 0x6F, 0xED), QColor(0xE9, 0x54, 0x20), QColor(0xFF, 0xD7, 0x00),
                                  QColor(0x12, 0x12, 0x30), QColor(0x3D, 0xAE, 0xE9)};

TEST(WindowThemeTest, EveryTextCanBeReadOnItsGround) {
    for (const bool isDark : {false, true}) {
        for (const auto& accent : accents) {
            const auto theme = WindowTheme::fromPalette(palette(isDark, accent));
            const auto readable = [&](const QColor& text, const QColor& ground) {
                return contrast::ratio(contrast::blended(text, ground), ground);
            };
            for (const auto& ground : {theme.ground, theme.groupFill}) {
                EXPECT_GE(readable(theme.textPrimary, ground), 4.5) << isDark;
                EXPECT_GE(readable(theme.textSecondary, ground), 4.5) << isDark;
                EXPECT_GE(readable(theme.link, ground), 4.5) << isDark << accent.name().toStdString();
                EXPECT_GE(readable(theme.success, ground), 3) << isDark;
                EXPECT_GE(readable(theme.warning, ground), 3) << isDark;
            }
            EXPECT_GE(readable(theme.textPrimary, theme.sidebar), 4.5);
            EXPECT_GE(readable(theme.textPrimary, theme.selectionInactive), 4.5);
            for (const auto& fill : {theme.controlFill, theme.controlFillHovered, theme.controlFillPressed}) {
                EXPECT_GE(readable(theme.textPrimary, fill), 4.5);
            }
            for (const auto& fill : {theme.accent, theme.accentHovered, theme.accentPressed}) {
                EXPECT_GE(readable(theme.accentText, fill), 4.5) << accent.name().toStdString();
            }
            const QColor cap = contrast::blended(theme.keyCapFill, theme.groupFill);
            EXPECT_GE(readable(theme.textSecondary, cap), 4.5);
        }
    }
}

TEST(WindowThemeTest, LabelsFollowThePaletteWhileTheyAreShown) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(palette(false, accents.front()));
    TextLabel label(Phrase{"Updates", {}}, TextStyle::note, Tone::secondary);
    label.show();
    const QColor light = label.palette().color(QPalette::WindowText);
    EXPECT_EQ(light, WindowTheme::fromPalette(palette(false, accents.front())).textSecondary);
    QApplication::setPalette(palette(true, accents.front()));
    QCoreApplication::processEvents();
    const QColor dark = label.palette().color(QPalette::WindowText);
    EXPECT_EQ(dark, WindowTheme::fromPalette(palette(true, accents.front())).textSecondary);
    EXPECT_NE(light, dark);
    QApplication::setPalette(before);
}

TEST(WindowThemeTest, WhatStandsInAWindowFollowsThePaletteWhileItIsShown) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(palette(false, accents.front()));
    QWidget window;
    auto* const column = new QVBoxLayout(&window);
    auto* const label = new TextLabel(Phrase{"General", {}}, TextStyle::paneTitle);
    auto* const box = new ChoiceBox;
    box->addItem("List");
    column->addWidget(label);
    column->addWidget(box);
    window.show();
    // There and back, and there again: the toolkit tells the first change to more than the later ones.
    for (const bool isDark : {true, false, true}) {
        QApplication::setPalette(palette(isDark, accents.front()));
        QCoreApplication::processEvents();
        const auto theme = WindowTheme::fromPalette(palette(isDark, accents.front()));
        EXPECT_EQ(label->palette().color(QPalette::WindowText), theme.textPrimary) << isDark;
        EXPECT_EQ(box->view()->palette().color(QPalette::Base), theme.groupFill) << isDark;
        EXPECT_EQ(box->view()->palette().color(QPalette::Text), theme.textPrimary) << isDark;
    }
    QApplication::setPalette(before);
}

}  // namespace
}  // namespace ferrowyn
