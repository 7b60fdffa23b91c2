#include "tests/platform/contract/contracts.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace ferrowyn::contract {

namespace {

using Type = TapEvent::Type;

constexpr std::uint16_t tabKey = 48;
/// Longer than any test: a wait of this length has failed.
constexpr Seconds longSlice{600};
constexpr auto patience = std::chrono::seconds(30);

/// A tap that swallows the trigger, and the thread that serves it.
class ServedTap {
public:
    enum class Enabling { beforeItIsServed, onItsThread };

    explicit ServedTap(EventTaps& taps, Enabling enabling = Enabling::onItsThread) : taps_(taps) {
        tap = taps.create(EventTaps::keyboardMask, SwitcherModifier::option,
                          [this](const TapEvent& event) { return handle(event); });
        source_ = taps.createSource(tap);
        if (enabling == Enabling::beforeItIsServed) {
            tap->setEnabled(true);
        }
        std::promise<std::shared_ptr<TapRunLoop>> started;
        thread_ = taps.startThread("contract-tap", [this, enabling, &started] {
            const auto loop = taps_.currentRunLoop();
            source_->addTo(*loop);
            if (enabling == Enabling::onItsThread) {
                tap->setEnabled(true);
            }
            started.set_value(loop);
            while (!isEnding_) {
                loop->runFor(Seconds(1));
                runErrand();
            }
        });
        loop_ = started.get_future().get();
    }
    ~ServedTap() {
        isEnding_ = true;
        tap->setEnabled(false);
        source_->removeFrom(*loop_);
        loop_->stop();
        thread_.reset();
        tap->invalidate();
    }
    ServedTap(const ServedTap&) = delete;
    ServedTap& operator=(const ServedTap&) = delete;

    /// On the tap's own thread, where what is asked of a tap is done when the call returns; what others ask may be left
    /// to that thread.
    void setEnabled(bool enabled) {
        std::unique_lock lock(lock_);
        errand_ = [this, enabled] { tap->setEnabled(enabled); };
        loop_->stop();
        ASSERT_TRUE(changed_.wait_for(lock, patience, [&] { return errand_ == nullptr; }));
    }
    [[nodiscard]] bool waitForTriggers(int count) {
        std::unique_lock lock(lock_);
        return changed_.wait_for(lock, patience, [&] { return triggers_ >= count; });
    }
    /// The main thread opens no session for any of the triggers.
    void refuseSession() { tap->closeSession(sessionOf(triggers())); }
    [[nodiscard]] int triggers() {
        const std::scoped_lock lock(lock_);
        return triggers_;
    }

    std::shared_ptr<EventTap> tap;

private:
    static TapSession sessionOf(int trigger) { return TapSession{static_cast<std::uint64_t>(trigger)}; }
    void runErrand() {
        std::unique_lock lock(lock_);
        if (const auto errand = errand_) {
            // It may call back.
            lock.unlock();
            errand();
            lock.lock();
            errand_ = nullptr;
            changed_.notify_all();
        }
    }
    TapVerdict handle(const TapEvent& event) {
        if (event.type() != Type::keyDown || event.keyCode() != tabKey || (event.flags() & event_flags::option) == 0) {
            return {};
        }
        int trigger = 0;
        {
            const std::scoped_lock lock(lock_);
            trigger = ++triggers_;
        }
        changed_.notify_all();
        return {.isSwallowed = true, .requestedSession = sessionOf(trigger)};
    }

    EventTaps& taps_;
    std::shared_ptr<TapRunLoopSource> source_;
    std::shared_ptr<TapRunLoop> loop_;
    std::atomic<bool> isEnding_{false};
    std::mutex lock_;
    std::condition_variable changed_;
    int triggers_ = 0;
    std::function<void()> errand_;
    std::unique_ptr<TapThread> thread_;
};

}  // namespace

bool EventTapContract::applicationSoonGetsTrigger() {
    const auto end = std::chrono::steady_clock::now() + patience;
    do {
        driver->pressTrigger();
        driver->releaseTrigger();
        if (driver->applicationGotTrigger()) {
            return true;
        }
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

TEST_P(EventTapContract, ATapIsDisabledAtFirstAndNoKeyWaitsForIt) {
    int calls = 0;
    const auto tap = driver->taps().create(EventTaps::keyboardMask, SwitcherModifier::option, [&](const TapEvent&) {
        ++calls;
        return TapVerdict{.isSwallowed = true};
    });
    ASSERT_NE(tap, nullptr);
    EXPECT_FALSE(tap->isEnabled());
    driver->pressTrigger();
    driver->releaseTrigger();
    EXPECT_TRUE(driver->applicationGotTrigger());
    EXPECT_EQ(calls, 0);
}

TEST_P(EventTapContract, AnEnabledTapThatNobodyServesSaysSoAndNoKeyWaitsForIt) {
    int calls = 0;
    const auto tap = driver->taps().create(EventTaps::keyboardMask, SwitcherModifier::option, [&](const TapEvent&) {
        ++calls;
        return TapVerdict{.isSwallowed = true};
    });
    ASSERT_NE(tap, nullptr);
    tap->setEnabled(true);
    EXPECT_TRUE(tap->isEnabled());
    driver->pressTrigger();
    driver->releaseTrigger();
    EXPECT_TRUE(driver->applicationGotTrigger());
    EXPECT_EQ(calls, 0);
    tap->setEnabled(false);
    EXPECT_FALSE(tap->isEnabled());
}

TEST_P(EventTapContract, ATapThatIsEnabledBeforeItIsServedWorksOnceItIs) {
    ServedTap served(driver->taps(), ServedTap::Enabling::beforeItIsServed);
    EXPECT_TRUE(served.tap->isEnabled());
    driver->pressTrigger();
    ASSERT_TRUE(served.waitForTriggers(1));
    served.refuseSession();
    driver->releaseTrigger();
    EXPECT_FALSE(driver->applicationGotTrigger());
}

TEST_P(EventTapContract, AServedTapSeesTheTriggerAndKeepsItFromTheApplication) {
    ServedTap served(driver->taps());
    EXPECT_TRUE(served.tap->isEnabled());
    driver->pressTrigger();
    ASSERT_TRUE(served.waitForTriggers(1));
    served.refuseSession();
    driver->releaseTrigger();
    EXPECT_FALSE(driver->applicationGotTrigger());
    driver->pressTrigger();
    ASSERT_TRUE(served.waitForTriggers(2)) << "the next one is seen as the first was";
    served.refuseSession();
    driver->releaseTrigger();
    EXPECT_FALSE(driver->applicationGotTrigger());
}

TEST_P(EventTapContract, ADisabledTapLetsEverythingPassUntilItIsEnabledAgain) {
    ServedTap served(driver->taps());
    served.setEnabled(false);
    EXPECT_FALSE(served.tap->isEnabled());
    EXPECT_TRUE(applicationSoonGetsTrigger());
    EXPECT_EQ(served.triggers(), 0);
    served.setEnabled(true);
    EXPECT_TRUE(served.tap->isEnabled());
    driver->pressTrigger();
    ASSERT_TRUE(served.waitForTriggers(1));
    served.refuseSession();
    driver->releaseTrigger();
    EXPECT_FALSE(driver->applicationGotTrigger());
}

TEST_P(EventTapContract, AnInvalidatedTapIsDoneForGood) {
    ServedTap served(driver->taps());
    served.tap->invalidate();
    EXPECT_FALSE(served.tap->isEnabled());
    served.tap->setEnabled(true);
    EXPECT_FALSE(served.tap->isEnabled());
    driver->pressTrigger();
    driver->releaseTrigger();
    EXPECT_TRUE(driver->applicationGotTrigger());
    EXPECT_EQ(served.triggers(), 0);
    served.tap->invalidate();
}

TEST_P(EventTapContract, ATapThatIsDroppedLetsTheNextOneTakeItsPlace) {
    { const ServedTap first(driver->taps()); }
    ServedTap second(driver->taps());
    driver->pressTrigger();
    ASSERT_TRUE(second.waitForTriggers(1));
    second.refuseSession();
    driver->releaseTrigger();
    EXPECT_FALSE(driver->applicationGotTrigger());
}

TEST_P(EventTapContract, AStopEndsTheSliceThatRunsAndOneThatHasYetToBegin) {
    for (const bool stopsFirst : {true, false}) {
        std::promise<std::shared_ptr<TapRunLoop>> made;
        std::promise<void> mayRun;
        std::promise<void> ended;
        const auto thread = driver->taps().startThread("contract-loop", [&] {
            const auto loop = driver->taps().currentRunLoop();
            made.set_value(loop);
            if (stopsFirst) {
                mayRun.get_future().wait();
            }
            loop->runFor(longSlice);
            ended.set_value();
        });
        ASSERT_NE(thread, nullptr);
        const auto loop = made.get_future().get();
        loop->stop();
        mayRun.set_value();
        ASSERT_EQ(ended.get_future().wait_for(patience), std::future_status::ready) << stopsFirst;
    }
}

TEST_P(EventTapContract, ASliceEndsByItselfAndDroppingTheThreadWaitsForItsEnd) {
    bool hasEnded = false;
    auto thread = driver->taps().startThread("contract-loop", [&] {
        driver->taps().currentRunLoop()->runFor(Seconds(0.01));
        hasEnded = true;
    });
    thread.reset();
    EXPECT_TRUE(hasEnded);
}

}  // namespace ferrowyn::contract
