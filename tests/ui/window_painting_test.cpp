#include <QDir>
#include <QLayout>
#include <cmath>
#include <set>

#include "tests/ui/paint_record.h"
#include "tests/ui/settings_view_fixture.h"
#include "ui/common/images.h"
#include "ui/menu/menu_row_views.h"
#include "ui/windows/controls.h"
#include "ui/windows/settings_form.h"
#include "ui/windows/utility_theme.h"

// What the menu and the windows beside the panel paint.
namespace ferrowyn {
namespace {

using test::PaintedShape;
using testing::Each;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

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

class MenuPaintingTest : public test::PanelPartsFixture {};

TEST_F(MenuPaintingTest, ASeparatorIsAHairline) {
    const MenuRow separator{.kind = MenuRow::Kind::separator};
    for (const double scale : {1.0, 2.0, 3.0}) {
        const auto painted = record(
            [&](QPainter& painter, const PaintContext& with) {
                MenuRowView{separator}.paint(painter, {0, 100, 268, 11}, MenuColors::fromTheme(theme), with);
            },
            scale);
        ASSERT_THAT(painted->shapes, SizeIs(1));
        EXPECT_EQ(painted->shapes[0].fill.rgba(), hairlineColor(true).rgba());
        EXPECT_NEAR(painted->shapes[0].rect.height(), hairlineWidth(scale), 0.001);
        EXPECT_EQ(painted->shapes[0].rect.left(), 14);
        EXPECT_EQ(painted->shapes[0].rect.right(), 268 - 14);
    }
}

TEST_F(MenuPaintingTest, ARowIsASymbolAndATitleOfThirteenPoints) {
    const MenuRow item{.kind = MenuRow::Kind::item, .title = "Open Switcher", .symbol = "rectangle.stack"};
    const Rect rect{0, 100, 268, 25};
    const auto painted = record(
        [&](QPainter& painter, const PaintContext& with) {
            MenuRowView{item}.paint(painter, rect, MenuColors::fromTheme(theme), with);
        },
        4);
    expectFont(painted->text("Open Switcher"), 13, 400);
    expectCentredOnLine(painted->text("Open Switcher"), rect);
    EXPECT_EQ(painted->text("Open Switcher").left, 54);
    const auto& symbol = painted->symbol("rectangle.stack", "1.8");
    expectSymbolSize(symbol, 13, 4);
    EXPECT_NEAR(symbol.rect.center().y(), rect.midY(), 0.2);
    EXPECT_LT(symbol.rect.right(), 54 - 5);
}

/// The longer side of each drawing differs by a fifth at most from the points that were asked for.
TEST_F(MenuPaintingTest, EverySymbolIsDrawnAsLargeAsItsPointsSay) {
    loadResources();
    const QStringList files = QDir(QStringLiteral(":/ferrowyn/symbols")).entryList();
    ASSERT_THAT(files, Not(IsEmpty()));
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
