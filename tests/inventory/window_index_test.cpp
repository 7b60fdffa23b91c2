#include "inventory/window_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "inventory/recency_tracker.h"
#include "inventory/window_observation_center.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "tests/inventory/inventory_doubles.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using LogLine = SimulatedDesktop::LogLine;

const LogLine carriedOne{LogLevel::debug, "windows", "Carrying over 1 window(s) Accessibility did not report"};

/// Three windows of two applications, 3 in front of 2 in front of 1, and an index that is not started yet.
class WindowIndexTest : public ::testing::Test {
protected:
    SimulatedDesktop desktop;
    RecencyTracker* recency = nullptr;
    WindowObservationCenter* observation = nullptr;
    std::unique_ptr<WindowIndex> index;
    int publications = 0;
    int refreshes = 0;
    Subscription windowsSubscription;
    Subscription refreshSubscription;

    void SetUp() override {
        desktop.launch({.pid = 100, .bundleIdentifier = "org.example.mail", .localizedName = "Mail"}, true);
        desktop.launch({.pid = 200, .bundleIdentifier = "org.example.notes", .localizedName = "Notes"}, true);
        desktop.openWindow({.id = 1, .pid = 100, .title = "Inbox"}, true);
        desktop.openWindow({.id = 2, .pid = 200, .title = "Ideas"}, true);
        desktop.openWindow({.id = 3, .pid = 100, .title = "Draft"}, true);

        auto tracker = std::make_unique<RecencyTracker>([this] { return desktop.frontmostPid(); });
        auto center =
            std::make_unique<WindowObservationCenter>(desktop.platform(), WindowFilter(SimulatedDesktop::ownPid));
        recency = tracker.get();
        observation = center.get();
        index = std::make_unique<WindowIndex>(desktop.platform(), std::move(tracker), std::move(center));
        windowsSubscription = index->windows().subscribeToChanges([this](const auto&) { ++publications; });
        refreshSubscription = index->lastRefresh().subscribeToChanges([this](const auto&) { ++refreshes; });
    }

    void start() {
        index->start();
        desktop.settle();
        desktop.takeLog();
        publications = 0;
        refreshes = 0;
    }
    void refresh() {
        index->refresh();
        desktop.settle();
    }
    /// What was logged since, without the line that each publication writes.
    std::vector<LogLine> takeLogBesidePublications() {
        auto lines = desktop.takeLog();
        std::erase_if(lines, [](const LogLine& line) { return line.message.starts_with("Published "); });
        return lines;
    }
    [[nodiscard]] std::vector<WindowId> ids() const {
        std::vector<WindowId> result;
        std::ranges::transform(index->windows().get(), std::back_inserter(result), &AppWindow::id);
        return result;
    }
    [[nodiscard]] AppWindow window(WindowId id) const {
        const auto& windows = index->windows().get();
        const auto found = std::ranges::find(windows, id, &AppWindow::id);
        return found != windows.end() ? *found : AppWindow{};
    }
};

TEST_F(WindowIndexTest, IsEmptyAtFirst) {
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(index->lastRefresh().get(), std::nullopt);
}

TEST_F(WindowIndexTest, StartRefreshesWithoutDelay) {
    index->start();
    EXPECT_THAT(ids(), IsEmpty()) << "not before it returned";
    desktop.settle();
    EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
    EXPECT_EQ(index->lastRefresh().get(), desktop.now());
    EXPECT_EQ(refreshes, 1);
    EXPECT_THAT(desktop.windowNotifications(2), ::testing::SizeIs(4)) << "the listed windows are watched";
}

TEST_F(WindowIndexTest, WorksWithPartsOfItsOwn) {
    WindowIndex plain(desktop.platform());
    desktop.launch({.pid = SimulatedDesktop::ownPid, .localizedName = "Ferrowyn"}, true);
    desktop.openWindow({.id = 9, .pid = SimulatedDesktop::ownPid}, true);
    desktop.setFrontmost(100);
    plain.start();
    desktop.settle();
    ASSERT_EQ(plain.windows().get().size(), 3U) << "never the program's own window";
    EXPECT_EQ(plain.windows().get().front().id, 3U);
}

TEST_F(WindowIndexTest, StartingTwiceStartsOnce) {
    index->start();
    index->start();
    desktop.settle();
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(desktop.liveObserverCount(), 2U);
}

TEST_F(WindowIndexTest, ABurstOfChangesIsOneRefresh) {
    EXPECT_EQ(WindowIndex::coalescingInterval, Seconds(0.12));
    start();
    for (int change = 0; change < 10; ++change) {
        desktop.advance(change == 0 ? 0s : 50ms);
        desktop.setSpaceChanged();
    }
    desktop.advance(119ms);
    EXPECT_EQ(refreshes, 0);
    desktop.advance(1ms);
    EXPECT_EQ(refreshes, 1);
    desktop.advance(3s);
    EXPECT_EQ(refreshes, 1);
}

TEST_F(WindowIndexTest, EveryKindOfChangeBringsARefresh) {
    start();
    for (const WindowChange change : {WindowChange::focus(100), WindowChange::structural(), WindowChange::metadata()}) {
        refreshes = 0;
        observation->changes().send(change);
        desktop.advance(120ms);
        EXPECT_EQ(refreshes, 1);
    }
}

TEST_F(WindowIndexTest, ANewWindowAppearsAfterItsNotification) {
    start();
    desktop.openWindow({.id = 4, .pid = 200, .title = "List"});
    desktop.advance(120ms);
    EXPECT_THAT(ids(), ElementsAre(4, 3, 2, 1)) << "focused on opening, so most recent";
}

TEST_F(WindowIndexTest, RequestsDuringAPassFoldIntoOneMore) {
    desktop.holdBackgroundWork(true);
    index->refresh();
    for (int request = 0; request < 5; ++request) {
        index->refresh();
    }
    EXPECT_EQ(desktop.heldBackgroundWorkCount(), 1U) << "one enumeration at a time";
    desktop.holdBackgroundWork(false);
    desktop.settle();
    EXPECT_EQ(refreshes, 2);
    refresh();
    EXPECT_EQ(refreshes, 3) << "and idle again afterwards";
}

TEST_F(WindowIndexTest, AWindowFocusedDuringAPassThatDoesNotHoldItYetKeepsItsRank) {
    start();
    desktop.holdBackgroundWork(true);
    index->refresh();
    desktop.openWindow(
        {.id = 4, .pid = 200, .title = "New", .isListedByWindowServer = false, .isListedByAccessibility = false});
    ASSERT_TRUE(recency->rank(4).has_value());
    desktop.holdBackgroundWork(false);
    desktop.settle();
    ASSERT_THAT(ids(), ElementsAre(3, 2, 1)) << "the pass saw the desktop as it was before";
    desktop.changeWindow(4, [](auto& state) {
        state.isListedByWindowServer = true;
        state.isListedByAccessibility = true;
    });
    desktop.advance(1s);
    EXPECT_THAT(ids(), ElementsAre(4, 3, 2, 1));
}

TEST_F(WindowIndexTest, AnUnchangedSnapshotIsNotPublishedAgain) {
    start();
    desktop.advance(1s);
    refresh();
    EXPECT_EQ(publications, 0);
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(index->lastRefresh().get(), desktop.now());
}

TEST_F(WindowIndexTest, AWindowThatOnlyMovedIsNotPublished) {
    start();
    desktop.changeWindow(1, [](auto& state) { state.frame.x += 50; });
    refresh();
    EXPECT_EQ(publications, 0);
    desktop.changeWindow(1, [](auto& state) { state.title = "Inbox (2)"; });
    refresh();
    EXPECT_EQ(publications, 1);
    EXPECT_EQ(window(1).title, "Inbox (2)");
}

TEST_F(WindowIndexTest, CarriesOverWhatAccessibilityOmitted) {
    start();
    desktop.changeWindow(2, [](auto& state) {
        state.isListedByAccessibility = false;
        state.isOnActiveSpace = false;
    });
    refresh();
    EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
    EXPECT_FALSE(window(2).isOnActiveSpace);
    EXPECT_EQ(window(2).title, "Ideas");
    EXPECT_EQ(window(2).axElement, desktop.elementOf(2));
    EXPECT_THAT(takeLogBesidePublications(), ElementsAre(carriedOne));

    refresh();
    EXPECT_THAT(ids(), ElementsAre(3, 2, 1)) << "for as long as the server lists it";
    desktop.changeWindow(2, [](auto& state) { state.isListedByAccessibility = true; });
    desktop.takeLog();
    refresh();
    EXPECT_THAT(takeLogBesidePublications(), IsEmpty());
}

TEST_F(WindowIndexTest, AHungApplicationKeepsItsWindows) {
    start();
    desktop.setHung(100, true);
    refresh();
    EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
    EXPECT_THAT(desktop.takeLog(), ElementsAre(LogLine{LogLevel::debug, "windows",
                                                       "Carrying over 2 window(s) Accessibility did not report"}));
}

TEST_F(WindowIndexTest, NothingIsCarriedWhileTheWindowServerIsSilent) {
    start();
    desktop.setHung(100, true);
    desktop.setWindowServerAnswers(false);
    refresh();
    EXPECT_THAT(ids(), ElementsAre(2));
}

TEST_F(WindowIndexTest, AClosedWindowDisappearsWithItsRank) {
    start();
    EXPECT_EQ(recency->count(), 3U);
    desktop.closeWindow(2, true);
    refresh();
    EXPECT_THAT(ids(), ElementsAre(3, 1));
    EXPECT_EQ(recency->rank(2), std::nullopt);
    EXPECT_EQ(recency->count(), 2U);
}

TEST_F(WindowIndexTest, RanksOfUnknownWindowsStayWhileTheTableIsNoLarger) {
    index->noteActivated(77);
    refresh();
    EXPECT_EQ(recency->rank(77), 1) << "one rank, three windows";
}

TEST_F(WindowIndexTest, AFocusChangeMakesTheFocusedWindowMostRecent) {
    start();
    desktop.focusWindow(2);
    desktop.advance(120ms);
    EXPECT_THAT(ids(), ElementsAre(2, 3, 1));
    desktop.focusWindow(1);
    desktop.advance(120ms);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
}

TEST_F(WindowIndexTest, AnApplicationHasATenthOfASecondToNameItsFocusedWindow) {
    StubInventory inventory;
    WindowIndex other(replacedIn(desktop.platform(), {.windowInventory = &inventory}));
    other.start();
    desktop.settle();
    ASSERT_EQ(inventory.lastFocusTimeout, std::nullopt);
    desktop.focusWindow(2);
    EXPECT_EQ(inventory.lastFocusTimeout, Seconds(0.1));
}

TEST_F(WindowIndexTest, AFocusThatCannotBeResolvedIsSilent) {
    start();
    const auto expectNoTouch = [this] {
        observation->changes().send(WindowChange::focus(200));
        EXPECT_EQ(recency->rank(2), 2);
        desktop.advance(120ms);
        EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
    };
    desktop.setHung(200, true);
    expectNoTouch();
    desktop.setHung(200, false);
    desktop.changeWindow(2, [](auto& state) { state.hasWindowNumber = false; });
    expectNoTouch();
    desktop.changeWindow(2, [](auto& state) {
        state.hasWindowNumber = true;
        state.reportedWindowNumber = 0;
    });
    expectNoTouch();
    desktop.changeWindow(2, [](auto& state) { state.reportedWindowNumber = std::nullopt; });
    desktop.setHasWindowNumberLookup(false);
    // Same geometry everywhere would make the windows interchangeable.
    for (const WindowId id : {1U, 2U, 3U}) {
        desktop.changeWindow(id, [id](auto& state) { state.frame.x = 200.0 * id; });
    }
    expectNoTouch();
    observation->changes().send(WindowChange::focus(999));
    EXPECT_EQ(recency->count(), 3U);
    EXPECT_THAT(
        desktop.takeLog(),
        ElementsAre(carriedOne, LogLine{LogLevel::error, "windows",
                                        "_AXUIElementGetWindow unavailable; falling back to geometry matching"}));
}

TEST_F(WindowIndexTest, TheActivatedWindowLeadsAtOnce) {
    start();
    index->noteActivated(1);
    EXPECT_THAT(ids(), ElementsAre(1, 3, 2));
    EXPECT_EQ(publications, 1);
    EXPECT_EQ(recency->rank(1), 4);
    refresh();
    EXPECT_THAT(ids(), ElementsAre(1, 3, 2)) << "a refresh agrees";
}

TEST_F(WindowIndexTest, ADialogThatBlocksAListedWindowIsPublishedThoughTheListIsTheSame) {
    start();
    desktop.openWindow({.id = 4, .pid = 100, .title = "", .subrole = "AXDialog"}, true);
    desktop.changeWindow(1, [](auto& state) { state.blockedBy = 4; });
    refresh();
    EXPECT_THAT(ids(), ElementsAre(3, 2, 1)) << "the dialog has no title";
    EXPECT_EQ(publications, 1);
    EXPECT_EQ(window(1).inputWindowId(), 4U);
    EXPECT_EQ(window(2).inputWindowId(), 2U);
    refresh();
    EXPECT_EQ(publications, 1);
    desktop.closeWindow(4, true);
    refresh();
    EXPECT_EQ(publications, 2);
    EXPECT_EQ(window(1).blockedBy, std::nullopt);
}

TEST_F(WindowIndexTest, AnActivatedWindowThatIsBlockedStandsBehindItsDialog) {
    desktop.changeWindow(1, [](auto& state) { state.blockedBy = 2; });
    start();
    index->noteActivated(1);
    EXPECT_THAT(ids(), ElementsAre(2, 1, 3));
    refresh();
    EXPECT_THAT(ids(), ElementsAre(2, 1, 3)) << "a refresh agrees";
}

TEST_F(WindowIndexTest, TheFocusOfADialogThatIsNotListedIsThatOfItsWindow) {
    desktop.openWindow({.id = 4, .pid = 100, .title = "", .subrole = "AXDialog"}, true);
    desktop.changeWindow(1, [](auto& state) { state.blockedBy = 4; });
    start();
    desktop.focusWindow(2);
    desktop.focusWindow(4);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
    desktop.advance(120ms);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3)) << "the refresh agrees";
    index->noteActivated(1);
    EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
}

TEST_F(WindowIndexTest, AWindowThatIsCarriedOverStaysBlockedWhileItsDialogExists) {
    desktop.changeWindow(1, [](auto& state) { state.blockedBy = 2; });
    start();
    desktop.changeWindow(1, [](auto& state) { state.isListedByAccessibility = false; });
    refresh();
    EXPECT_EQ(window(1).inputWindowId(), 2U);
    desktop.closeWindow(2, true);
    refresh();
    EXPECT_EQ(window(1).inputWindowId(), 1U);
}

TEST_F(WindowIndexTest, EachPublicationIsLoggedWithItsFirstWindow) {
    start();
    index->noteActivated(1);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(LogLine{LogLevel::debug, "windows", "Published 3 window(s), first 1"}));
    index->noteActivated(1);
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(WindowIndexTest, AFocusReportLeadsTheListBeforeTheRefresh) {
    start();
    desktop.focusWindow(2);
    desktop.settle();
    EXPECT_THAT(ids(), ElementsAre(2, 3, 1));
    EXPECT_EQ(publications, 1);
    EXPECT_EQ(refreshes, 0) << "the clock stands still";
    desktop.advance(120ms);
    EXPECT_EQ(refreshes, 1);
    EXPECT_THAT(ids(), ElementsAre(2, 3, 1)) << "the refresh agrees";
}

TEST_F(WindowIndexTest, AFocusReportOfTheWindowThatLeadsIsNotPublished) {
    start();
    observation->changes().send(WindowChange::focus(100));
    EXPECT_EQ(recency->rank(3), 4) << "it was read";
    EXPECT_EQ(publications, 0);
    desktop.advance(120ms);
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(publications, 0);
}

TEST_F(WindowIndexTest, AFocusReportOfAWindowNotListedYetLeavesTheListToTheRefresh) {
    start();
    desktop.openWindow({.id = 4, .pid = 200, .title = "List"});
    desktop.settle();
    EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
    EXPECT_EQ(publications, 0);
    desktop.advance(120ms);
    EXPECT_THAT(ids(), ElementsAre(4, 3, 2, 1));
}

TEST_F(WindowIndexTest, NothingMovesAfterStop) {
    start();
    index->stop();
    publications = 0;
    desktop.focusWindow(2);
    observation->changes().send(WindowChange::focus(200));
    index->noteActivated(1);
    desktop.advance(1s);
    EXPECT_EQ(recency->rank(2), 2) << "no report is read any more";
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(publications, 0);
    EXPECT_EQ(refreshes, 0);
}

TEST_F(WindowIndexTest, ActivatingTheFirstOrAnUnknownWindowOnlyTouchesRecency) {
    start();
    index->noteActivated(3);
    index->noteActivated(42);
    EXPECT_EQ(publications, 0);
    EXPECT_EQ(recency->rank(3), 4);
    EXPECT_EQ(recency->rank(42), 5);
}

TEST_F(WindowIndexTest, StopEmptiesTheListAndKeepsTheRest) {
    start();
    const auto lastRefresh = index->lastRefresh().get();
    desktop.advance(1s);
    index->stop();
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(publications, 1);
    EXPECT_EQ(index->lastRefresh().get(), lastRefresh);
    EXPECT_EQ(recency->count(), 3U);
    EXPECT_EQ(desktop.liveObserverCount(), 0U);
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
    index->stop();
    EXPECT_EQ(publications, 1);
}

TEST_F(WindowIndexTest, StartAfterStopRefreshesAtOnceAndRemembersRecency) {
    start();
    index->noteActivated(1);
    index->stop();
    index->start();
    desktop.settle();
    EXPECT_THAT(ids(), ElementsAre(1, 3, 2));
}

TEST_F(WindowIndexTest, NoChangeReachesAStoppedIndex) {
    start();
    desktop.setSpaceChanged();
    index->stop();
    desktop.setSpaceChanged();
    observation->changes().send(WindowChange::structural());
    desktop.advance(10s);
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(refreshes, 0);
}

TEST_F(WindowIndexTest, ASnapshotInFlightDoesNotOutlastStop) {
    desktop.holdBackgroundWork(true);
    index->start();
    desktop.settle();
    index->refresh();  // would ask for another pass
    index->stop();
    desktop.holdBackgroundWork(false);
    desktop.advance(1s);
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(index->lastRefresh().get(), std::nullopt);
    EXPECT_EQ(desktop.heldBackgroundWorkCount(), 0U);
    EXPECT_THAT(desktop.windowNotifications(1), IsEmpty());
}

TEST_F(WindowIndexTest, StopBeforeTheFirstRefreshBeganPreventsIt) {
    index->start();
    index->stop();
    desktop.advance(1s);
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(index->lastRefresh().get(), std::nullopt);
}

TEST_F(WindowIndexTest, ARestartDuringAPassTakesANewSnapshot) {
    desktop.holdBackgroundWork(true);
    index->start();
    desktop.settle();
    index->stop();
    index->start();
    desktop.settle();
    EXPECT_EQ(desktop.heldBackgroundWorkCount(), 1U);
    desktop.holdBackgroundWork(false);
    desktop.settle();
    EXPECT_THAT(ids(), ElementsAre(3, 2, 1));
    EXPECT_EQ(refreshes, 1) << "only the snapshot that was begun since";
}

TEST_F(WindowIndexTest, ASubscriberMayStopTheIndexWhileItPublishes) {
    const auto stopper = index->windows().subscribeToChanges([this](const auto& windows) {
        if (!windows.empty()) {
            index->stop();
        }
    });
    index->start();
    desktop.settle();
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(index->lastRefresh().get(), std::nullopt);
    EXPECT_THAT(desktop.windowNotifications(1), IsEmpty());
}

TEST_F(WindowIndexTest, ADestroyedIndexIsSafeWithWorkInFlight) {
    desktop.holdBackgroundWork(true);
    index->start();
    desktop.settle();
    EXPECT_EQ(desktop.heldBackgroundWorkCount(), 1U);
    desktop.setSpaceChanged();
    index.reset();
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
    desktop.holdBackgroundWork(false);
    desktop.advance(1s);
    desktop.notifyLate(100, AccessibilityNotification::focusedWindowChanged);
    EXPECT_EQ(desktop.heldBackgroundWorkCount(), 0U);
    EXPECT_EQ(refreshes, 0);
}

TEST_F(WindowIndexTest, ADestroyedIndexIsSafeBeforeItsFirstRefresh) {
    index->start();
    index.reset();
    desktop.advance(1s);
    EXPECT_EQ(refreshes, 0);
}

TEST_F(WindowIndexTest, RevalidationFindsWhatNobodyReported) {
    start();
    desktop.advance(5s);
    desktop.closeWindow(3, true);
    desktop.advance(5s);
    EXPECT_EQ(refreshes, 0);
    desktop.advance(120ms);
    EXPECT_EQ(refreshes, 1);
    EXPECT_THAT(ids(), ElementsAre(2, 1));
}

}  // namespace
}  // namespace ferrowyn
