#include <algorithm>

#include "core/switcher_view_model.h"
#include "tests/core/switcher_view_model_fixture.h"

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Which rows a session shows, in which order, and what each carries.
class SwitcherRowsTest : public SwitcherViewModelFixture {
protected:
    [[nodiscard]] std::vector<bool> groupStarts() const {
        std::vector<bool> result;
        for (const auto& shown : model->rows.get()) {
            result.push_back(shown.startsGroup);
        }
        return result;
    }
    [[nodiscard]] std::vector<int> groupSizes() const {
        std::vector<int> result;
        for (const auto& shown : model->rows.get()) {
            result.push_back(shown.groupSize);
        }
        return result;
    }
    void beginSessionWith(std::vector<AppWindow> list) {
        windows.set(std::move(list));
        model->beginSession(false);
    }
};

AppWindow minimised(WindowId id) {
    AppWindow window = testWindow(id, "Minimised");
    window.isMinimized = true;
    window.isOnActiveSpace = false;
    return window;
}

AppWindow elsewhere(WindowId id) {
    AppWindow window = testWindow(id, "Elsewhere");
    window.isOnActiveSpace = false;
    return window;
}

TEST_F(SwitcherRowsTest, EachFilterSettingHidesItsOwnWindows) {
    const std::vector<AppWindow> list{testWindow(1, "Here"), minimised(2), elsewhere(3)};
    beginSessionWith(list);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
    settings.includeMinimized.set(false);
    model->beginSession(false);
    EXPECT_THAT(ids(), ElementsAre(1, 3));
    settings.includeOtherSpaces.set(false);
    model->beginSession(false);
    EXPECT_THAT(ids(), ElementsAre(1));
    settings.includeMinimized.set(true);
    model->beginSession(false);
    EXPECT_THAT(ids(), ElementsAre(1, 2));
    // The filters hold for matches too.
    model->insertText("e");
    EXPECT_THAT(ids(), ElementsAre(1, 2));
}

TEST_F(SwitcherRowsTest, TheActiveApplicationsWindowsComeFirstWhenAskedTo) {
    settings.showActiveAppWindowsFirst.set(true);
    frontmost = 7;
    beginSessionWith({testWindow(1, "a", "A", 1), testWindow(2, "b", "B", 7), testWindow(3, "c", "C", 3),
                      testWindow(4, "d", "B", 7)});
    EXPECT_THAT(ids(), ElementsAre(2, 4, 1, 3));
    frontmost.reset();
    model->beginSession(false);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3, 4));
    frontmost = 7;
    settings.showActiveAppWindowsFirst.set(false);
    model->beginSession(false);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3, 4));
}

TEST_F(SwitcherRowsTest, FavouritesComeBeforeTheActiveApplicationsWindows) {
    settings.showActiveAppWindowsFirst.set(true);
    favourites.identifiers.set({"org.example.C"});
    frontmost = 7;
    beginSessionWith({testWindow(1, "a", "A", 1), testWindow(2, "b", "B", 7), testWindow(3, "c", "C", 3),
                      testWindow(4, "d", "B", 7)});
    EXPECT_THAT(ids(), ElementsAre(3, 2, 4, 1));
    settings.favouritesFirst.set(false);
    model->beginSession(false);
    EXPECT_THAT(ids(), ElementsAre(2, 4, 1, 3));
    EXPECT_TRUE(row(3).isFavourite);
}

TEST_F(SwitcherRowsTest, OutsideASessionTheActiveApplicationIsUnknown) {
    settings.showActiveAppWindowsFirst.set(true);
    frontmost = 7;
    beginSessionWith({testWindow(1, "a", "A", 1), testWindow(2, "b", "B", 7)});
    EXPECT_THAT(ids(), ElementsAre(2, 1));
    model->endSession();
    model->rebuildRows(true);
    EXPECT_THAT(ids(), ElementsAre(1, 2));
}

TEST_F(SwitcherRowsTest, DuringASessionTheOrderIsFrozenAndFreshDataFlowsIn) {
    beginSessionWith({testWindow(1, "One"), testWindow(2, "Two"), testWindow(3, "Three")});
    AppWindow retitled = testWindow(2, "Renamed");
    retitled.isMinimized = true;
    windows.set({testWindow(4, "New"), testWindow(3, "Three"), retitled});
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
    EXPECT_EQ(row(1).window->title, "Renamed");
    EXPECT_TRUE(row(1).window->isMinimized);
    // A window that is gone keeps its row as it was.
    EXPECT_EQ(row(0).window->title, "One");
    model->endSession();
    model->beginSession(false);
    EXPECT_THAT(ids(), ElementsAre(4, 3, 2));
}

TEST_F(SwitcherRowsTest, DuringASessionFiltersDoNotTakeRowsAway) {
    beginSessionWith({testWindow(1, "One"), minimised(2)});
    settings.includeMinimized.set(false);
    tasks.run();
    EXPECT_THAT(ids(), ElementsAre(1, 2));
    AppWindow hidden = testWindow(1, "One");
    hidden.isMinimized = true;
    windows.set({hidden, minimised(2)});
    EXPECT_THAT(ids(), ElementsAre(1, 2));
    EXPECT_TRUE(row(0).window->isMinimized);
}

TEST_F(SwitcherRowsTest, AQueryIgnoresTheFrozenOrderAndSeesWhatOpenedMeanwhile) {
    beginSessionWith({testWindow(1, "Report one"), testWindow(2, "Report two")});
    windows.set({testWindow(3, "Report three"), testWindow(2, "Report two")});
    model->insertText("report");
    EXPECT_THAT(ids(), ElementsAre(3, 2));
    model->clearQuery();
    EXPECT_THAT(ids(), ElementsAre(1, 2));
}

TEST_F(SwitcherRowsTest, MatchesAreRankedByScoreAndEqualOnesStayInTheirOrder) {
    favourites.identifiers.set({"org.example.App"});
    beginSessionWith({testWindow(1, "xx mail"), testWindow(2, "mail"), testWindow(3, "nothing", "Other"),
                      testWindow(4, "yy mail"), testWindow(5, "mailbox")});
    model->insertText("mail");
    EXPECT_THAT(ids(), ElementsAre(2, 5, 1, 4));
}

TEST_F(SwitcherRowsTest, NeitherFavouritesNorTheActiveApplicationReorderMatches) {
    settings.showActiveAppWindowsFirst.set(true);
    frontmost = 2;
    favourites.identifiers.set({"org.example.C"});
    beginSessionWith({testWindow(1, "same", "A", 1), testWindow(2, "same", "B", 2), testWindow(3, "same", "C", 3)});
    EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
    model->insertText("same");
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
}

TEST_F(SwitcherRowsTest, HighlightsAreThePlacesInTheTitleWhateverTextScoredBest) {
    beginSessionWith({testWindow(1, "  Inbox mail ", "Mail"), testWindow(2, "Inbox", "Mail"),
                      testWindow(3, " ", "Mail"), testWindow(4, "é 👩‍💻 mail", "Other")});
    EXPECT_THAT(row(0).highlightedTitleIndices, IsEmpty());
    model->insertText("MAIL");
    ASSERT_THAT(ids(), ElementsAre(3, 1, 2, 4));
    EXPECT_THAT(row(0).highlightedTitleIndices, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(row(1).highlightedTitleIndices, ElementsAre(6, 7, 8, 9));
    EXPECT_THAT(row(2).highlightedTitleIndices, IsEmpty());
    EXPECT_THAT(row(3).highlightedTitleIndices, ElementsAre(4, 5, 6, 7));
    model->clearQuery();
    EXPECT_THAT(row(0).highlightedTitleIndices, IsEmpty());
}

TEST_F(SwitcherRowsTest, InAListEachRunOfAnApplicationStartsAGroupAndCarriesTheTotal) {
    beginSessionWith({testWindow(1, "a", "A", 1), testWindow(2, "b", "B", 2), testWindow(3, "c", "A", 1),
                      testWindow(4, "d", "A", 1)});
    EXPECT_THAT(groupStarts(), ElementsAre(true, true, true, false));
    EXPECT_THAT(groupSizes(), ElementsAre(3, 1, 3, 3));
    EXPECT_EQ(model->groupCount(), 3);
}

TEST_F(SwitcherRowsTest, GroupedLayoutGathersApplicationsInTheOrderOfTheirFirstRow) {
    settings.layout.set(SwitcherLayout::grouped);
    beginSessionWith({testWindow(1, "a", "A", 1), testWindow(2, "b", "B", 2), testWindow(3, "c", "A", 1),
                      testWindow(4, "d", "C", 3), testWindow(5, "e", "B", 2)});
    EXPECT_THAT(ids(), ElementsAre(1, 3, 2, 5, 4));
    EXPECT_THAT(groupStarts(), ElementsAre(true, false, true, false, true));
    EXPECT_THAT(groupSizes(), ElementsAre(2, 2, 2, 2, 1));
    EXPECT_EQ(model->groupCount(), 3);
}

TEST_F(SwitcherRowsTest, GroupedLayoutGathersMatchesToo) {
    settings.layout.set(SwitcherLayout::grouped);
    beginSessionWith({testWindow(1, "x mail", "A", 1), testWindow(2, "mail", "B", 2), testWindow(3, "mail", "A", 1)});
    model->insertText("mail");
    EXPECT_THAT(ids(), ElementsAre(2, 3, 1));
    EXPECT_THAT(groupStarts(), ElementsAre(true, true, false));
}

TEST_F(SwitcherRowsTest, ALayoutChangeDuringASessionRegroupsTheFrozenRowsAndKeepsTheSelectedWindow) {
    beginSessionWith({testWindow(1, "a", "A", 1), testWindow(2, "b", "B", 2), testWindow(3, "c", "A", 1)});
    EXPECT_EQ(model->selectedWindow()->id, 2U);
    settings.layout.set(SwitcherLayout::grouped);
    tasks.run();
    EXPECT_THAT(ids(), ElementsAre(1, 3, 2));
    EXPECT_EQ(selected(), 2);
    settings.layout.set(SwitcherLayout::grid);
    tasks.run();
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
    EXPECT_EQ(selected(), 1);
}

TEST_F(SwitcherRowsTest, AFavouriteToggledDuringASessionChangesAtOnceAndDoesNotMove) {
    open(3);
    model->beginSession(false);
    favourites.identifiers.set({"org.example.App3"});
    model->rebuildRows(true);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
    EXPECT_TRUE(row(2).isFavourite);
    EXPECT_FALSE(row(0).isFavourite);
    model->endSession();
    model->beginSession(false);
    EXPECT_THAT(ids(), ElementsAre(3, 1, 2));
}

TEST_F(SwitcherRowsTest, AWindowOfNoInstalledApplicationIsNoFavourite) {
    favourites.identifiers.set({""});
    AppWindow window = testWindow(1, "a");
    window.bundleIdentifier.reset();
    beginSessionWith({window});
    EXPECT_FALSE(row(0).isFavourite);
}

TEST_F(SwitcherRowsTest, RowsAreEqualWhenAllTheirFieldsAre) {
    open(1);
    const auto shown = row(0);
    EXPECT_EQ(shown, row(0));
    for (const auto& change : std::vector<std::function<void(SwitcherViewModel::Row&)>>{
             [](auto& r) { r.window = SharedWindow(testWindow(1, "x")); },
             [](auto& r) { r.highlightedTitleIndices = {1}; }, [](auto& r) { r.startsGroup = false; },
             [](auto& r) { r.groupSize = 9; }, [](auto& r) { r.isFavourite = true; }}) {
        auto changed = shown;
        change(changed);
        EXPECT_NE(shown, changed);
    }
}

TEST_F(SwitcherRowsTest, NothingOfEarlierRowsShinesThrough) {
    // Rows are written over earlier ones; each field must be of the new window.
    AppWindow rich = testWindow(1, "alpha", "Rich", 1);
    rich.bundleURL = "/opt/rich.desktop";
    rich.isMinimized = true;
    rich.zOrder = 9;
    AppWindow poor = testWindow(2, "alp", "P", 2);
    poor.bundleIdentifier.reset();
    beginSessionWith({rich, poor});
    model->insertText("alpha");
    model->deleteBackward();
    model->deleteBackward();
    ASSERT_THAT(ids(), ElementsAre(2, 1));
    EXPECT_EQ(row(0).window, poor);
    EXPECT_EQ(row(0).window->bundleIdentifier, std::nullopt);
    EXPECT_EQ(row(0).window->bundleURL, std::nullopt);
    EXPECT_EQ(row(0).window->appName, "P");
    EXPECT_EQ(row(1).window->bundleURL, rich.bundleURL);
    EXPECT_THAT(row(0).highlightedTitleIndices, ElementsAre(0, 1, 2));
}

TEST_F(SwitcherRowsTest, APreviewIsWhatASessionWouldBeginWithAndChangesNothing) {
    settings.showActiveAppWindowsFirst.set(true);
    settings.layout.set(SwitcherLayout::grouped);
    favourites.identifiers.set({"org.example.C"});
    frontmost = 7;
    windows.set({testWindow(1, "a", "A", 1), testWindow(2, "b", "B", 7), testWindow(3, "c", "C", 3), minimised(5),
                 testWindow(4, "d", "B", 7)});
    for (const bool reverse : {false, true}) {
        const auto rowsBefore = model->rows.get();
        int publications = 0;
        const auto token = model->rows.subscribeToChanges([&](const auto&) { ++publications; });
        const auto preview = model->previewSession(reverse);
        EXPECT_EQ(publications, 0);
        EXPECT_EQ(model->rows.get(), rowsBefore);
        EXPECT_FALSE(model->isInSession());
        model->beginSession(reverse);
        EXPECT_EQ(preview.rows, model->rows.get());
        EXPECT_EQ(preview.selectedIndex, selected());
        model->endSession();
    }
}

TEST_F(SwitcherRowsTest, DuringASessionThePreviewIsWhatIsShown) {
    open(4);
    model->beginSession(false);
    model->insertText("4");
    const auto preview = model->previewSession(true);
    EXPECT_EQ(preview.rows, model->rows.get());
    EXPECT_EQ(preview.selectedIndex, 0);
}

}  // namespace
}  // namespace ferrowyn
