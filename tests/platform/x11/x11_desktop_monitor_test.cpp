#include "platform/x11/x11_desktop_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "platform/simulated/simulated_main_loop.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class X11TitleChangesTest : public testing::Test {
protected:
    static constexpr xcb_window_t chatty = 1, quiet = 2;

    SimulatedMainLoop loop;
    std::vector<xcb_window_t> told;
    std::optional<X11TitleChanges> changes{std::in_place, loop,
                                           [this](xcb_window_t window) { told.push_back(window); }};
};

TEST_F(X11TitleChangesTest, BothPropertiesOfOneTitleAreToldOfOnceAndSoon) {
    changes->note(quiet);
    changes->note(quiet);
    EXPECT_THAT(told, IsEmpty());
    loop.advance(X11TitleChanges::gatheringTime);
    EXPECT_THAT(told, ElementsAre(quiet));
    loop.advance(Seconds(60));
    EXPECT_THAT(told, ElementsAre(quiet));
    EXPECT_EQ(loop.pendingTimerCount(), 0U) << "nothing wakes an idle program";
}

TEST_F(X11TitleChangesTest, AStreamOfChangesIsToldOfTwiceASecondAndItsLastOneToo) {
    for (int change = 0; change < 100; ++change) {
        changes->note(chatty);
        loop.advance(Seconds(0.02));
    }
    // At 0.05, 0.55, 1.05 and 1.55 s of the two.
    EXPECT_THAT(told, ElementsAre(chatty, chatty, chatty, chatty));
    loop.advance(X11TitleChanges::interval);
    EXPECT_EQ(told.size(), 5U) << "the last change";
    loop.advance(Seconds(60));
    EXPECT_EQ(told.size(), 5U);
}

TEST_F(X11TitleChangesTest, ChangesOfManyWindowsAreToldOfTogether) {
    std::vector<TimePoint> moments;
    changes.emplace(loop, [&](xcb_window_t window) {
        told.push_back(window);
        moments.push_back(loop.now());
    });
    changes->note(chatty);
    loop.advance(Seconds(0.1));
    told.clear();
    moments.clear();
    for (const auto window : {quiet, chatty, quiet, chatty}) {
        changes->note(window);
        loop.advance(Seconds(0.1));
    }
    EXPECT_THAT(told, IsEmpty()) << "many chatty windows are no steady stream either";
    loop.advance(X11TitleChanges::interval);
    EXPECT_THAT(told, UnorderedElementsAre(quiet, chatty));
    EXPECT_EQ(moments.front(), moments.back());
}

TEST_F(X11TitleChangesTest, WhoeverIsToldMayCauseTheNextChange) {
    changes.emplace(loop, [&](xcb_window_t window) {
        told.push_back(window);
        if (told.size() == 1) {
            changes->note(quiet);
        }
    });
    changes->note(chatty);
    loop.advance(X11TitleChanges::gatheringTime);
    EXPECT_THAT(told, ElementsAre(chatty));
    loop.advance(X11TitleChanges::interval);
    EXPECT_THAT(told, ElementsAre(chatty, quiet));
}

TEST_F(X11TitleChangesTest, NothingIsToldOfOnceItIsGone) {
    changes->note(quiet);
    changes.reset();
    loop.advance(Seconds(1));
    EXPECT_THAT(told, IsEmpty());
}

TEST(X11ReadingLimitTest, ABurstIsReadAtOnceAndAStreamFourTimesASecond) {
    SimulatedMainLoop loop;
    X11ReadingLimit limit(loop);
    int readings = 0;
    const auto streamFor = [&](Seconds duration) {
        const auto end = loop.now() + duration;
        for (readings = 0; loop.now() < end; loop.advance(Seconds(0.01))) {
            readings += limit.begin() == Seconds::zero() ? 1 : 0;
        }
    };
    for (int reading = 0; reading < X11ReadingLimit::burst; ++reading) {
        EXPECT_EQ(limit.begin(), Seconds::zero());
    }
    EXPECT_EQ(limit.begin(), X11ReadingLimit::interval);
    streamFor(Seconds(2));
    EXPECT_THAT(readings, testing::AllOf(testing::Ge(7), testing::Le(8)));
    loop.advance(Seconds(60));
    streamFor(Seconds(0.2));
    EXPECT_EQ(readings, X11ReadingLimit::burst) << "as many as at first after a long rest, and no more";
}

TEST(X11ReadingLimitTest, AReadingThatDoesNotWaitUsesUpTheLimitToo) {
    SimulatedMainLoop loop;
    X11ReadingLimit limit(loop);
    for (int reading = 0; reading < X11ReadingLimit::burst; ++reading) {
        limit.noteUnlimited();
    }
    EXPECT_EQ(limit.begin(), X11ReadingLimit::interval);
    loop.advance(X11ReadingLimit::interval / 2);
    limit.noteUnlimited();
    EXPECT_EQ(limit.begin(), X11ReadingLimit::interval) << "counted from the latest reading";
    loop.advance(X11ReadingLimit::interval);
    EXPECT_EQ(limit.begin(), Seconds::zero()) << "a stream of such readings leaves no debt";
}

}  // namespace
}  // namespace ferrowyn
