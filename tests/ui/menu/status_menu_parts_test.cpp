#include "ui/menu/menu_geometry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <cmath>

#include "tests/ui/common/paint_record.h"
#include "tests/ui/menu/status_menu_fixture.h"
#include "ui/menu/menu_row_views.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr Rect screen{0, 0, 1280, 800};
constexpr Size menu{268, 400};

TEST(MenuPlacementTest, BelowAnIconAtTheUpperEdge) {
    EXPECT_EQ(menuPlacement({600, 3, 22, 22}, menu, screen, {0, 28, 1280, 772}), (Rect{600, 29, 268, 400}));
}

TEST(MenuPlacementTest, AboveAnIconAtTheLowerEdge) {
    EXPECT_EQ(menuPlacement({600, 775, 22, 22}, menu, screen, {0, 0, 1280, 772}), (Rect{600, 371, 268, 400}));
}

TEST(MenuPlacementTest, NeverOutsideWhatThePanelsLeave) {
    EXPECT_EQ(menuPlacement({1250, 3, 22, 22}, menu, screen, {0, 28, 1280, 772}), (Rect{1012, 29, 268, 400}));
    EXPECT_EQ(menuPlacement({4, 390, 22, 22}, menu, screen, {40, 0, 1240, 800}), (Rect{40, 0, 268, 400}))
        << "beside a panel at the left edge";
    EXPECT_EQ(menuPlacement({1250, 300, 22, 22}, menu, screen, {0, 0, 1240, 800}), (Rect{972, 326, 268, 400}));
}

TEST(MenuPlacementTest, APointIsWhereTheMenusCornerGoes) {
    EXPECT_EQ(menuPlacement({600, 200, 0, 0}, menu, screen, screen), (Rect{600, 200, 268, 400}));
    EXPECT_EQ(menuPlacement({600, 700, 0, 0}, menu, screen, screen), (Rect{600, 300, 268, 400}));
}

TEST(MenuPlacementTest, OnASecondScreenItStaysThere) {
    const Rect second{1280, 0, 1024, 768};
    EXPECT_EQ(menuPlacement({2290, 740, 20, 20}, menu, second, second), (Rect{2036, 336, 268, 400}));
}

TEST(MenuPlacementTest, AMenuThatIsTooTallShowsItsBeginning) {
    EXPECT_EQ(menuPlacement({600, 775, 22, 22}, {268, 900}, screen, {0, 20, 1280, 752}), (Rect{600, 20, 268, 900}));
}

constexpr Rect header{0, 0, 268, 58};

TEST(MenuHeaderGeometryTest, ThePartsStandWhereTheyBelong) {
    EXPECT_EQ(MenuHeaderView::iconRect(header), (Rect{14, 13, 32, 32}));
    EXPECT_EQ(MenuHeaderView::gearArea(header), (Rect{228, 16, 26, 26}));
    EXPECT_EQ(MenuHeaderView::titleRect(header), (Rect{54, 15, 166, 17}));
    EXPECT_EQ(MenuHeaderView::subtitleRect(header), (Rect{54, 33, 166, 15}));
}

TEST(MenuHeaderGeometryTest, TheTextsStretchWithTheMenuAndAreNeverNegative) {
    const Rect wide{0, 6, 320, 58};
    EXPECT_EQ(MenuHeaderView::gearArea(wide), (Rect{280, 22, 26, 26}));
    EXPECT_EQ(MenuHeaderView::titleRect(wide), (Rect{54, 21, 218, 17}));
    EXPECT_EQ(MenuHeaderView::subtitleRect({0, 0, 80, 58}).width, 0);
}

class MenuHeaderViewTest : public test::StatusMenuFixture {
protected:
    [[nodiscard]] Rect headerRow() const { return popup->geometryNow().row(0); }
    [[nodiscard]] static QColor over(const QColor& ground, const QColor& top) {
        QImage image(1, 1, QImage::Format_ARGB32_Premultiplied);
        image.fill(ground);
        QPainter(&image).fillRect(0, 0, 1, 1, top);
        return image.pixelColor(0, 0);
    }
};

TEST_F(MenuHeaderViewTest, TheGearsGroundIsFilledWhileThePointerIsOnIt) {
    const Rect area = MenuHeaderView::gearArea(headerRow());
    const auto corner = [&] {
        return picture().pixelColor(static_cast<int>(area.x) + 3, static_cast<int>(area.midY()));
    };
    EXPECT_EQ(corner(), popup->colors().background);
    move({area.x + 1, area.y + 1});
    EXPECT_TRUE(popup->isHoveringGear());
    QColor tenPercent = popup->colors().label;
    tenPercent.setAlphaF(0.10F);
    EXPECT_EQ(corner(), over(popup->colors().background, tenPercent));
    EXPECT_EQ(picture().pixelColor(static_cast<int>(area.x), static_cast<int>(area.midY())), popup->colors().background)
        << "inset by 1";
    move({area.x - 1, area.midY()});
    EXPECT_FALSE(popup->isHoveringGear());
    EXPECT_EQ(corner(), popup->colors().background);
}

TEST_F(MenuHeaderViewTest, HoveringEndsWhenThePointerLeavesOrGoesOnToARow) {
    move(gear());
    ASSERT_TRUE(popup->isHoveringGear());
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(popup.get(), &leave);
    EXPECT_FALSE(popup->isHoveringGear());
    move(gear());
    ASSERT_TRUE(popup->isHoveringGear());
    move(centreOf("Grid"));
    EXPECT_FALSE(popup->isHoveringGear());
}

TEST_F(MenuHeaderViewTest, TheSubtitleHasTheColourOfTheState) {
    const Rect subtitle = MenuHeaderView::subtitleRect(headerRow());
    EXPECT_TRUE(shows(picture(2), subtitle, popup->colors().secondaryLabel));
    EXPECT_FALSE(shows(picture(2), subtitle, popup->colors().orange));
    open(test::statusMenu(test::Health::trustRevoked));
    EXPECT_TRUE(shows(picture(2), subtitle, popup->colors().orange));
}

TEST_F(MenuHeaderViewTest, IconTitleAndGearAreDrawn) {
    const QImage image = picture(2);
    const QColor ground = popup->colors().background;
    const Rect icon = MenuHeaderView::iconRect(headerRow());
    EXPECT_NE(image.pixelColor(static_cast<int>(icon.midX() * 2), static_cast<int>(icon.midY() * 2)), ground);
    EXPECT_TRUE(shows(image, MenuHeaderView::titleRect(headerRow()), popup->colors().label));
    EXPECT_TRUE(shows(image, MenuHeaderView::gearArea(headerRow()), popup->colors().label));
}

TEST_F(MenuHeaderViewTest, TheGearIsLitWhenTheArrowKeysHaveChosenIt) {
    key(Qt::Key_Home);
    const Rect area = MenuHeaderView::gearArea(headerRow());
    EXPECT_EQ(picture().pixelColor(static_cast<int>(area.x) + 3, static_cast<int>(area.midY())),
              popup->colors().selection);
}

class StatusMenuAccessibilityTest : public test::StatusMenuFixture {
protected:
    [[nodiscard]] QAccessibleInterface* menu() const { return QAccessible::queryAccessibleInterface(popup.get()); }
    [[nodiscard]] QAccessibleInterface* item(const std::string& title) const { return menu()->child(row(title)); }
};

TEST_F(StatusMenuAccessibilityTest, TheMenuHasARowForEachOfItsRows) {
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(menu()->role(), QAccessible::PopupMenu);
    EXPECT_EQ(menu()->text(QAccessible::Name), "Ferrowyn");
    ASSERT_EQ(menu()->childCount(), static_cast<int>(popup->menu().size()));
    EXPECT_EQ(menu()->child(1)->role(), QAccessible::Separator);
    EXPECT_EQ(item("LAYOUT")->role(), QAccessible::StaticText);
    EXPECT_EQ(item("Grid")->role(), QAccessible::MenuItem);
    EXPECT_EQ(item("Grid")->text(QAccessible::Name), "Grid");
    EXPECT_EQ(item("Grid")->parent(), menu());
    EXPECT_EQ(menu()->indexOfChild(item("Grid")), row("Grid"));
    EXPECT_EQ(menu()->child(menu()->childCount()), nullptr);
}

TEST_F(StatusMenuAccessibilityTest, TheHeaderIsTheButtonSettingsAndSaysHowTheProgramIsDoing) {
    QAccessibleInterface* const button = menu()->child(0);
    EXPECT_EQ(button->role(), QAccessible::Button);
    EXPECT_EQ(button->text(QAccessible::Name), "Settings");
    EXPECT_EQ(button->text(QAccessible::Description), "Ferrowyn, Ready");
    ASSERT_NE(button->actionInterface(), nullptr);
    button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(happened, ElementsAre("closed", "chosen"));
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().action, MenuRow::Action::openSettings);
}

TEST_F(StatusMenuAccessibilityTest, ChecksAndDisabledRowsSaySo) {
    EXPECT_TRUE(item("List")->state().checkable);
    EXPECT_TRUE(item("List")->state().checked);
    EXPECT_TRUE(item("Grid")->state().checkable);
    EXPECT_FALSE(item("Grid")->state().checked);
    EXPECT_FALSE(item("Open Switcher")->state().checkable);
    EXPECT_TRUE(item("Launch at Login")->state().checkable);
    EXPECT_TRUE(item("9 windows tracked")->state().disabled);
    EXPECT_FALSE(item("Open Switcher")->state().disabled);
    EXPECT_TRUE(item("9 windows tracked")->actionInterface()->actionNames().isEmpty());
}

TEST_F(StatusMenuAccessibilityTest, KeysAndTooltipsAreRead) {
    EXPECT_EQ(item("Quit Ferrowyn")->text(QAccessible::Accelerator), "Ctrl+Q");
    EXPECT_EQ(item("Launch at Login")->text(QAccessible::Description), "Turned off in the desktop's own settings.");
}

TEST_F(StatusMenuAccessibilityTest, TheSelectedRowIsTheFocusedOne) {
    EXPECT_EQ(menu()->focusChild(), nullptr);
    key(Qt::Key_Down);
    EXPECT_EQ(menu()->focusChild(), item("Open Switcher"));
    EXPECT_TRUE(item("Open Switcher")->state().focused);
    EXPECT_FALSE(item("Grid")->state().focused);
}

TEST_F(StatusMenuAccessibilityTest, ARowCanBePressed) {
    item("Grouped")->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().representedValue, "grouped");
}

TEST_F(StatusMenuAccessibilityTest, RowsAreWhereTheyAreDrawn) {
    const QRect place = item("Grid")->rect();
    EXPECT_EQ(place.height(), 25);
    EXPECT_EQ(place.width(), 268);
    EXPECT_EQ(menu()->childAt(place.center().x(), place.center().y()), item("Grid"));
    EXPECT_EQ(menu()->child(0)->rect().size(), QSize(26, 26)) << "the gear, which is what a click has to hit";
}

TEST_F(StatusMenuAccessibilityTest, RowsThatAreGoneAreInvalid) {
    QAccessibleInterface* const last = menu()->child(menu()->childCount() - 1);
    ASSERT_TRUE(last->isValid());
    popup->setMenu({popup->menu().front()});
    EXPECT_FALSE(last->isValid());
    EXPECT_EQ(menu()->childCount(), 1);
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

}  // namespace
}  // namespace ferrowyn
