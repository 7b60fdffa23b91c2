#include "ui/panel/panel_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "tests/ui/common/paint_record.h"
#include "tests/ui/interface_models.h"
#include "ui/panel/row_views.h"

namespace ferrowyn {
namespace {

using test::colorText;
using test::inkOf;
using test::PaintedImage;
using test::PaintedText;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

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

constexpr double fine = 4;

/// One window, as a row and as a card.
class PanelRowsTest : public test::PanelPartsFixture {
protected:
    static constexpr Rect line{8, 64, 624, 52};
    static constexpr Rect card{8, 64, 144, 104};

    [[nodiscard]] auto paintRow(bool isSelected = false, int ordinal = 3, bool isGrouped = false) {
        return paint(WindowRowView{row, tile, isSelected, ordinal, !isGrouped, isGrouped, {}}, line, fine);
    }
    [[nodiscard]] auto paintCard(bool isSelected = false, int ordinal = 3) {
        return paint(WindowCardView{row, tile, isSelected, ordinal, {}}, card, fine);
    }
    void change(const std::function<void(AppWindow&)>& apply) {
        AppWindow window = row.window;
        apply(window);
        row.window = SharedWindow(window);
    }
    [[nodiscard]] static const PaintedImage& icon(const test::PaintRecord& painted) { return painted.images.at(0); }
    [[nodiscard]] static std::vector<QRectF> keyCaps(const test::PaintRecord& painted) {
        std::vector<QRectF> rects;
        for (const auto& shape : painted.filledWith(QColor(255, 255, 255, std::lround(0.08 * 255)))) {
            rects.push_back(shape.rect);
        }
        return rects;
    }

    SwitcherViewModel::Row row{
        SharedWindow(test::PanelModel::window(7, 1, "Writer", "Quarterly report")), {}, true, 1, false};
};

TEST_F(PanelRowsTest, ARowIsIconTitleAndApplicationName) {
    const auto painted = paintRow();
    EXPECT_THAT(painted->words(), ElementsAre("3", "Quarterly report", "Writer"));
    EXPECT_EQ(icon(*painted).rect, QRectF(8 + 12, 64 + 10, 32, 32));
    const PaintedText& title = painted->text("Quarterly report");
    expectFont(title, 13.5, 600);
    EXPECT_EQ(colorText(title.color), colorText("#F3F4F6"));
    const PaintedText& name = painted->text("Writer");
    expectFont(name, 11, 400);
    EXPECT_EQ(colorText(name.color), colorText("#A4A8B2"));
    EXPECT_EQ(title.left, 8 + 12 + 32 + 12);
    EXPECT_EQ(name.left, title.left);
    const double above = title.baseline - QFontMetricsF(title.font).ascent() - line.y;
    const double below = line.maxY() - name.baseline - QFontMetricsF(name.font).descent();
    EXPECT_NEAR(above, below, 1) << "both lines together are centred";
    EXPECT_GT(name.baseline - title.baseline, 13);
    EXPECT_THAT(painted->filledWith(accent), IsEmpty());
}

TEST_F(PanelRowsTest, OnTheSelectionAllTextIsWhite) {
    const auto painted = paintRow(true);
    ASSERT_THAT(painted->filledWith(accent), SizeIs(1));
    EXPECT_EQ(painted->filledWith(accent)[0].rect, QRectF(8, 64, 624, 52));
    EXPECT_EQ(colorText(painted->text("Quarterly report").color), colorText("#FFFFFF"));
    EXPECT_EQ(colorText(painted->text("Writer").color), colorText("#FFFFFF", 0.77));
    EXPECT_EQ(colorText(painted->text("3").color), colorText("#FFFFFF"));
}

TEST_F(PanelRowsTest, ARowOfAGroupIsIndentedAndLeavesTheNameToTheHeader) {
    const auto painted = paintRow(false, 3, true);
    EXPECT_THAT(painted->words(), ElementsAre("3", "Quarterly report"));
    EXPECT_EQ(icon(*painted).rect.left(), 8 + 12 + 12);
    EXPECT_EQ(painted->text("Quarterly report").left, 8 + 12 + 12 + 32 + 12);
    expectFont(painted->text("Quarterly report"), 13.5, 600);
    expectCentredOnLine(painted->text("Quarterly report"), line);
}

TEST_F(PanelRowsTest, OnlyTheFirstNineRowsHaveAKey) {
    for (const int ordinal : {1, 9}) {
        const auto painted = paintRow(false, ordinal);
        EXPECT_THAT(painted->words(), Contains(std::to_string(ordinal)));
        ASSERT_THAT(keyCaps(*painted), SizeIs(1));
        EXPECT_EQ(keyCaps(*painted)[0], QRectF(632 - 12 - 20, 64 + 16, 20, 20));
    }
    EXPECT_THAT(paintRow(false, 10)->words(), ElementsAre("Quarterly report", "Writer"));
    EXPECT_THAT(keyCaps(*paintRow(false, 10)), IsEmpty());
    EXPECT_THAT(paintCard(false, 9)->words(), Contains("9"));
    EXPECT_THAT(paintCard(false, 10)->words(), ElementsAre("Quarterly report", "Writer"));
}

TEST_F(PanelRowsTest, BadgeStarAndKeyStandInThisOrder) {
    change([](AppWindow& window) { window.isFullScreen = true; });
    row.isFavourite = true;
    const auto painted = paintRow();
    const QRectF star = painted->symbol("star.fill", "2").rect;
    const PaintedText& badge = painted->text("Full Screen");
    ASSERT_THAT(keyCaps(*painted), SizeIs(1));
    EXPECT_LT(badge.right, star.left());
    EXPECT_NEAR(star.right(), keyCaps(*painted)[0].left() - 12, 0.2);
    EXPECT_NEAR(star.center().y(), line.midY(), 0.2);
    row.isFavourite = false;
    EXPECT_GT(paintRow()->text("Full Screen").right, badge.right) << "the badge takes the place of a missing star";
}

TEST_F(PanelRowsTest, OnlyAFavouriteOrTheSelectionHasAStar) {
    EXPECT_THAT(paintRow()->images, SizeIs(1)) << "the icon alone";
    EXPECT_THAT(paintCard()->images, SizeIs(1));
    expectInk(paintRow(true)->symbol("star", "2"), colorText("#FFFFFF"));
    expectInk(paintCard(true)->symbol("star", "2"), colorText("#FFFFFF"));
    row.isFavourite = true;
    expectInk(paintRow()->symbol("star.fill", "2"), colorText("#FFD20A"));
    expectInk(paintCard()->symbol("star.fill", "2"), colorText("#FFD20A"));
    const auto selected = inkOf(paintRow(true)->symbol("star.fill", "2").image);
    ASSERT_TRUE(selected);
    EXPECT_GT(selected->red(), 200) << "yellow on the selection too";
    EXPECT_LT(selected->blue(), 100);
}

TEST_F(PanelRowsTest, ALongTitleGivesWayToTheBadge) {
    change([](AppWindow& window) {
        window.title = std::string(300, 'm');
        window.isMinimized = true;
    });
    const auto painted = paintRow();
    EXPECT_TRUE(painted->texts.at(2).text.ends_with("m…")) << painted->texts.at(2);
    EXPECT_LT(painted->texts.at(2).right, painted->text("Minimised").left - 12);
    EXPECT_LT(icon(*painted).opacity, 1) << "it is put away";
    expectFont(painted->text("Minimised"), 10, 500);
}

TEST_F(PanelRowsTest, MatchedCharactersAreHeavierAndOnTheSelectionUnderlined) {
    row.highlightedTitleIndices = {0, 1, 10, 11};
    const auto painted = paintRow();
    EXPECT_THAT(painted->words(), ElementsAre("3", "Qu", "arterly ", "re", "port", "Writer"));
    for (const char* const matched : {"Qu", "re"}) {
        EXPECT_GT(painted->text(matched).weight, 600) << matched;
        EXPECT_NEAR(painted->text(matched).size, 13.5, 0.01);
        EXPECT_EQ(colorText(painted->text(matched).color), colorText("#6FB1FF"));
    }
    expectFont(painted->text("port"), 13.5, 600);
    EXPECT_EQ(colorText(painted->text("port").color), colorText("#F3F4F6"));

    const auto selected = paintRow(true);
    EXPECT_EQ(colorText(selected->text("re").color), colorText("#FFFFFF"));
    const auto underlines = selected->filledWith(Qt::white);
    ASSERT_THAT(underlines, SizeIs(2));
    const PaintedText& matched = selected->text("re");
    EXPECT_EQ(underlines[1].rect.height(), 2);
    EXPECT_NEAR(underlines[1].rect.left(), matched.left, 0.5);
    EXPECT_NEAR(underlines[1].rect.right(), matched.right, 0.5);
    EXPECT_GT(underlines[1].rect.top(), matched.baseline);
    EXPECT_LT(underlines[1].rect.top(), matched.baseline + 3);
}

TEST_F(PanelRowsTest, ATitleFromRightToLeftStandsAtTheLeadingEdge) {
    change([](AppWindow& window) { window.title = "שלום עולם"; });
    const auto painted = paintRow();
    EXPECT_EQ(painted->text("שלום עולם").left, 8 + 12 + 32 + 12);
}

TEST_F(PanelRowsTest, ACardIsCentredIconTitleAndName) {
    const auto painted = paintCard();
    EXPECT_EQ(icon(*painted).rect, QRectF(card.midX() - 20, 64 + 12, 40, 40));
    const PaintedText& title = painted->text("Quarterly report");
    const PaintedText& name = painted->text("Writer");
    expectFont(title, 13.5, 600);
    EXPECT_EQ(colorText(title.color), colorText("#F3F4F6"));
    expectFont(name, 11, 400);
    EXPECT_EQ(colorText(name.color), colorText("#A4A8B2"));
    EXPECT_NEAR(title.middle(), card.midX(), 0.3);
    EXPECT_NEAR(name.middle(), card.midX(), 0.3);
    EXPECT_GT(title.baseline - QFontMetricsF(title.font).ascent(), icon(*painted).rect.bottom());
    EXPECT_GT(name.baseline, title.baseline + 11);
    EXPECT_LT(name.baseline + QFontMetricsF(name.font).descent(), card.maxY());
    const PaintedText& ordinal = painted->text("3");
    EXPECT_LT(ordinal.right, icon(*painted).rect.left()) << "top left";
    EXPECT_LT(ordinal.baseline, icon(*painted).rect.center().y());
    EXPECT_THAT(keyCaps(*painted), IsEmpty());
}

TEST_F(PanelRowsTest, ACardsBadgeLiesOverTheIconsLowerEdgeAndNotOnTheTitle) {
    change([](AppWindow& window) { window.isOnActiveSpace = false; });
    row.isFavourite = true;
    const auto painted = paintCard();
    const QRectF symbol = painted->symbol("rectangle.on.rectangle", "2.2").rect;
    EXPECT_NEAR(symbol.width(), 7 * 1.2, 0.15) << "compact";
    const auto& badge = painted->shapes.at(0);
    EXPECT_NEAR(badge.rect.center().x(), card.midX(), 0.6);
    EXPECT_LT(badge.rect.top(), icon(*painted).rect.bottom());
    EXPECT_GT(badge.rect.bottom(), icon(*painted).rect.bottom());
    const PaintedText& title = painted->text("Quarterly report");
    EXPECT_LE(badge.rect.bottom(), title.baseline - QFontMetricsF(title.font).capHeight());
    const QRectF star = painted->symbol("star.fill", "2").rect;
    EXPECT_GT(star.left(), icon(*painted).rect.right()) << "top right";
    EXPECT_LT(star.bottom(), icon(*painted).rect.center().y());
    EXPECT_LT(star.right(), card.maxX());
}

TEST_F(PanelRowsTest, ASelectedCardStandsOnTheAccent) {
    const auto painted = paintCard(true);
    ASSERT_THAT(painted->filledWith(accent), SizeIs(1));
    EXPECT_EQ(painted->filledWith(accent)[0].rect, QRectF(8, 64, 144, 104));
    EXPECT_EQ(colorText(painted->text("Quarterly report").color), colorText("#FFFFFF"));
    EXPECT_EQ(colorText(painted->text("Writer").color), colorText("#FFFFFF", 0.77));
}

TEST_F(PanelRowsTest, ALongTitleOnACardIsCutWithinTheCard) {
    change([](AppWindow& window) { window.title = std::string(100, 'm'); });
    const auto painted = paintCard();
    const PaintedText& title = painted->texts.at(1);
    EXPECT_TRUE(title.text.ends_with("m…")) << title;
    EXPECT_GE(title.left, card.x + 8);
    EXPECT_LE(title.right, card.maxX() - 8);
}

}  // namespace
}  // namespace ferrowyn
