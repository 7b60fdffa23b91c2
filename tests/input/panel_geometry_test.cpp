#include "input/panel_geometry.h"

namespace ferrowyn::panel_geometry {
namespace {

Style list(int rows, bool hints = false) {
    return {SwitcherLayout::list, rows, hints};
}
Style grouped(int rows, bool hints = false) {
    return {SwitcherLayout::grouped, rows, hints};
}
Style grid(int rows, bool hints = false) {
    return {SwitcherLayout::grid, rows, hints};
}

TEST(PanelSizeTest, IsWiderInTheGrid) {
    EXPECT_EQ(contentWidth(SwitcherLayout::list), 640);
    EXPECT_EQ(contentWidth(SwitcherLayout::grouped), 640);
    EXPECT_EQ(contentWidth(SwitcherLayout::grid), 760);
}

TEST(PanelSizeTest, IsThatOfTheEmptyStateWithoutRowsInEveryLayout) {
    for (const auto layout : allSwitcherLayouts) {
        EXPECT_EQ(contentHeight({layout, 9, false}, 0, 0), 188);
        EXPECT_EQ(contentHeight({layout, 9, true}, 0, 0), 222);
    }
}

TEST(PanelSizeTest, GrowsByALineAndItsSpacing) {
    EXPECT_EQ(contentHeight(list(9), 1, 1), 52 + 72);
    EXPECT_EQ(contentHeight(list(9), 2, 2), 2 * 52 + 1 + 72);
    EXPECT_EQ(contentHeight(list(9), 5, 5), 5 * 52 + 4 + 72);
    EXPECT_EQ(contentHeight(list(9, true), 5, 5), 5 * 52 + 4 + 72 + 34);
}

TEST(PanelSizeTest, StopsGrowingAtTheVisibleRows) {
    EXPECT_EQ(contentHeight(list(9), 9, 9), 548);
    EXPECT_EQ(contentHeight(list(9), 40, 9), 548);
    EXPECT_EQ(contentHeight(list(0), 40, 9), 52 + 72) << "one line at the least";
}

TEST(PanelSizeTest, CountsHeadersInTheGroupedLayoutOnly) {
    EXPECT_EQ(contentHeight(grouped(9), 5, 2), 5 * 52 + 4 + 2 * 28 + 72);
    EXPECT_EQ(contentHeight(list(9), 5, 2), 5 * 52 + 4 + 72);
    EXPECT_EQ(contentHeight(grid(9), 5, 2), 104 + 72);
}

TEST(PanelSizeTest, CountsNoMoreHeadersThanLines) {
    EXPECT_EQ(contentHeight(grouped(4), 10, 10), 4 * 52 + 3 + 4 * 28 + 72);
}

TEST(PanelSizeTest, PutsFiveCardsOnALineOfTheGrid) {
    EXPECT_EQ(contentHeight(grid(9), 5, 5), 104 + 72);
    EXPECT_EQ(contentHeight(grid(9), 6, 5), 2 * 104 + 6 + 72);
}

TEST(PanelSizeTest, ShowsThreeLinesOfCardsForSevenVisibleRows) {
    EXPECT_EQ(contentHeight(grid(7), 100, 5), 3 * 104 + 2 * 6 + 72);
    EXPECT_EQ(fullHeight(grid(7)), 3 * 104 + 2 * 6 + 72);
}

TEST(PanelSizeTest, IsFullWithEveryVisibleLineAndAHeaderForEach) {
    EXPECT_EQ(fullHeight(list(9)), 9 * 52 + 8 + 72);
    EXPECT_EQ(fullHeight(list(9, true)), 9 * 52 + 8 + 72 + 34);
    EXPECT_EQ(fullHeight(grouped(9)), 9 * 52 + 8 + 9 * 28 + 72);
    EXPECT_EQ(fullHeight(grid(9, true)), 3 * 104 + 12 + 72 + 34);
    EXPECT_EQ(fullHeight(list(0)), 52 + 72);
}

const Screen left{{0, 0, 1000, 800}, {0, 0, 1000, 780}};
const Screen right{{1000, 0, 2000, 1200}, {1000, 40, 2000, 1120}};

TEST(PanelScreenTest, IsTheOneUnderThePointer) {
    EXPECT_EQ(chooseScreen({left, right}, left, {1500, 10}), right);
    EXPECT_EQ(chooseScreen({left, right}, right, {999, 10}), left);
    EXPECT_EQ(chooseScreen({left, right}, left, {1000, 10}), right) << "the shared edge belongs to one of them";
}

/// Where `Pointer` says the pointer is when it is on this pixel of a desktop of the given height, y growing downward.
Point onPixel(int x, int y, int desktopHeight) {
    return {static_cast<double>(x), static_cast<double>(desktopHeight - y)};
}

TEST(PanelScreenTest, IsTheOneUnderThePointerAtEachEdgeAndCornerOfTwoScreensSideBySide) {
    const Screen first{{0, 0, 1000, 800}, {0, 0, 1000, 800}};
    const Screen second{{1000, 0, 1000, 800}, {1000, 0, 1000, 800}};
    for (const int y : {0, 1, 400, 798, 799}) {
        for (const int x : {0, 1, 500, 998, 999}) {
            EXPECT_EQ(chooseScreen({first, second}, second, onPixel(x, y, 800)), first) << x << ", " << y;
            EXPECT_EQ(chooseScreen({first, second}, first, onPixel(1000 + x, y, 800)), second) << x << ", " << y;
        }
    }
}

TEST(PanelScreenTest, IsTheOneUnderThePointerAtEachEdgeAndCornerOfTwoScreensOneAboveTheOther) {
    const Screen upper{{0, 800, 1000, 600}, {0, 800, 1000, 600}};
    const Screen lower{{0, 0, 1000, 800}, {0, 0, 1000, 800}};
    for (const int x : {0, 1, 500, 998, 999}) {
        for (const int y : {0, 1, 300, 598, 599}) {
            EXPECT_EQ(chooseScreen({lower, upper}, lower, onPixel(x, y, 1400)), upper) << x << ", " << y;
        }
        for (const int y : {600, 601, 1000, 1398, 1399}) {
            EXPECT_EQ(chooseScreen({lower, upper}, upper, onPixel(x, y, 1400)), lower) << x << ", " << y;
        }
    }
}

TEST(PanelScreenTest, IsTheMainOneWhenThePointerIsOnNone) {
    EXPECT_EQ(chooseScreen({left, right}, right, {-50, -50}), right);
}

TEST(PanelScreenTest, IsTheFirstOneWithoutAMainScreen) {
    EXPECT_EQ(chooseScreen({right, left}, std::nullopt, {-50, -50}), right);
}

TEST(PanelScreenTest, IsAnEmptyOneWithoutAnyScreen) {
    EXPECT_EQ(chooseScreen({}, std::nullopt, {1, 1}), Screen{});
}

TEST(PanelPlacementTest, IsThatOfTheFullHeightRaisedByEightPercent) {
    // Full height 548 in 875: centred top 711.5, raised by 70 to 781.5, rounded away from zero.
    EXPECT_EQ(placement({0, 0, 1440, 875}, {640, 228}, 548), (Placement{{400, 782 - 228, 640, 228}, 782}));
}

TEST(PanelPlacementTest, KeepsTheTopEdgeWhateverTheContentIs) {
    const Rect visible{0, 0, 1440, 875};
    EXPECT_EQ(placement(visible, {640, 124}, 548).topY, placement(visible, {640, 548}, 548).topY);
}

TEST(PanelPlacementTest, StaysTwelvePointsBelowTheTopOfTheVisibleArea) {
    // 700 of 760: the raised top would be at 790.8.
    EXPECT_EQ(placement({0, 0, 1000, 760}, {640, 200}, 700), (Placement{{180, 548, 640, 200}, 748}));
}

TEST(PanelPlacementTest, LimitsTheFullHeightOnAShortScreenAndKeepsBothMargins) {
    const auto placed = placement({0, 100, 1000, 400}, {640, 582}, 582);
    EXPECT_EQ(placed, (Placement{{180, 112, 640, 376}, 488}));
    EXPECT_EQ(placed.frame.minY(), 100 + 12);
    EXPECT_EQ(placed.frame.maxY(), 500 - 12);
}

TEST(PanelPlacementTest, StaysTwelvePointsAboveTheBottomOfTheVisibleArea) {
    // 376 fit between the margins and hang from 488 to 112.
    EXPECT_EQ(placement({0, 100, 1000, 400}, {640, 376}, 376).frame, (Rect{180, 112, 640, 376}));
    // A top edge from another screen, too low for the content.
    EXPECT_EQ(refittedFrame({0, 100, 1000, 400}, {640, 300}, 350), (Rect{180, 112, 640, 300}));
}

TEST(PanelPlacementTest, FollowsAScreenThatDoesNotStartAtTheOrigin) {
    const auto placed = placement({-1920, -200, 1920, 1055}, {760, 176}, 396);
    // Middle 327.5, half of 396, 8 % of 1055: 609.9.
    EXPECT_EQ(placed, (Placement{{-1340, 610 - 176, 760, 176}, 610}));
}

TEST(PanelPlacementTest, RoundsHalvesAwayFromZero) {
    // The horizontal middle of the width 641 is 320.5, so that the left edge is at half a point.
    EXPECT_EQ(placement({0, 0, 641, 875}, {640, 228}, 548).frame.x, 1);
    EXPECT_EQ(placement({-641, 0, 641, 875}, {640, 228}, 548).frame.x, -641);
    EXPECT_EQ(refittedFrame({0, 0, 1000, 800}, {640, 100}, 400.5).y, 301);
    EXPECT_EQ(refittedFrame({0, -800, 1000, 800}, {640, 100}, -300.5).y, -401);
}

TEST(PanelPlacementTest, HangsFromItsTopEdgeDuringASession) {
    const Rect visible{0, 0, 1440, 875};
    EXPECT_EQ(refittedFrame(visible, {640, 124}, 782), (Rect{400, 658, 640, 124}));
    EXPECT_EQ(refittedFrame(visible, {760, 396}, 782), (Rect{340, 386, 760, 396}));
}

TEST(PanelPlacementTest, IsCentredWithoutATopEdge) {
    EXPECT_EQ(refittedFrame({0, 0, 1440, 875}, {640, 125}, std::nullopt), (Rect{400, 375, 640, 125}));
}

TEST(PanelPlacementTest, HasItsFullSizeWithoutAnyScreen) {
    EXPECT_EQ(placement(Screen{}.visibleFrame, {640, 124}, 548).frame, (Rect{-320, 12, 640, 124}));
}

}  // namespace
}  // namespace ferrowyn::panel_geometry
