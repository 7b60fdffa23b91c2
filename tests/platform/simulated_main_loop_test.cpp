#include "platform/simulated/simulated_main_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SimulatedMainLoopTest : public ::testing::Test {
protected:
    SimulatedMainLoop loop;
    std::vector<std::string> events;

    [[nodiscard]] MainLoop::Task event(std::string name) {
        return [this, name = std::move(name)] { events.push_back(name); };
    }
};

TEST_F(SimulatedMainLoopTest, TimePassesOnlyWhenItIsToldTo) {
    const auto beginning = loop.now();
    loop.settle();
    EXPECT_EQ(loop.now(), beginning);
    for (int step = 0; step < 10; ++step) {
        loop.advance(50ms);
    }
    EXPECT_EQ(loop.now() - beginning, Seconds(0.5)) << "exactly: the steps do not add up an error";
}

TEST_F(SimulatedMainLoopTest, TheCalendarGoesOnWithTheClockFromWhereItIsSet) {
    EXPECT_EQ(loop.wallTime(), WallTime(Seconds(1'767'225'600))) << "2026-01-01 00:00 UTC";
    loop.advance(90s);
    EXPECT_EQ(loop.wallTime(), WallTime(Seconds(1'767'225'690)));
    const auto before = loop.now();
    loop.setWallTime(WallTime(Seconds(1000)));
    loop.advance(1s);
    EXPECT_EQ(loop.wallTime(), WallTime(Seconds(1001)));
    EXPECT_EQ(loop.now() - before, Seconds(1)) << "setting the calendar moves no timer";
}

TEST_F(SimulatedMainLoopTest, RunsTimersInTheOrderOfTheirMoments) {
    const auto second = loop.after(2s, event("second"));
    const auto first = loop.after(1s, event("first"));
    const auto alsoSecond = loop.after(2s, event("also second"));
    loop.advance(1999ms);
    EXPECT_THAT(events, ElementsAre("first"));
    loop.advance(1ms);
    EXPECT_THAT(events, ElementsAre("first", "second", "also second"));
}

TEST_F(SimulatedMainLoopTest, OneThingAtATimeRunsWhenThatIsAskedFor) {
    loop.post(event("first"));
    loop.post(event("second"));
    const auto timer = loop.after(1s, event("not due"));
    EXPECT_EQ(loop.postedTaskCount(), 2U);
    EXPECT_TRUE(loop.runOne());
    EXPECT_THAT(events, ElementsAre("first"));
    EXPECT_TRUE(loop.runOne());
    EXPECT_FALSE(loop.runOne());
    EXPECT_THAT(events, ElementsAre("first", "second"));
    EXPECT_EQ(loop.postedTaskCount(), 0U);
}

TEST_F(SimulatedMainLoopTest, WhatFallsDueWhileTheLoopIsStalledRunsAfterwards) {
    const auto beginning = loop.now();
    const auto timer = loop.after(1s, event("timer"));
    loop.stall(5s);
    EXPECT_THAT(events, IsEmpty());
    EXPECT_EQ(loop.now() - beginning, Seconds(5));
    loop.settle();
    EXPECT_THAT(events, ElementsAre("timer"));
}

TEST_F(SimulatedMainLoopTest, EachTimerRunsAtItsOwnMoment) {
    std::vector<TimePoint> moments;
    const auto timer = loop.every(3s, [&] { moments.push_back(loop.now()); });
    const auto beginning = loop.now();
    loop.advance(10s);
    EXPECT_THAT(moments, ElementsAre(beginning + 3s, beginning + 6s, beginning + 9s));
    EXPECT_EQ(loop.now(), beginning + 10s);
}

TEST_F(SimulatedMainLoopTest, ATimerSetByATimerFallsDueInTheSameAdvance) {
    Subscription inner;
    const auto outer = loop.after(1s, [&] { inner = loop.after(1s, event("inner")); });
    loop.advance(2s);
    EXPECT_THAT(events, ElementsAre("inner"));
}

TEST_F(SimulatedMainLoopTest, ADroppedTokenCancels) {
    auto timer = loop.every(1s, event("tick"));
    loop.advance(1s);
    EXPECT_EQ(loop.pendingTimerCount(), 1U);
    timer.reset();
    EXPECT_EQ(loop.pendingTimerCount(), 0U);
    loop.advance(5s);
    EXPECT_THAT(events, ElementsAre("tick"));
}

TEST_F(SimulatedMainLoopTest, ARepeatingTimerMayEndItself) {
    Subscription timer;
    timer = loop.every(1s, [&] {
        events.emplace_back("tick");
        timer.reset();
    });
    loop.advance(5s);
    EXPECT_THAT(events, ElementsAre("tick"));
    EXPECT_EQ(loop.pendingTimerCount(), 0U);
}

TEST_F(SimulatedMainLoopTest, ATokenMayOutliveTheLoop) {
    auto other = std::make_unique<SimulatedMainLoop>();
    auto timer = other->after(1s, event("never"));
    other.reset();
    timer.reset();
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(SimulatedMainLoopTest, PostedTasksRunInOrderBeforeTimersOfTheSameMoment) {
    const auto timer = loop.after(0s, event("timer"));
    loop.post(event("first"));
    loop.post([this] {
        events.emplace_back("second");
        loop.post(event("third"));
    });
    EXPECT_THAT(events, IsEmpty()) << "never before post returned";
    loop.settle();
    EXPECT_THAT(events, ElementsAre("first", "second", "third", "timer"));
}

TEST_F(SimulatedMainLoopTest, TakesTasksFromOtherThreads) {
    std::thread([this] {
        EXPECT_FALSE(loop.isMainThread());
        for (int task = 0; task < 3; ++task) {
            loop.post(event("task " + std::to_string(task)));
        }
    }).join();
    EXPECT_TRUE(loop.isMainThread());
    loop.settle();
    EXPECT_THAT(events, ElementsAre("task 0", "task 1", "task 2"));
}

TEST_F(SimulatedMainLoopTest, IsNotTheMainThreadWhileItPlaysAWorker) {
    loop.runAsWorker([this] { EXPECT_FALSE(loop.isMainThread()); });
    EXPECT_TRUE(loop.isMainThread());
}

}  // namespace
}  // namespace ferrowyn
