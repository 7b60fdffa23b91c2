#include "ui/panel/panel_geometry.h"

#include <gtest/gtest.h>

#include <numeric>

namespace ferrowyn {
namespace {

PanelGeometry make(SwitcherLayout layout, Size size, int rows, std::vector<int> groups = {}, bool footer = false) {
    return PanelGeometry({layout, size, rows, std::move(groups), footer});
}

TEST(PanelGeometryTest, RowsFillExactlyTheHeightThatThePanelIsGivenForThem) {
    const double nine = 9 * 52 + 8 * 1 + 16 + 56;
    EXPECT_EQ(make(SwitcherLayout::list, {640, nine}, 9).maximumScroll(), 0);
    EXPECT_EQ(make(SwitcherLayout::list, {640, nine - 1}, 9).maximumScroll(), 1);
    EXPECT_EQ(make(SwitcherLayout::list, {640, nine + 34}, 9, {}, true).maximumScroll(), 0);
    EXPECT_EQ(make(SwitcherLayout::list, {640, nine + 33}, 9, {}, true).maximumScroll(), 1);

    const double grouped = 4 * 52 + 3 * 1 + 2 * 28 + 16 + 56;
    EXPECT_EQ(make(SwitcherLayout::grouped, {640, grouped}, 4, {0, 3}).maximumScroll(), 0);
    EXPECT_EQ(make(SwitcherLayout::grouped, {640, grouped - 1}, 4, {0, 3}).maximumScroll(), 1);

    const double twoLines = 2 * 104 + 6 + 16 + 56;
    EXPECT_EQ(make(SwitcherLayout::grid, {760, twoLines}, 9).maximumScroll(), 0);
    EXPECT_EQ(make(SwitcherLayout::grid, {760, twoLines - 1}, 9).maximumScroll(), 1);
}

TEST(PanelGeometryTest, RowsStandUnderEachOtherWithinTheInset) {
    const auto geometry = make(SwitcherLayout::list, {640, 600}, 9);
    EXPECT_EQ(geometry.searchLine(), (Rect{0, 0, 640, 56}));
    EXPECT_EQ(geometry.row(0, 0), (Rect{8, 64, 624, 52}));
    EXPECT_EQ(geometry.row(1, 0), (Rect{8, 117, 624, 52}));
    EXPECT_EQ(geometry.row(1, 10), (Rect{8, 107, 624, 52}));
}

TEST(PanelGeometryTest, CardsFlowFiveToALine) {
    const auto geometry = make(SwitcherLayout::grid, {760, 600}, 12);
    EXPECT_EQ(geometry.row(0, 0), (Rect{8, 64, 144, 104}));
    EXPECT_EQ(geometry.row(4, 0), (Rect{608, 64, 144, 104}));
    EXPECT_EQ(geometry.row(5, 0), (Rect{8, 174, 144, 104}));
    EXPECT_EQ(geometry.row(11, 0), (Rect{158, 284, 144, 104}));
}

TEST(PanelGeometryTest, AHeaderStandsOverEachRowThatStartsAGroup) {
    const auto geometry = make(SwitcherLayout::grouped, {640, 600}, 4, {0, 3});
    EXPECT_EQ(geometry.header(0, 0), (Rect{8, 64, 624, 28}));
    EXPECT_EQ(geometry.row(0, 0), (Rect{8, 92, 624, 52}));
    EXPECT_FALSE(geometry.header(1, 0));
    EXPECT_EQ(geometry.header(3, 0)->maxY(), geometry.row(3, 0).minY());
    EXPECT_EQ(geometry.row(3, 0).y, 64 + 2 * 28 + 3 * 53);
    EXPECT_FALSE(make(SwitcherLayout::list, {640, 600}, 4, {0, 3}).header(0, 0));
}

TEST(PanelGeometryTest, OnlyRowsInsideTheBodyAreVisible) {
    const auto geometry = make(SwitcherLayout::list, {640, 56 + 16 + 9 * 52 + 8}, 10'000);
    EXPECT_EQ(geometry.visibleRows(0), (PanelGeometry::Range{0, 10}));
    const auto inTheMiddle = geometry.visibleRows(8 + 5000 * 53);
    EXPECT_EQ(inTheMiddle.first, 5000);
    EXPECT_LE(inTheMiddle.last - inTheMiddle.first, 10);
    EXPECT_EQ(geometry.visibleRows(geometry.maximumScroll()).last, 10'000);
    EXPECT_EQ(make(SwitcherLayout::list, {640, 188}, 0).visibleRows(0), (PanelGeometry::Range{0, 0}));
}

TEST(PanelGeometryTest, EveryPartOfTheScrolledContentIsInExactlyTheRowsFound) {
    std::vector<int> starts(50);
    std::iota(starts.begin(), starts.end(), 0);
    const auto geometry = make(SwitcherLayout::grouped, {640, 400}, 50, starts);
    for (double scroll = 0; scroll < geometry.maximumScroll(); scroll += 7) {
        const auto [first, last] = geometry.visibleRows(scroll);
        for (int index = 0; index < 50; ++index) {
            const double top = geometry.header(index, scroll)->minY();
            const bool isInside =
                geometry.row(index, scroll).maxY() > geometry.body().minY() && top < geometry.body().maxY();
            EXPECT_EQ(isInside, index >= first && index < last) << "row " << index << " at " << scroll;
        }
    }
}

TEST(PanelGeometryTest, APointBelongsToARowOnlyInsideIt) {
    const auto geometry = make(SwitcherLayout::list, {640, 300}, 9, {}, true);
    EXPECT_EQ(geometry.rowAt({100, 64}, 0), 0);
    EXPECT_EQ(geometry.rowAt({100, 115.9}, 0), 0);
    EXPECT_FALSE(geometry.rowAt({100, 116.5}, 0)) << "the spacing";
    EXPECT_EQ(geometry.rowAt({100, 117}, 0), 1);
    EXPECT_FALSE(geometry.rowAt({4, 90}, 0)) << "the inset";
    EXPECT_FALSE(geometry.rowAt({100, 50}, 20)) << "scrolled under the search line";
    EXPECT_FALSE(geometry.rowAt({100, 270}, 0)) << "under the footer";
}

TEST(PanelGeometryTest, ScrollsNoFurtherThanNeededToShowARow) {
    const auto geometry = make(SwitcherLayout::list, {640, 56 + 16 + 3 * 52 + 2}, 9);
    EXPECT_EQ(geometry.scrollShowing(2, 0), 0);
    EXPECT_EQ(geometry.scrollShowing(3, 0), 53);
    EXPECT_EQ(geometry.scrollShowing(2, 53), 53);
    EXPECT_EQ(geometry.scrollShowing(0, 53), 0);
    EXPECT_EQ(geometry.scrollShowing(8, 0), geometry.maximumScroll());
    EXPECT_EQ(geometry.scrollShowing(99, 0), 0) << "no such row";
    EXPECT_EQ(geometry.scrollShowing(-1, 1e6), geometry.maximumScroll());
}

TEST(PanelGeometryTest, ScrollingToTheFirstRowOfAGroupShowsItsHeader) {
    const auto geometry = make(SwitcherLayout::grouped, {640, 56 + 16 + 80}, 4, {0, 2});
    EXPECT_EQ(geometry.scrollShowing(0, geometry.maximumScroll()), 0);
    const double scroll = geometry.scrollShowing(2, geometry.maximumScroll());
    EXPECT_GE(geometry.header(2, scroll)->minY(), geometry.body().minY());
    EXPECT_LE(geometry.row(2, scroll).maxY(), geometry.body().maxY());
}

}  // namespace
}  // namespace ferrowyn
