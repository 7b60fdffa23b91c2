#include <array>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <utility>
#include <variant>

#include "input/hot_key_monitor.h"
#include "platform/keyboard_tap.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "tests/input/tap_doubles.h"

namespace ferrowyn {
namespace {

/// Starts taps that ask about one event after the other on a thread of their own, as many as the test allows. They give
/// up every second session that they request, the first one included.
class BusyKeyboardTaps final : public KeyboardTaps {
public:
    /// Lets the tap thread handle this many more events.
    void allow(int events) {
        const std::scoped_lock guard(lock_);
        allowed_ += events;
        changed_.notify_all();
    }
    /// Waits until every allowed event has been handled.
    void waitUntilHandled() {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [this] { return allowed_ == 0; });
    }
    [[nodiscard]] int handledCount() const { return handled_; }
    [[nodiscard]] int liveTapCount() const { return liveTaps_; }
    /// How many requests the main thread has found given up.
    [[nodiscard]] int foundGivenUpCount() const { return foundGivenUp_; }

    [[nodiscard]] Start start(SwitcherModifier, TapCallback callback) override {
        return {std::make_unique<Tap>(*this, std::move(callback)), {}};
    }

private:
    class Tap final : public KeyboardTap {
    public:
        Tap(BusyKeyboardTaps& taps, TapCallback callback)
            : taps_(taps), callback_(std::move(callback)), thread_([this] { run(); }) {
            ++taps_.liveTaps_;
        }
        ~Tap() override {
            {
                const std::scoped_lock guard(taps_.lock_);
                isEnding_ = true;
                taps_.changed_.notify_all();
            }
            thread_.join();
            --taps_.liveTaps_;
        }
        Tap(const Tap&) = delete;
        Tap& operator=(const Tap&) = delete;

        void setEnabled(bool enabled) override { isEnabled_ = enabled; }
        [[nodiscard]] bool isEnabled() const override { return isEnabled_; }
        void setTrigger(SwitcherModifier) override {}
        void openSession(TapSession) override {}
        void closeSession(TapSession session) override {
            const std::scoped_lock guard(taps_.lock_);
            givenUp_.erase(session);
        }
        [[nodiscard]] bool hasGivenUp(TapSession session) const override {
            const std::scoped_lock guard(taps_.lock_);
            const bool isGivenUp = givenUp_.contains(session);
            taps_.foundGivenUp_ += isGivenUp ? 1 : 0;
            return isGivenUp;
        }

    private:
        void run() {
            using Type = TapEvent::Type;
            const std::array<StubTapEvent, eventsInARound> round{StubTapEvent{Type::keyDown, 48, event_flags::option},
                                                                 StubTapEvent{Type::keyUp, 48, event_flags::option},
                                                                 StubTapEvent{Type::keyDown, 124, event_flags::option},
                                                                 StubTapEvent{Type::keyDown, 0, 0},
                                                                 StubTapEvent{Type::disabledByUserInput, 0, 0},
                                                                 StubTapEvent{Type::flagsChanged, 58, 0}};
            for (std::size_t event = 0; waitForOne(); event = (event + 1) % round.size()) {
                TapVerdict verdict;
                if (isEnabled_) {
                    verdict = callback_(round.at(event));
                }
                const std::scoped_lock guard(taps_.lock_);
                if (verdict.requestedSession && std::exchange(givesUp_, !givesUp_)) {
                    givenUp_.insert(*verdict.requestedSession);
                }
                ++taps_.handled_;
                --taps_.allowed_;
                taps_.changed_.notify_all();
            }
        }
        /// Waits for an event that may be handled; false once the tap is being removed.
        bool waitForOne() {
            std::unique_lock guard(taps_.lock_);
            taps_.changed_.wait(guard, [&] { return taps_.allowed_ > 0 || isEnding_; });
            return !isEnding_;
        }

        BusyKeyboardTaps& taps_;
        const TapCallback callback_;
        std::atomic<bool> isEnabled_ = true;
        bool isEnding_ = false;
        bool givesUp_ = true;
        std::set<TapSession> givenUp_;
        std::thread thread_;
    };

public:
    static constexpr int eventsInARound = 6;

private:
    std::mutex lock_;
    std::condition_variable changed_;
    int allowed_ = 0;
    std::atomic<int> handled_ = 0;
    std::atomic<int> liveTaps_ = 0;
    std::atomic<int> foundGivenUp_ = 0;
};

/// A monitor whose tap is served by a real thread while the test plays the main thread.
class HotKeyMonitorThreadsTest : public ::testing::Test {
protected:
    static constexpr int round = BusyKeyboardTaps::eventsInARound;

    SimulatedDesktop desktop;
    BusyKeyboardTaps taps;
    Platform platform = replacedIn(desktop.platform(), {.keyboardTaps = &taps});
    HotKeyMonitor monitor{platform, SwitcherModifier::option};
};

TEST_F(HotKeyMonitorThreadsTest, BothThreadsUseTheStateAtTheSameTime) {
    int invokes = 0;
    int others = 0;
    int disables = 0;
    monitor.onCommand = [&](const SwitcherCommand& command) {
        ++(std::holds_alternative<command::Invoke>(command) ? invokes : others);
    };
    monitor.onTapDisabled = [&] { ++disables; };
    ASSERT_TRUE(monitor.start());
    taps.allow(round);
    taps.waitUntilHandled();
    desktop.settle();
    EXPECT_EQ(invokes, 0);
    EXPECT_EQ(taps.foundGivenUpCount(), 1);
    constexpr int rounds = 400;
    for (int count = 2; count <= rounds; ++count) {
        taps.allow(round);
        auto& state = monitor.state();
        for (bool isVisible = true; taps.handledCount() < count * round; isVisible = !isVisible) {
            if (isVisible) {
                state.openSession(true);
            } else {
                state.closeSession();
            }
            state.setModifier(SwitcherModifier::option);
            desktop.settle();
        }
    }
    taps.waitUntilHandled();
    desktop.settle();
    EXPECT_EQ(taps.handledCount(), rounds * round);
    // The tap of this test stays enabled, so that every disabling it reports is one of six events.
    EXPECT_EQ(disables, rounds);
    EXPECT_EQ(invokes + taps.foundGivenUpCount(), rounds)
        << "the trigger is held in one of six events, whatever is visible";
    monitor.state().openSession(false);
    invokes = 0;
    others = 0;
    taps.allow(round);
    taps.waitUntilHandled();
    desktop.settle();
    EXPECT_EQ(invokes, 1);
    EXPECT_GT(others, 0) << "the events before the disabling found the switcher visible";
    monitor.stop();
    EXPECT_EQ(taps.liveTapCount(), 0);
}

TEST_F(HotKeyMonitorThreadsTest, StartsAndStopsOverAndOverWhileEventsPour) {
    int commands = 0;
    monitor.onCommand = [&](const SwitcherCommand&) { ++commands; };
    for (int count = 0; count < 60; ++count) {
        ASSERT_TRUE(monitor.start());
        taps.allow(50);
        if (count % 3 == 0) {
            desktop.settle();
        }
        monitor.stop();
        ASSERT_EQ(taps.liveTapCount(), 0) << "nothing keeps a stopped tap alive: " << count;
        const int before = commands;
        desktop.settle();
        ASSERT_EQ(commands, before) << "a stopped tap's commands reach nobody";
    }
}

}  // namespace
}  // namespace ferrowyn
