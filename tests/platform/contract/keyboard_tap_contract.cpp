#include "tests/platform/contract/contracts.h"

#include <gmock/gmock.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace ferrowyn::contract {

namespace {

using Type = TapEvent::Type;

constexpr std::uint16_t tabKey = 48;
constexpr auto patience = std::chrono::seconds(30);

/// Swallows the trigger, and counts it.
class TriggerCounter {
public:
    [[nodiscard]] TapCallback callback() {
        return [this](const TapEvent& event) { return handle(event); };
    }
    [[nodiscard]] bool waitFor(int count) {
        std::unique_lock lock(lock_);
        return changed_.wait_for(lock, patience, [&] { return count_ >= count; });
    }
    [[nodiscard]] int count() {
        const std::scoped_lock lock(lock_);
        return count_;
    }
    /// The session that the latest trigger asked for.
    [[nodiscard]] TapSession latest() { return sessionOf(count()); }

private:
    static TapSession sessionOf(int trigger) { return TapSession{static_cast<std::uint64_t>(trigger)}; }

    TapVerdict handle(const TapEvent& event) {
        if (event.type() != Type::keyDown || event.keyCode() != tabKey || (event.flags() & event_flags::option) == 0) {
            return {};
        }
        int trigger = 0;
        {
            const std::scoped_lock lock(lock_);
            trigger = ++count_;
        }
        changed_.notify_all();
        return {.isSwallowed = true, .requestedSession = sessionOf(trigger)};
    }

    std::mutex lock_;
    std::condition_variable changed_;
    int count_ = 0;
};

}  // namespace

std::unique_ptr<KeyboardTap> KeyboardTapContract::start(TapCallback callback) {
    auto started = driver->taps().start(SwitcherModifier::option, std::move(callback));
    EXPECT_NE(started.tap, nullptr) << started.refusal;
    EXPECT_EQ(started.refusal, "");
    return std::move(started.tap);
}

bool KeyboardTapContract::triggerSoonReachesApplication(bool reaches) {
    const auto end = std::chrono::steady_clock::now() + patience;
    do {
        driver->pressTrigger();
        driver->releaseTrigger();
        // A tap that nobody answers gives the keyboard back by itself.
        if (driver->applicationGotTrigger() == reaches) {
            return true;
        }
    } while (std::chrono::steady_clock::now() < end);
    return false;
}

TEST_P(KeyboardTapContract, AStartedTapIsEnabledAndKeepsEachTriggerFromTheApplication) {
    TriggerCounter triggers;
    const auto tap = start(triggers.callback());
    ASSERT_NE(tap, nullptr);
    EXPECT_TRUE(tap->isEnabled());
    for (int trigger = 1; trigger <= 2; ++trigger) {
        driver->pressTrigger();
        ASSERT_TRUE(triggers.waitFor(trigger));
        EXPECT_FALSE(tap->hasGivenUp(triggers.latest())) << "the answer may still come";
        tap->closeSession(triggers.latest());
        driver->releaseTrigger();
        EXPECT_FALSE(driver->applicationGotTrigger());
    }
    EXPECT_EQ(triggers.count(), 2);
}

TEST_P(KeyboardTapContract, ADisabledTapLetsEverythingPassUntilItIsEnabledAgain) {
    TriggerCounter triggers;
    const auto tap = start(triggers.callback());
    ASSERT_NE(tap, nullptr);
    tap->setEnabled(false);
    EXPECT_FALSE(tap->isEnabled());
    EXPECT_TRUE(triggerSoonReachesApplication(true));
    const int before = triggers.count();
    tap->setEnabled(true);
    EXPECT_TRUE(tap->isEnabled());
    EXPECT_TRUE(triggerSoonReachesApplication(false));
    EXPECT_GT(triggers.count(), before);
}

TEST_P(KeyboardTapContract, ATapThatIsDestroyedIsRemovedAndCallsNobodyBack) {
    TriggerCounter triggers;
    auto tap = start(triggers.callback());
    ASSERT_NE(tap, nullptr);
    EXPECT_FALSE(driver->hasNothingOfATap());
    tap.reset();
    EXPECT_TRUE(driver->hasNothingOfATap());
    driver->pressTrigger();
    driver->releaseTrigger();
    EXPECT_TRUE(driver->applicationGotTrigger());
    EXPECT_EQ(triggers.count(), 0);
}

TEST_P(KeyboardTapContract, ATapThatIsDestroyedInASessionGivesTheKeyboardBack) {
    TriggerCounter triggers;
    auto tap = start(triggers.callback());
    ASSERT_NE(tap, nullptr);
    driver->pressTrigger();
    ASSERT_TRUE(triggers.waitFor(1));
    tap->openSession(triggers.latest());
    tap.reset();
    driver->releaseTrigger();
    EXPECT_FALSE(driver->applicationGotTrigger()) << "this one was the tap's";
    EXPECT_TRUE(driver->hasNothingOfATap());
    driver->pressTrigger();
    driver->releaseTrigger();
    EXPECT_TRUE(driver->applicationGotTrigger());
}

TEST_P(KeyboardTapContract, ATapThatIsDestroyedLetsTheNextOneTakeItsPlace) {
    TriggerCounter former;
    start(former.callback()).reset();
    TriggerCounter triggers;
    const auto tap = start(triggers.callback());
    ASSERT_NE(tap, nullptr);
    driver->pressTrigger();
    ASSERT_TRUE(triggers.waitFor(1));
    tap->closeSession(triggers.latest());
    driver->releaseTrigger();
    EXPECT_FALSE(driver->applicationGotTrigger());
    EXPECT_EQ(former.count(), 0);
}

TEST_P(KeyboardTapContract, ARefusedStartSaysWhatWasRefusedAndLeavesNothing) {
    ASSERT_FALSE(driver->refusals().empty());
    for (const auto& refusal : driver->refusals()) {
        TriggerCounter triggers;
        refusal.set(true);
        const auto refused = driver->taps().start(SwitcherModifier::option, triggers.callback());
        refusal.set(false);
        EXPECT_EQ(refused.tap, nullptr);
        EXPECT_EQ(refused.refusal, refusal.words);
        EXPECT_TRUE(driver->hasNothingOfATap()) << refusal.words;
        driver->pressTrigger();
        driver->releaseTrigger();
        EXPECT_TRUE(driver->applicationGotTrigger()) << refusal.words;

        const auto tap = start(triggers.callback());
        ASSERT_NE(tap, nullptr) << "after: " << refusal.words;
        driver->pressTrigger();
        ASSERT_TRUE(triggers.waitFor(1)) << "after: " << refusal.words;
        tap->closeSession(triggers.latest());
        driver->releaseTrigger();
        EXPECT_FALSE(driver->applicationGotTrigger());
    }
}

}  // namespace ferrowyn::contract
