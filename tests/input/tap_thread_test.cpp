#include "input/tap_thread.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>
#include <variant>

#include "input/hot_key_monitor.h"
#include "platform/event_tap.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "tests/input/tap_doubles.h"

namespace ferrowyn {
namespace {

/// Makes taps whose own, real thread asks them about one event after the other, as many as the test allows.
class BusyEventTaps final : public EventTaps {
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
    /// For how long the tap thread last ran its loop.
    [[nodiscard]] Seconds lastSlice() const { return Seconds(lastSlice_); }
    [[nodiscard]] int liveThreadCount() const { return liveThreads_; }
    [[nodiscard]] std::shared_ptr<EventTap> latest() const { return latest_.lock(); }

    /// While held, a started thread does not get to its body.
    void holdThreads(bool isHeld) {
        const std::scoped_lock guard(lock_);
        areThreadsHeld_ = isHeld;
        changed_.notify_all();
    }

    [[nodiscard]] std::shared_ptr<EventTap> create(std::uint64_t, SwitcherModifier, Callback callback) override {
        auto tap = std::make_shared<Tap>(std::move(callback));
        latest_ = tap;
        return tap;
    }
    [[nodiscard]] std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) override {
        return std::make_shared<Source>(std::static_pointer_cast<Tap>(tap));
    }
    [[nodiscard]] std::shared_ptr<TapRunLoop> currentRunLoop() override { return std::make_shared<Loop>(*this); }
    [[nodiscard]] std::unique_ptr<TapThread> startThread(std::string_view, std::function<void()> body) override {
        return std::make_unique<Thread>([this, body = std::move(body)] {
            ++liveThreads_;
            {
                std::unique_lock guard(lock_);
                changed_.wait(guard, [this] { return !areThreadsHeld_; });
            }
            body();
            --liveThreads_;
        });
    }

private:
    class Tap final : public EventTap {
    public:
        explicit Tap(Callback callback) : callback_(std::move(callback)) {}
        void setEnabled(bool enabled) override { isEnabled_ = enabled && isValid_; }
        [[nodiscard]] bool isEnabled() const override { return isEnabled_; }
        void invalidate() override {
            isValid_ = false;
            isEnabled_ = false;
        }
        void setTrigger(SwitcherModifier) override {}
        void openSession(TapSession) override {}
        void closeSession(TapSession) override {}
        void ask(const TapEvent& event) const {
            if (isEnabled_) {
                static_cast<void>(callback_(event));
            }
        }

    private:
        const Callback callback_;
        std::atomic<bool> isEnabled_ = false;
        std::atomic<bool> isValid_ = true;
    };

    class Loop final : public TapRunLoop {
    public:
        explicit Loop(BusyEventTaps& taps) : taps_(taps) {}
        void serve(std::shared_ptr<Tap> tap) { tap_ = std::move(tap); }
        void runFor(Seconds slice) override {
            taps_.lastSlice_ = slice.count();
            while (taps_.takeOne(*this)) {
                tap_->ask(nextEvent());
                taps_.finishOne();
            }
        }
        void stop() override { taps_.stop(*this); }

        bool isStopped = false;

    private:
        StubTapEvent nextEvent() {
            using Type = TapEvent::Type;
            switch (++count_ % 6) {
                case 0:
                    return {Type::flagsChanged, 58, 0};
                case 1:
                    return {Type::keyDown, 48, event_flags::option};
                case 2:
                    return {Type::keyUp, 48, event_flags::option};
                case 3:
                    return {Type::keyDown, 124, event_flags::option};
                case 4:
                    return {Type::keyDown, 0, 0};
                default:
                    return {Type::disabledByUserInput, 0, 0};
            }
        }

        BusyEventTaps& taps_;
        std::shared_ptr<Tap> tap_;
        int count_ = 0;
    };

    class Source final : public TapRunLoopSource {
    public:
        explicit Source(std::shared_ptr<Tap> tap) : tap_(std::move(tap)) {}
        void addTo(TapRunLoop& loop) override { static_cast<Loop&>(loop).serve(tap_); }
        void removeFrom(TapRunLoop&) override {}

    private:
        std::shared_ptr<Tap> tap_;
    };

    class Thread final : public TapThread {
    public:
        explicit Thread(std::function<void()> body) : thread_(std::move(body)) {}
        ~Thread() override { thread_.join(); }
        Thread(const Thread&) = delete;
        Thread& operator=(const Thread&) = delete;

    private:
        std::thread thread_;
    };

    /// Waits for an event that may be handled; false once the loop was stopped.
    bool takeOne(Loop& loop) {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [&] { return allowed_ > 0 || loop.isStopped; });
        return !std::exchange(loop.isStopped, false);
    }
    void finishOne() {
        ++handled_;
        const std::scoped_lock guard(lock_);
        --allowed_;
        changed_.notify_all();
    }
    void stop(Loop& loop) {
        const std::scoped_lock guard(lock_);
        loop.isStopped = true;
        changed_.notify_all();
    }

    std::mutex lock_;
    std::condition_variable changed_;
    int allowed_ = 0;
    bool areThreadsHeld_ = false;
    std::atomic<int> handled_ = 0;
    std::atomic<double> lastSlice_ = 0;
    std::atomic<int> liveThreads_ = 0;
    std::weak_ptr<EventTap> latest_;
};

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
    EXPECT_EQ(taps.handledCount(), rounds * 6);
    // The tap of this test stays enabled, so that every disabling it reports is one of six events.
    EXPECT_EQ(disables, rounds);
    EXPECT_EQ(invokes, rounds) << "the trigger is held in one of six events, whatever is visible";
    monitor.state().openSession(false);
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
