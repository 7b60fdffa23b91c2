#include "core/switcher_view_model.h"

#include <limits>

#include "core/prepared_text.h"
#include "platform/simulated/simulated_window_model.h"
#include "tests/core/switcher_view_model_fixture.h"

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using SwitcherViewModelTest = SwitcherViewModelFixture;

ModalDialog dialog(WindowId id) {
    return {id, SimulatedElement::reference(id), 100};
}

TEST_F(SwitcherViewModelTest, WithoutWindowsEverythingIsHarmless) {
    model->beginSession(false);
    EXPECT_THAT(model->rows.get(), IsEmpty());
    EXPECT_EQ(selected(), 0);
    model->move(1);
    model->moveVertical(1);
    model->moveToEdge(true);
    model->moveToEdge(false);
    EXPECT_EQ(selected(), 0);
    EXPECT_FALSE(model->selectIndex(1));
    EXPECT_EQ(model->selectedWindow(), std::nullopt);
    EXPECT_EQ(model->groupCount(), 0);
    model->beginSession(true);
    EXPECT_EQ(selected(), 0);
}

TEST_F(SwitcherViewModelTest, WithOneWindowASessionSelectsIt) {
    open(1);
    model->beginSession(false);
    EXPECT_EQ(selected(), 0);
    model->endSession();
    model->beginSession(true);
    EXPECT_EQ(selected(), 0);
}

TEST_F(SwitcherViewModelTest, ASessionSelectsTheSecondRowOrTheLastWhenReversed) {
    open(5);
    model->beginSession(false);
    EXPECT_EQ(selected(), 1);
    EXPECT_EQ(model->selectedWindow()->id, 2U);
    model->endSession();
    model->beginSession(true);
    EXPECT_EQ(selected(), 4);
}

TEST_F(SwitcherViewModelTest, ASessionPassesOverWhatTheDialogInUseBlocks) {
    open(4);
    auto list = windows.get();
    list[1].blockedBy = dialog(1);
    windows.set(list);
    EXPECT_EQ(model->previewSession(false).selectedIndex, 2) << "the prepared frame shows the same";
    model->beginSession(false);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3, 4)) << "the order is that of recency all the same";
    EXPECT_EQ(selected(), 2);
    model->move(-1);
    EXPECT_EQ(selected(), 1) << "the blocked window can be selected";

    list[3].blockedBy = dialog(1);
    windows.set(list);
    model->endSession();
    model->beginSession(true);
    EXPECT_EQ(selected(), 2) << "backward from the last row too";
}

TEST_F(SwitcherViewModelTest, ABlockedWindowIsTheFirstChoiceWhereItsDialogIsNotInUse) {
    open(3);
    auto list = windows.get();
    list[1].blockedBy = dialog(3);
    windows.set(list);
    model->beginSession(false);
    EXPECT_EQ(selected(), 1);
    // The same where the dialog has no row.
    list[1].blockedBy = dialog(99);
    windows.set(list);
    model->endSession();
    model->beginSession(false);
    EXPECT_EQ(selected(), 1);
}

TEST_F(SwitcherViewModelTest, AWindowStandsForItsDialogThatHasNoRow) {
    open(3);
    auto list = windows.get();
    list[0].blockedBy = list[1].blockedBy = dialog(99);
    windows.set(list);
    model->beginSession(false);
    EXPECT_EQ(selected(), 2) << "both lead to the dialog, which is in use";
}

TEST_F(SwitcherViewModelTest, WhereEveryOtherRowIsBlockedTheSecondOneIsSelected) {
    open(3);
    auto list = windows.get();
    list[1].blockedBy = list[2].blockedBy = dialog(1);
    windows.set(list);
    model->beginSession(false);
    EXPECT_EQ(selected(), 1);
    model->endSession();
    model->beginSession(true);
    EXPECT_EQ(selected(), 2);
}

TEST_F(SwitcherViewModelTest, MovesWrapAtBothEndsForAnyStep) {
    open(5);
    model->beginSession(false);
    model->move(-3);
    EXPECT_EQ(selected(), 3);
    model->selectedIndex.set(1);
    model->move(7);
    EXPECT_EQ(selected(), 3);
    model->move(2);
    EXPECT_EQ(selected(), 0);
    model->move(-1);
    EXPECT_EQ(selected(), 4);
    model->move(std::numeric_limits<int>::max());
    EXPECT_EQ(selected(), (4 + std::numeric_limits<int>::max() % 5) % 5);
    model->selectedIndex.set(0);
    model->move(std::numeric_limits<int>::min());
    EXPECT_EQ(selected(), 2);
}

TEST_F(SwitcherViewModelTest, VerticalMovesInTheGridGoByFiveAndWrapAroundTheWholeList) {
    settings.layout.set(SwitcherLayout::grid);
    open(12);
    model->beginSession(false);
    model->selectedIndex.set(2);
    model->moveVertical(1);
    EXPECT_EQ(selected(), 7);
    model->moveVertical(2);
    EXPECT_EQ(selected(), 5);
    model->moveVertical(std::numeric_limits<int>::max());
    EXPECT_GE(selected(), 0);
    EXPECT_LT(selected(), 12);
}

TEST_F(SwitcherViewModelTest, VerticalMovesInListsGoByOne) {
    open(12);
    for (const auto layout : {SwitcherLayout::list, SwitcherLayout::grouped}) {
        settings.layout.set(layout);
        model->selectedIndex.set(2);
        model->moveVertical(2);
        EXPECT_EQ(selected(), 4);
    }
}

TEST_F(SwitcherViewModelTest, MovesToEitherEdge) {
    open(5);
    model->beginSession(false);
    model->moveToEdge(false);
    EXPECT_EQ(selected(), 4);
    model->moveToEdge(true);
    EXPECT_EQ(selected(), 0);
}

TEST_F(SwitcherViewModelTest, SelectsByOrdinalOnlyWhereThereIsARow) {
    open(3);
    model->beginSession(false);
    EXPECT_TRUE(model->selectIndex(3));
    EXPECT_EQ(selected(), 2);
    EXPECT_TRUE(model->selectIndex(1));
    EXPECT_EQ(selected(), 0);
    for (const int ordinal : {0, -1, 4, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_FALSE(model->selectIndex(ordinal)) << ordinal;
        EXPECT_EQ(selected(), 0);
    }
}

TEST_F(SwitcherViewModelTest, SelectsByWindow) {
    open(3);
    model->beginSession(false);
    model->select(3);
    EXPECT_EQ(selected(), 2);
    model->select(99);
    EXPECT_EQ(selected(), 2);
}

TEST_F(SwitcherViewModelTest, ASelectionOutsideTheRowsIsNoWindow) {
    open(3);
    for (const int index : {-1, 3, 100}) {
        model->selectedIndex.set(index);
        EXPECT_EQ(model->selectedWindow(), std::nullopt) << index;
    }
}

TEST_F(SwitcherViewModelTest, BeginningASessionResetsQueryAndPinAndCountsTheToken) {
    open(3);
    model->beginSession(false);
    EXPECT_EQ(model->sessionToken.get(), 1);
    model->insertText("title");
    EXPECT_TRUE(model->isPinned.get());
    model->beginSession(false);
    EXPECT_EQ(model->sessionToken.get(), 2);
    EXPECT_EQ(model->query.get(), "");
    EXPECT_FALSE(model->isPinned.get());
    EXPECT_TRUE(model->isInSession());
}

TEST_F(SwitcherViewModelTest, TheFrozenOrderIsInPlaceWhenTheTokenIsPublished) {
    open(3);
    bool wasInSession = false;
    const auto token =
        model->sessionToken.subscribeToChanges([&](int) { wasInSession = model->isInSession() && !ids().empty(); });
    model->beginSession(false);
    EXPECT_TRUE(wasInSession);
}

TEST_F(SwitcherViewModelTest, EndingASessionLeavesRowsAndSelection) {
    open(3);
    model->beginSession(false);
    model->move(1);
    model->isPinned.set(true);
    model->endSession();
    EXPECT_EQ(model->query.get(), "");
    EXPECT_FALSE(model->isPinned.get());
    EXPECT_FALSE(model->isInSession());
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
    EXPECT_EQ(selected(), 2);
}

TEST_F(SwitcherViewModelTest, TypingAppendsPinsAndSelectsTheFirstRow) {
    open(5);
    model->beginSession(false);
    model->move(2);
    model->insertText("ti");
    EXPECT_EQ(model->query.get(), "ti");
    EXPECT_TRUE(model->isPinned.get());
    EXPECT_EQ(selected(), 0);
    model->insertText("tle 4");
    EXPECT_EQ(model->query.get(), "title 4");
    EXPECT_THAT(ids(), ElementsAre(4));
}

TEST_F(SwitcherViewModelTest, DeletingTheWholeQueryDoesNotUnpin) {
    open(2);
    model->beginSession(false);
    model->insertText("t");
    model->deleteBackward();
    EXPECT_EQ(model->query.get(), "");
    EXPECT_TRUE(model->isPinned.get());
    EXPECT_EQ(selected(), 0);
}

TEST_F(SwitcherViewModelTest, DeletingACharacterOrTheQuerySelectsTheFirstRow) {
    open(5);
    model->beginSession(false);
    const auto type = [this] {
        model->insertText("tit");
        model->move(3);
        ASSERT_EQ(selected(), 3);
    };
    type();
    model->deleteBackward();
    ASSERT_THAT(ids(), SizeIs(5));
    EXPECT_EQ(selected(), 0);
    model->clearQuery();
    type();
    model->clearQuery();
    ASSERT_THAT(ids(), SizeIs(5));
    EXPECT_EQ(selected(), 0);
}

TEST_F(SwitcherViewModelTest, DeletingWithoutAQueryDoesNothing) {
    open(3);
    model->beginSession(false);
    int publications = 0;
    const auto token = model->rows.subscribeToChanges([&](const auto&) { ++publications; });
    model->deleteBackward();
    model->clearQuery();
    EXPECT_EQ(publications, 0);
    EXPECT_EQ(selected(), 1);
}

TEST_F(SwitcherViewModelTest, DeletingRemovesAWholeCharacter) {
    open(1);
    model->beginSession(false);
    model->insertText("e\u0301👩‍💻");
    model->deleteBackward();
    EXPECT_EQ(model->query.get(), "e\u0301");
    model->deleteBackward();
    EXPECT_EQ(model->query.get(), "");
}

TEST_F(SwitcherViewModelTest, AQueryWithoutMatchesLeavesNoRowsAndClearingItRestoresTheFrozenOrder) {
    open(4);
    model->beginSession(false);
    model->insertText("zzz");
    EXPECT_THAT(model->rows.get(), IsEmpty());
    EXPECT_EQ(selected(), 0);
    auto reversed = windows.get();
    std::reverse(reversed.begin(), reversed.end());
    windows.set(reversed);
    model->clearQuery();
    EXPECT_EQ(model->query.get(), "");
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(selected(), 0);
}

TEST_F(SwitcherViewModelTest, AQueryOfBlanksIsNoneButStays) {
    open(3);
    model->beginSession(false);
    model->insertText(" \t");
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
    EXPECT_EQ(model->query.get(), " \t");
    EXPECT_THAT(row(0).highlightedTitleIndices, IsEmpty());
}

TEST_F(SwitcherViewModelTest, BlanksAroundAQueryAreIgnoredAndNewlinesAreNot) {
    open(3);
    model->beginSession(false);
    model->insertText("  title 2 ");
    EXPECT_THAT(ids(), ElementsAre(2));
    model->clearQuery();
    model->insertText("title 2\n");
    EXPECT_THAT(ids(), IsEmpty());
}

TEST_F(SwitcherViewModelTest, MirrorsTheTrustStatus) {
    EXPECT_TRUE(model->isAccessibilityTrusted.get());
    status.set(AccessibilityStatus::notTrusted);
    EXPECT_FALSE(model->isAccessibilityTrusted.get());
    status.set(AccessibilityStatus::trusted);
    EXPECT_TRUE(model->isAccessibilityTrusted.get());
}

TEST_F(SwitcherViewModelTest, ANewListKeepsTheSelectedWindowSelected) {
    open(4);
    model->selectedIndex.set(2);
    auto list = windows.get();
    std::rotate(list.begin(), list.begin() + 2, list.end());
    windows.set(list);
    EXPECT_THAT(ids(), ElementsAre(3, 4, 1, 2));
    EXPECT_EQ(selected(), 0);
}

TEST_F(SwitcherViewModelTest, ASelectionBeyondTheEndIsPulledBackToTheLastRow) {
    open(5);
    model->selectedIndex.set(4);
    open(3);
    EXPECT_EQ(selected(), 2);
    open(0);
    EXPECT_EQ(selected(), 0);
    open(3);
    EXPECT_EQ(selected(), 0);
}

TEST_F(SwitcherViewModelTest, SettingsRebuildTheRowsOnceInALaterTurn) {
    open(3);
    std::vector<int> publications;
    const auto token = model->rows.subscribeToChanges([&](const auto&) { publications.push_back(1); });
    settings.includeMinimized.set(false);
    settings.includeOtherSpaces.set(false);
    settings.showActiveAppWindowsFirst.set(true);
    settings.favouritesFirst.set(false);
    settings.layout.set(SwitcherLayout::grouped);
    favourites.identifiers.set({"org.example.App2"});
    EXPECT_THAT(publications, IsEmpty());
    EXPECT_EQ(tasks.size(), 1U);
    tasks.run();
    EXPECT_THAT(publications, SizeIs(1)) << "several changes in one turn of the loop are one rebuild";
    EXPECT_TRUE(row(1).isFavourite);
}

TEST_F(SwitcherViewModelTest, BindingPostsNothingForTheValuesThatSettingsAlreadyHave) {
    EXPECT_EQ(tasks.size(), 0U);
}

TEST_F(SwitcherViewModelTest, ASettingsTaskThatRunsAfterTheEndTouchesNothing) {
    open(3);
    settings.includeMinimized.set(false);
    ASSERT_EQ(tasks.size(), 1U);
    model.reset();
    tasks.run();
    settings.includeMinimized.set(true);
    open(2);
    EXPECT_EQ(tasks.size(), 0U);
}

TEST_F(SwitcherViewModelTest, PreparesTheTextsOfANewListInLaterTurnsOfTheLoop) {
    std::vector<AppWindow> list;
    for (WindowId id = 1; id <= 20; ++id) {
        list.push_back(testWindow(id, "Übersicht, ahead of the key " + std::to_string(id)));
    }
    auto& cache = PreparedTextCache::ofThisThread();
    const std::size_t before = cache.size();
    windows.set(list);
    EXPECT_EQ(cache.size(), before);
    tasks.run();
    EXPECT_EQ(cache.size(), before + 2 * 8) << "of eight windows the title, and the name with it";
    // The next list starts anew without a second round of tasks.
    windows.set(list);
    EXPECT_EQ(tasks.size(), 1U);
    while (tasks.size() > 0) {
        tasks.run();
    }
    const std::size_t all = cache.size();
    EXPECT_EQ(all, before + 40);
    model->beginSession(false);
    model->insertText("ü");
    EXPECT_EQ(cache.size(), all);
    EXPECT_THAT(ids(), SizeIs(20));
}

TEST_F(SwitcherViewModelTest, PlainTextsNeedNoPreparation) {
    open(5);
    EXPECT_EQ(tasks.size(), 0U);
}

TEST_F(SwitcherViewModelTest, HandsOnWhatTheViewsNeed) {
    EXPECT_EQ(&model->iconProvider(), &icons);
    EXPECT_EQ(&model->favourites(), &favourites);
    EXPECT_EQ(&model->settings().layout, &settings.layout);
}

}  // namespace
}  // namespace ferrowyn
