#include "ui/windows/utility_theme.h"

#include <QAbstractItemView>
#include <QLayout>
#include <cmath>

#include "tests/ui/common/paint_record.h"
#include "tests/ui/windows/settings_view_fixture.h"
#include "ui/common/colors.h"
#include "ui/windows/controls.h"
#include "ui/windows/labels.h"
#include "ui/windows/settings_form.h"

// The colours of the utility windows, and the fine lines in them.
namespace ferrowyn {
namespace {

using test::PaintedShape;
using testing::SizeIs;

QPalette palette(bool isDark, const QColor& accent) {
    QPalette palette(isDark ? QColor(0x2A, 0x2A, 0x2E) : QColor(0xF0, 0xF0, 0xF0));
    palette.setColor(QPalette::Highlight, accent);
    return palette;
}

const std::vector<QColor> accents{QColor(0x2F, 0x6F, 0xED), QColor(0xE9, 0x54, 0x20), QColor(0xFF, 0xD7, 0x00),
                                  QColor(0x12, 0x12, 0x30), QColor(0x3D, 0xAE, 0xE9)};

TEST(UtilityThemeTest, EveryTextCanBeReadOnItsGround) {
    for (const bool isDark : {false, true}) {
        for (const auto& accent : accents) {
            const auto theme = UtilityTheme::fromPalette(palette(isDark, accent));
            const auto contrastOf = [&](const QColor& text, const QColor& ground) {
                return contrast::ratio(contrast::blended(text, ground), ground);
            };
            for (const auto& ground : {theme.ground, theme.groupFill}) {
                EXPECT_GE(contrastOf(theme.textPrimary, ground), 4.5) << isDark;
                EXPECT_GE(contrastOf(theme.textSecondary, ground), 4.5) << isDark;
                EXPECT_GE(contrastOf(theme.link, ground), 4.5) << isDark << accent.name().toStdString();
                EXPECT_GE(contrastOf(theme.success, ground), 3) << isDark;
                EXPECT_GE(contrastOf(theme.warning, ground), 3) << isDark;
            }
            EXPECT_GE(contrastOf(theme.textPrimary, theme.sidebar), 4.5);
            EXPECT_GE(contrastOf(theme.textPrimary, theme.selectionInactive), 4.5);
            for (const auto& fill : {theme.controlFill, theme.controlFillHovered, theme.controlFillPressed}) {
                EXPECT_GE(contrastOf(theme.textPrimary, fill), 4.5);
            }
            for (const auto& fill : {theme.accent, theme.accentHovered, theme.accentPressed}) {
                EXPECT_GE(contrastOf(theme.accentText, fill), 4.5) << accent.name().toStdString();
            }
            const QColor cap = contrast::blended(theme.keyCapFill, theme.groupFill);
            EXPECT_GE(contrastOf(theme.textSecondary, cap), 4.5);
        }
    }
}

TEST(UtilityThemeTest, LabelsFollowThePaletteWhileTheyAreShown) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(palette(false, accents.front()));
    TextLabel label(Phrase{"Updates", {}}, TextStyle::note, Tone::secondary);
    label.show();
    const QColor light = label.palette().color(QPalette::WindowText);
    EXPECT_EQ(light, UtilityTheme::fromPalette(palette(false, accents.front())).textSecondary);
    QApplication::setPalette(palette(true, accents.front()));
    QCoreApplication::processEvents();
    const QColor dark = label.palette().color(QPalette::WindowText);
    EXPECT_EQ(dark, UtilityTheme::fromPalette(palette(true, accents.front())).textSecondary);
    EXPECT_NE(light, dark);
    QApplication::setPalette(before);
}

TEST(UtilityThemeTest, WhatStandsInAWindowFollowsThePaletteWhileItIsShown) {
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
        const auto theme = UtilityTheme::fromPalette(palette(isDark, accents.front()));
        EXPECT_EQ(label->palette().color(QPalette::WindowText), theme.textPrimary) << isDark;
        EXPECT_EQ(box->view()->palette().color(QPalette::Base), theme.groupFill) << isDark;
        EXPECT_EQ(box->view()->palette().color(QPalette::Text), theme.textPrimary) << isDark;
    }
    QApplication::setPalette(before);
}

/// The primary text's colour at 14 %.
QColor hairlineColor(bool isDark) {
    QColor color = isDark ? QColor(0xF3, 0xF4, 0xF6) : QColor(0x1C, 0x1D, 0x21);
    color.setAlpha(static_cast<int>(std::lround(0.14 * 255)));
    return color;
}

double hairlineWidth(double scale) {
    return scale == 1 ? 1 : 0.5;
}

std::vector<QRectF> hairlinesOf(QWidget& widget, double scale) {
    test::PaintRecord painted(widget.size(), scale);
    widget.render(&painted, {}, {}, QWidget::DrawChildren);
    std::vector<QRectF> rects;
    for (const PaintedShape& shape : painted.filledWith(hairlineColor(UtilityTheme::current().isDark))) {
        rects.push_back(shape.rect);
    }
    return rects;
}

class WindowHairlineTest : public test::SettingsViewTest, public testing::WithParamInterface<double> {
protected:
    const double scale = GetParam();
    const double width = hairlineWidth(scale);
};

TEST_P(WindowHairlineTest, OneStandsBesideTheSidebar) {
    view.resize(720, 500);
    view.select(SettingsPane::about);
    const auto rects = hairlinesOf(view, scale);
    ASSERT_THAT(rects, SizeIs(1));
    EXPECT_EQ(rects[0], QRectF(190, 0, width, 500));
}

TEST_P(WindowHairlineTest, OneLiesBetweenTheRowsOfAGroup) {
    SettingsGroup group;
    for (int count = 0; count < 3; ++count) {
        auto* const row = new QWidget;
        row->setFixedHeight(40);
        group.addRow(row);
    }
    group.resize(400, 120);
    group.layout()->activate();
    const auto rects = hairlinesOf(group, scale);
    ASSERT_THAT(rects, SizeIs(2));
    EXPECT_EQ(rects[0], QRectF(14, 40, 400 - 2 * 14, width));
    EXPECT_EQ(rects[1], QRectF(14, 80, 400 - 2 * 14, width));
}

TEST_P(WindowHairlineTest, TheStepperHasOneOnEitherSideOfItsNumber) {
    const std::unique_ptr<QSpinBox> stepper(makeStepper(4, 16));
    stepper->resize(stepper->sizeHint());
    const auto rects = hairlinesOf(*stepper, scale);
    ASSERT_THAT(rects, SizeIs(2));
    for (const QRectF& rect : rects) {
        EXPECT_NEAR(rect.width(), width, 0.001);
        EXPECT_GT(rect.height(), 20);
        EXPECT_LT(rect.bottom(), stepper->height());
    }
    EXPECT_NEAR(rects[0].left(), stepper->width() - rects[1].right(), 0.001) << "alike from both edges";
}

INSTANTIATE_TEST_SUITE_P(Scales, WindowHairlineTest, testing::Values(1.0, 2.0, 3.0));

}  // namespace
}  // namespace ferrowyn
