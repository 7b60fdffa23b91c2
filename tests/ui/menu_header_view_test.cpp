#include "ui/menu/menu_row_views.h"

#include "tests/ui/status_menu_fixture.h"

namespace ferrowyn {
namespace {

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

}  // namespace
}  // namespace ferrowyn
