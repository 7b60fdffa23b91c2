#include "input/tap_thread.h"

#include <chrono>
#include <thread>
#include <variant>

#include "input/hot_key_monitor.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "tests/input/busy_event_taps.h"

namespace ferrowyn {
namespace {

/// A monitor whose tap is served by a real thread while the test plays the main thread.
class TapThreadTest : public ::testing::Test {
protected:
    SimulatedDesktop desktop;
    BusyEventTaps taps;
    Platform platform = replacedIn(desktop.platform(), {.eventTaps = &taps});
    HotKeyMonitor monitor{platform, SwitcherModifier::option};
};

TEST_F(TapThreadTest, BothThreadsUseTheStateAtTheSameTime) {
    int invokes = 0;
    int others = 0;
    int disables = 0;
    monitor.onCommand = [&](const SwitcherCommand& command) {
        ++(std::holds_alternative<command::Invoke>(command) ? invokes : others);
    };
    monitor.onTapDisabled = [&] { ++disables; };
    ASSERT_TRUE(monitor.start());
    constexpr int rounds = 400;
    for (int round = 1; round <= rounds; ++round) {
        taps.allow(6);
        auto& state = monitor.state();
        for (bool isVisible = true; taps.handledCount() < round * 6; isVisible = !isVisible) {
            state.setSwitcherVisible(isVisible);
            state.setHoldModeActive(isVisible);
            state.passSessionOn();
            state.setModifier(SwitcherModifier::option);
            desktop.settle();
        }
    }
    taps.waitUntilHandled();
    desktop.settle();
    EXPECT_EQ(taps.handledCount(), rounds * 6);
    // The tap of this test stays enabled, so that every disabling it reports is one of six events.
    EXPECT_EQ(disables, rounds);
    EXPECT_EQ(invokes, rounds) << "the trigger is held in one of six events, whatever is visible";
    monitor.state().setSwitcherVisible(true);
    invokes = 0;
    others = 0;
    taps.allow(6);
    taps.waitUntilHandled();
    desktop.settle();
    EXPECT_EQ(invokes, 1);
    EXPECT_GT(others, 0) << "the events before the disabling found the switcher visible";
    monitor.stop();
    EXPECT_EQ(taps.liveThreadCount(), 0);
}

TEST_F(TapThreadTest, StartsAndStopsOverAndOverWhileEventsPour) {
    int commands = 0;
    monitor.onCommand = [&](const SwitcherCommand&) { ++commands; };
    for (int round = 0; round < 60; ++round) {
        ASSERT_TRUE(monitor.start());
        taps.allow(50);
        if (round % 3 == 0) {
            desktop.settle();
        }
        monitor.stop();
        ASSERT_EQ(taps.liveThreadCount(), 0) << round;
        ASSERT_EQ(taps.latest(), nullptr) << "nothing keeps a stopped tap alive";
        const int before = commands;
        desktop.settle();
        ASSERT_EQ(commands, before) << "a stopped tap's commands reach nobody";
    }
}

TEST_F(TapThreadTest, TheLoopRunsInSlicesOfOneSecond) {
    ASSERT_TRUE(monitor.start());
    taps.allow(6);
    taps.waitUntilHandled();
    EXPECT_EQ(taps.lastSlice(), Seconds(1.0));
    monitor.stop();
}

TEST_F(TapThreadTest, StartingGoesOnAfterOneSecondWhenTheThreadIsSlow) {
    taps.holdThreads(true);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_TRUE(monitor.start());
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(950));
    EXPECT_TRUE(monitor.isRunning().get());
    taps.holdThreads(false);
    taps.allow(6);
    taps.waitUntilHandled();
    // The thread has announced its loop meanwhile, and stopping finds it: this would hang otherwise.
    monitor.stop();
    EXPECT_EQ(taps.liveThreadCount(), 0);
}

TEST_F(TapThreadTest, AThreadThatStartsAfterTheStopEndsAtOnce) {
    taps.holdThreads(true);
    EXPECT_TRUE(monitor.start());
    const auto tap = taps.latest();
    std::thread late([this] {
        while (monitor.state().keepRunning()) {
            std::this_thread::yield();
        }
        taps.holdThreads(false);
    });
    monitor.stop();
    late.join();
    EXPECT_EQ(taps.liveThreadCount(), 0);
    EXPECT_FALSE(tap->isEnabled()) << "an invalid tap stays off";
}

}  // namespace
}  // namespace ferrowyn
