#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/panel_geometry.h"
#include "tests/x11/adapter/panel_fixture.h"

namespace ferrowyn::x11test {
namespace {

/// A screen of 1440 x 600 pixels, divided as a person's two monitors of different heights would.
const std::vector<std::string> sideBySide{"800/211x600/158+0+0", "640/169x480/127+800+0"};
/// A screen of 800 x 1000 pixels, divided into one monitor above the other.
const std::vector<std::string> oneAboveTheOther{"800/211x600/158+0+400", "800/211x400/105+0+0"};

bool hasTwoScreens(const PanelRig& rig) {
    return PanelRig::runUntil([&] {
        const auto all = rig.screens->all();
        return all.size() == 2 && all[0].frame == Rect{0, 0, 800, 600} && all[1].frame == Rect{800, 120, 640, 480};
    });
}

TEST(ScreensTest, TwoMonitorsGrowUpwardFromThePrimaryOne) {
    PanelRig rig({.screens = {"1440x600x24"}});
    rig.divideScreen(sideBySide);
    ASSERT_TRUE(hasTwoScreens(rig)) << "waited for the division to be noticed";

    const Rect onSecond{850, 300, 300, 200};
    rig.panel->prepare(onSecond);
    rig.show(onSecond);
    ASSERT_TRUE(rig.desktop.waitForPanel(true));
    EXPECT_EQ(rig.desktop.placeOf(*rig.desktop.visiblePanel()), (TestDesktop::Place{850, 100, 300, 200}));
    EXPECT_EQ(rig.desktop.pixel(900, 110), 0xCC3366U);

    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; }));
    rig.input.movePointer(900, 110);
    EXPECT_TRUE(PanelRig::runUntil([&] { return rig.pointer->location() == Point{900, 490}; }));
}

TEST(ScreensTest, TheMainScreenIsTheOneOfTheActiveWindow) {
    PanelRig rig({.screens = {"1440x600x24"}});
    rig.divideScreen(sideBySide);
    ASSERT_TRUE(hasTwoScreens(rig));
    const TestWindow window(rig.server.display(), {.title = "On the second", .x = 900, .y = 50});
    ASSERT_TRUE(rig.desktop.waitForActiveWindow(window.id()));
    const auto place = rig.desktop.placeOf(window.id());
    ASSERT_TRUE(place.has_value());
    const double middle = place->x + place->width / 2.0;
    EXPECT_TRUE(PanelRig::runUntil([&] {
        const auto screen = rig.screens->main();
        return screen && middle >= screen->frame.minX() && middle < screen->frame.maxX();
    }));
}

/// The screen that the panel opens on once the pointer has been moved to this pixel, when no screen is the main one.
std::optional<Screen> screenWithPointerAt(PanelRig& rig, int x, int y) {
    rig.input.movePointer(x, y);
    rig.pointer->refresh();
    const Screen none;
    const auto chosen = panel_geometry::chooseScreen(rig.screens->all(), none, rig.pointer->location());
    return chosen == none ? std::nullopt : std::optional(chosen);
}

TEST(ScreensTest, ThePointerIsOnTheScreenThatShowsItAtEveryEdgeSideBySide) {
    PanelRig rig({.screens = {"1440x600x24"}});
    rig.divideScreen(sideBySide);
    ASSERT_TRUE(hasTwoScreens(rig));
    const auto screens = rig.screens->all();
    for (const int x : {0, 799}) {
        for (const int y : {0, 300, 599}) {
            EXPECT_EQ(screenWithPointerAt(rig, x, y), screens[0]) << x << ", " << y;
        }
    }
    for (const int x : {800, 1439}) {
        for (const int y : {0, 240, 479}) {
            EXPECT_EQ(screenWithPointerAt(rig, x, y), screens[1]) << x << ", " << y;
        }
    }
    EXPECT_EQ(screenWithPointerAt(rig, 1000, 480), std::nullopt) << "below the shorter screen";
}

TEST(ScreensTest, ThePointerIsOnTheScreenThatShowsItAtEveryEdgeOneAboveTheOther) {
    PanelRig rig({.screens = {"800x1000x24"}});
    rig.divideScreen(oneAboveTheOther);
    ASSERT_TRUE(PanelRig::runUntil([&] {
        const auto all = rig.screens->all();
        return all.size() == 2 && all[0].frame == Rect{0, 0, 800, 600} && all[1].frame == Rect{0, 600, 800, 400};
    })) << "waited for the division to be noticed";
    const auto screens = rig.screens->all();
    for (const int x : {0, 400, 799}) {
        for (const int y : {0, 399}) {
            EXPECT_EQ(screenWithPointerAt(rig, x, y), screens[1]) << x << ", " << y;
        }
        for (const int y : {400, 999}) {
            EXPECT_EQ(screenWithPointerAt(rig, x, y), screens[0]) << x << ", " << y;
        }
    }
}

TEST(ScreensTest, ADocksStrutLeavesTheVisibleFrameSmallerAndItsEndGivesItBack) {
    PanelRig rig;
    int changes = 0;
    const auto subscription = rig.screens->observe([&] { ++changes; });
    {
        TestWindow dock(
            rig.server.display(),
            {.title = "Dock", .x = 0, .y = 0, .width = 1280, .height = 30, .type = "_NET_WM_WINDOW_TYPE_DOCK"});
        const std::uint32_t strut[12] = {0, 0, 30, 0, 0, 0, 0, 0, 0, 1279, 0, 0};
        dock.setProperty("_NET_WM_STRUT_PARTIAL", "CARDINAL", 32, strut, 12);
        EXPECT_TRUE(PanelRig::runUntil([&] {
            return rig.screens->all().front().visibleFrame == Rect{0, 0, 1280, 770};
        }));
        EXPECT_EQ(rig.screens->all().front().frame, (Rect{0, 0, 1280, 800}));
        EXPECT_GT(changes, 0);
    }
    EXPECT_TRUE(PanelRig::runUntil([&] { return rig.screens->all().front().visibleFrame == Rect{0, 0, 1280, 800}; }));
}

TEST(ScreensLayoutTest, AStrutConcernsTheMonitorsAlongItsRangeOnly) {
    const X11PixelRect left{0, 0, 800, 600};
    const X11PixelRect right{800, 0, 640, 480};
    const std::vector<X11Strut> struts{{.bottom = 40, .bottomStart = 0, .bottomEnd = 799}};
    EXPECT_EQ(visiblePart(left, struts, 1440, 600), (X11PixelRect{0, 0, 800, 560}));
    EXPECT_EQ(visiblePart(right, struts, 1440, 600), right);
}

TEST(ScreensLayoutTest, AStrutThatWouldLeaveNothingIsPassedOver) {
    const X11PixelRect left{0, 0, 800, 600};
    const X11PixelRect right{800, 0, 640, 600};
    const std::vector<X11Strut> innerEdge{{.left = 850, .leftStart = 0, .leftEnd = 599}};
    EXPECT_EQ(visiblePart(left, innerEdge, 1440, 600), left);
    EXPECT_EQ(visiblePart(right, innerEdge, 1440, 600), (X11PixelRect{850, 0, 590, 600}));
}

TEST(ScreensLayoutTest, PointsGrowUpwardFromThePrimaryScreenAtItsScale) {
    const X11Coordinates coordinates{.scale = 2, .originX = 100, .originY = 900};
    EXPECT_EQ(coordinates.toPoints(100, 900), (Point{0, 0}));
    EXPECT_EQ(coordinates.toPoints(120, 880), (Point{10, 10}));
    EXPECT_EQ(coordinates.toPixels({10, 10, 30, 20}), (X11PixelRect{120, 840, 60, 40}));
    EXPECT_EQ(coordinates.toPoints(X11PixelRect{120, 840, 60, 40}), (Rect{10, 10, 30, 20}));
}

}  // namespace
}  // namespace ferrowyn::x11test
