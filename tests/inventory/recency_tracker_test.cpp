#include "inventory/recency_tracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/inventory/inventory_doubles.h"

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;

class RecencyTrackerTest : public ::testing::Test {
protected:
    std::optional<Pid> frontmost;
    RecencyTracker tracker{[this] { return frontmost; }};

    [[nodiscard]] std::vector<WindowId> sorted(std::vector<AppWindow> windows) const {
        std::ranges::stable_sort(windows,
                                 [this](const AppWindow& a, const AppWindow& b) { return tracker.precedes(a, b); });
        std::vector<WindowId> ids;
        std::ranges::transform(windows, std::back_inserter(ids), &AppWindow::id);
        return ids;
    }
};

TEST_F(RecencyTrackerTest, KnowsNothingAtFirst) {
    EXPECT_EQ(tracker.count(), 0U);
    EXPECT_EQ(tracker.rank(1), std::nullopt);
}

TEST_F(RecencyTrackerTest, TheWindowTouchedLastComesFirst) {
    tracker.touch(1);
    tracker.touch(2);
    EXPECT_EQ(tracker.rank(1), 1);
    EXPECT_EQ(tracker.rank(2), 2);
    EXPECT_THAT(sorted({testWindow(1, 0), testWindow(2, 1)}), ElementsAre(2, 1));
}

TEST_F(RecencyTrackerTest, TouchingAgainReplacesTheRank) {
    tracker.touch(1);
    tracker.touch(2);
    tracker.touch(1);
    EXPECT_EQ(tracker.count(), 2U);
    EXPECT_EQ(tracker.rank(1), 3);
    EXPECT_EQ(tracker.rank(2), 2);
}

TEST_F(RecencyTrackerTest, SeedsFromTheStackingOrder) {
    tracker.seedIfEmpty({testWindow(10, 0), testWindow(11, 1), testWindow(12, 2)});
    EXPECT_EQ(tracker.rank(10), 3);
    EXPECT_EQ(tracker.rank(11), 2);
    EXPECT_EQ(tracker.rank(12), 1);
}

TEST_F(RecencyTrackerTest, SeedingPutsTheFocusedWindowOfTheFrontmostApplicationOnTop) {
    auto focused = testWindow(12, 2);
    focused.isAppFocusedWindow = true;
    frontmost = 100;
    tracker.seedIfEmpty({testWindow(10, 0), testWindow(11, 1), focused});
    EXPECT_EQ(tracker.rank(12), 4);
    EXPECT_THAT(sorted({testWindow(10, 0), testWindow(11, 1), focused}), ElementsAre(12, 10, 11));
}

TEST_F(RecencyTrackerTest, SeedingConsidersOnlyTheFirstFocusedWindow) {
    auto ofAnother = testWindow(10, 1, 200);
    auto ofFrontmost = testWindow(11, 2, 100);
    ofAnother.isAppFocusedWindow = true;
    ofFrontmost.isAppFocusedWindow = true;
    frontmost = 100;
    tracker.seedIfEmpty({testWindow(9, 0, 300), ofAnother, ofFrontmost});
    EXPECT_EQ(tracker.rank(11), 1);
    EXPECT_EQ(tracker.rank(10), 2);
    EXPECT_EQ(tracker.rank(9), 3);
}

TEST_F(RecencyTrackerTest, SeedingDoesWithoutAFrontmostApplication) {
    auto focused = testWindow(11, 1);
    focused.isAppFocusedWindow = true;
    tracker.seedIfEmpty({testWindow(10, 0), focused});
    EXPECT_EQ(tracker.rank(10), 2);
    EXPECT_EQ(tracker.rank(11), 1);
}

TEST_F(RecencyTrackerTest, SeedingAUsedTrackerChangesNothing) {
    tracker.touch(99);
    auto focused = testWindow(10, 0);
    focused.isAppFocusedWindow = true;
    frontmost = 100;
    tracker.seedIfEmpty({focused, testWindow(11, 1)});
    EXPECT_EQ(tracker.count(), 1U);
    EXPECT_EQ(tracker.rank(99), 1);
}

TEST_F(RecencyTrackerTest, UnlistedWindowsGetNoRankAndSortLast) {
    const auto unlisted = testWindow(1, unlistedZOrder, 100, "Aaa");
    const auto listed = testWindow(2, 5);
    tracker.seedIfEmpty({unlisted, listed});
    EXPECT_EQ(tracker.rank(1), std::nullopt);
    EXPECT_EQ(tracker.rank(2), 1);
    EXPECT_THAT(sorted({unlisted, listed}), ElementsAre(2, 1));
    EXPECT_EQ(unlistedZOrder, 9223372036854775807);
}

TEST_F(RecencyTrackerTest, AnUnlistedFocusedWindowOfTheFrontmostApplicationIsStillTouched) {
    auto focused = testWindow(1, unlistedZOrder);
    focused.isAppFocusedWindow = true;
    frontmost = 100;
    tracker.seedIfEmpty({focused, testWindow(2, 0)});
    EXPECT_EQ(tracker.rank(1), 2);
}

TEST_F(RecencyTrackerTest, ForgetsTheOlderHalfWhenTheTableOverflows) {
    EXPECT_EQ(RecencyTracker::maximumEntries, 2048U);
    for (WindowId id = 1; id <= 2048; ++id) {
        tracker.touch(id);
    }
    EXPECT_EQ(tracker.count(), 2048U);
    tracker.touch(2049);
    EXPECT_EQ(tracker.count(), 1024U);
    EXPECT_EQ(tracker.rank(1025), std::nullopt);
    EXPECT_EQ(tracker.rank(1026), 1026);
    EXPECT_EQ(tracker.rank(2049), 2049);
    tracker.touch(5);
    EXPECT_EQ(tracker.rank(5), 2050);
}

TEST_F(RecencyTrackerTest, SeedingMoreWindowsThanTheTableHoldsKeepsThoseInFront) {
    // The 2049th from the back overflows the table, and the older half goes; the last two are then ranked on top.
    constexpr WindowId count = 2051;
    std::vector<AppWindow> windows;
    for (WindowId id = 1; id <= count; ++id) {
        windows.push_back(testWindow(id, id));
    }
    tracker.seedIfEmpty(windows);
    EXPECT_EQ(tracker.count(), 1026U);
    EXPECT_EQ(tracker.latestRank(), 2051);
    EXPECT_EQ(tracker.rank(1), 2051) << "the front-most";
    EXPECT_EQ(tracker.rank(1026), 1026);
    EXPECT_EQ(tracker.rank(1027), std::nullopt);
    EXPECT_EQ(tracker.rank(count), std::nullopt);
}

TEST_F(RecencyTrackerTest, RetainOnlyKeepsRanksAndCounter) {
    tracker.touch(5);
    tracker.touch(6);
    tracker.touch(7);
    tracker.retainOnly({5, 7});
    EXPECT_EQ(tracker.count(), 2U);
    EXPECT_EQ(tracker.rank(5), 1);
    EXPECT_EQ(tracker.rank(7), 3);
    tracker.touch(8);
    EXPECT_EQ(tracker.rank(8), 4);
}

TEST_F(RecencyTrackerTest, RetainOnlySparesTheRanksGivenAfterTheOneNamed) {
    tracker.touch(5);
    tracker.touch(6);
    tracker.touch(7);
    tracker.retainOnly({}, 2);
    EXPECT_EQ(tracker.rank(5), std::nullopt);
    EXPECT_EQ(tracker.rank(6), std::nullopt);
    EXPECT_EQ(tracker.rank(7), 3);
}

TEST_F(RecencyTrackerTest, RankedWindowsPrecedeUnrankedOnes) {
    tracker.touch(1);
    const auto ranked = testWindow(1, 9);
    const auto inFront = testWindow(2, 0);
    EXPECT_TRUE(tracker.precedes(ranked, inFront));
    EXPECT_FALSE(tracker.precedes(inFront, ranked));
}

TEST_F(RecencyTrackerTest, OrdersUnrankedWindowsByStackingThenNameThenId) {
    EXPECT_TRUE(tracker.precedes(testWindow(2, 0, 1, "Z"), testWindow(1, 1, 1, "A")));
    EXPECT_TRUE(tracker.precedes(testWindow(1, 0), testWindow(2, 0)));
    EXPECT_FALSE(tracker.precedes(testWindow(2, 0), testWindow(1, 0)));
    EXPECT_TRUE(tracker.precedes(testWindow(2, 0, 1, "App 9"), testWindow(1, 0, 2, "App 10")));
    EXPECT_FALSE(tracker.precedes(testWindow(1, 0, 2, "App 10"), testWindow(2, 0, 1, "App 9")));
    EXPECT_TRUE(tracker.precedes(testWindow(2, 0, 1, "alpha"), testWindow(1, 0, 2, "Beta"))) << "case is ignored";
}

TEST_F(RecencyTrackerTest, NeverOrdersAWindowBeforeItself) {
    const auto window = testWindow(1, 0);
    EXPECT_FALSE(tracker.precedes(window, window));
    tracker.touch(1);
    EXPECT_FALSE(tracker.precedes(window, window));
}

TEST_F(RecencyTrackerTest, AnEmptyTrackerOrdersTheSameWindowsInOneWayOnly) {
    // Names that a person reads as equal still have one order, or the sort would depend on where it began.
    const auto a = testWindow(3, 0, 1, "App 01");
    const auto b = testWindow(1, 0, 2, "App 1");
    const auto c = testWindow(2, 0, 3, "App 01");
    const auto expected = sorted({a, b, c});
    EXPECT_EQ(sorted({b, c, a}), expected);
    EXPECT_EQ(sorted({c, a, b}), expected);
    EXPECT_EQ(sorted({c, b, a}), expected);
}

}  // namespace
}  // namespace ferrowyn
