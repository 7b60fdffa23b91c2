#include "platform/macos/mac_keyboard_tap.h"

#include <atomic>
#include <chrono>
#include <thread>

#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/layer/mac_fixture.h"
#include "tests/platform/contract/linux_threads.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using fake::Keyboard;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using Clock = std::chrono::steady_clock;
using Outcome = Keyboard::Outcome;
constexpr Keyboard::Key tab{.keyCode = 48, .flags = kCGEventFlagMaskAlternate};

class MacKeyboardTapTest : public MacFixture {
protected:
    ~MacKeyboardTapTest() override { system.letThreadsGo(); }

    /// What a start answers is in `refusal`.
    void start() {
        auto started = taps.start(SwitcherModifier::option, [this](const TapEvent& event) {
            types.push_back(event.type());
            poolsAroundEvents.push_back(poolsAround);
            if (event.type() == TapEvent::Type::keyDown) {
                keyCodes.push_back(event.keyCode());
                texts.push_back(event.text(textFlags));
                // After the text, which must leave the event as it is.
                flags.push_back(event.flags());
            }
            return verdict;
        });
        tap = std::move(started.tap);
        refusal = started.refusal;
    }
    /// What the tap's thread has noted may be read after that.
    void stop() { tap.reset(); }

    /// How many pools each thread is in, and how many it has been in.
    inline static thread_local int poolsAround = 0;
    std::atomic<int> pools{0};
    std::vector<int> poolsAroundEvents;
    MacKeyboardTaps taps{[this](const std::function<void()>& work) {
        ++pools;
        ++poolsAround;
        work();
        --poolsAround;
    }};
    TapVerdict verdict;
    std::optional<std::uint64_t> textFlags;
    std::vector<TapEvent::Type> types;
    std::vector<std::uint16_t> keyCodes;
    std::vector<std::uint64_t> flags;
    std::vector<std::u16string> texts;
    std::unique_ptr<KeyboardTap> tap;
    std::string refusal;
};

TEST_F(MacKeyboardTapTest, TheTapIsTheSessionsFirstAndMayChangeEvents) {
    start();
    ASSERT_NE(tap, nullptr);
    EXPECT_EQ(keyboard.tapRequest(),
              (Keyboard::TapRequest{kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault, 0x1C00}));
}

TEST_F(MacKeyboardTapTest, TheCallbackDecidesWhatBecomesOfAnEvent) {
    start();
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    verdict.isSwallowed = true;
    EXPECT_EQ(keyboard.press(tab), Outcome::swallowed);
    verdict = {.isSwallowed = false, .requestedSession = TapSession{1}};
    EXPECT_EQ(keyboard.press({.type = kCGEventKeyUp, .keyCode = 48}), Outcome::reachedApplication);
    EXPECT_EQ(keyboard.press({.type = kCGEventFlagsChanged}), Outcome::reachedApplication);
    stop();
    EXPECT_THAT(types, ElementsAre(TapEvent::Type::keyDown, TapEvent::Type::keyDown, TapEvent::Type::keyUp,
                                   TapEvent::Type::flagsChanged));
    EXPECT_THAT(keyCodes, Each(48));
    EXPECT_THAT(flags, Each(event_flags::option));
}

TEST_F(MacKeyboardTapTest, EachEventAndEachTurnOfTheThreadHasAnAutoreleasePool) {
    start();
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    stop();
    EXPECT_THAT(poolsAroundEvents, ElementsAre(2, 2)) << "that of the event within that of the turn";
    EXPECT_GE(pools.load(), 3);
}

TEST_F(MacKeyboardTapTest, ATapIsMadeWhereTheSystemHasNoEventToPrepareTextsWith) {
    keyboard.refusesEvents = true;
    start();
    EXPECT_NE(tap, nullptr);
}

TEST_F(MacKeyboardTapTest, TextIsTheEventsOwnOrThatOfOtherModifiers) {
    keyboard.layout[{0, 0}] = u"a";
    keyboard.layout[{0, kCGEventFlagMaskShift}] = u"A";
    keyboard.layout[{0, kCGEventFlagMaskAlternate}] = u"å";
    keyboard.layout[{1, 0}] = u"🦀!";
    start();
    const auto press = [&](const Keyboard::Key& key, std::optional<std::uint64_t> with) {
        textFlags = with;
        EXPECT_EQ(keyboard.press(key), Outcome::reachedApplication) << "the very event that came";
    };
    press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate}, std::nullopt);
    press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate}, 0);
    press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate}, event_flags::shift);
    press({.keyCode = 1}, std::nullopt);
    press({.keyCode = 2}, std::nullopt);
    stop();
    EXPECT_THAT(texts, ElementsAre(u"å", u"a", u"A", u"🦀!", u""));
    EXPECT_THAT(flags, ElementsAre(event_flags::option, event_flags::option, event_flags::option, 0U, 0U))
        << "the event itself keeps its flags";
}

TEST_F(MacKeyboardTapTest, AnEventThatCannotBeCopiedTypesItsOwnText) {
    keyboard.layout[{0, kCGEventFlagMaskAlternate}] = u"å";
    keyboard.refusesCopies = true;
    textFlags = 0;
    start();
    EXPECT_EQ(keyboard.press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate}), Outcome::reachedApplication);
    stop();
    EXPECT_THAT(texts, ElementsAre(u"å"));
}

TEST_F(MacKeyboardTapTest, ADisabledTapSaysSoAndCanBeEnabledAgain) {
    start();
    keyboard.disableTap(kCGEventTapDisabledByTimeout);
    EXPECT_FALSE(tap->isEnabled());
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    tap->setEnabled(true);
    EXPECT_TRUE(tap->isEnabled());
    keyboard.disableTap(kCGEventTapDisabledByUserInput);
    EXPECT_FALSE(tap->isEnabled());
    stop();
    EXPECT_THAT(types, ElementsAre(TapEvent::Type::disabledByTimeout, TapEvent::Type::disabledByUserInput));
}

TEST_F(MacKeyboardTapTest, AnEventThatIsNoneHasNoKeyAndNoText) {
    const MacTapEvent event(kCGEventTapDisabledByTimeout, nullptr);
    EXPECT_EQ(event.flags(), 0U);
    EXPECT_EQ(event.keyCode(), 0);
    EXPECT_EQ(event.text(std::nullopt), u"");
    EXPECT_EQ(event.text(0), u"");
}

TEST_F(MacKeyboardTapTest, NoKeyWaitsForAThreadThatIsSlowToStart) {
    system.holdNewThreads();
    const auto before = Clock::now();
    start();
    const auto waited = Clock::now() - before;
    ASSERT_NE(tap, nullptr);
    EXPECT_GE(waited, 1s);
    EXPECT_LT(waited, 15s) << "and not until it comes, which it never does";
    EXPECT_TRUE(tap->isEnabled());
    EXPECT_FALSE(keyboard.isTapEnabled()) << "every key would wait for a verdict that nobody gives";
    tap->setEnabled(true);
    EXPECT_FALSE(keyboard.isTapEnabled());
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    system.letThreadsGo();
    ASSERT_TRUE(keyboard.waitUntilTapIsEnabled());
    verdict.isSwallowed = true;
    EXPECT_EQ(keyboard.press(tab), Outcome::swallowed);
}

TEST_F(MacKeyboardTapTest, ASlowThreadFindsTheTapAsItWasLeft) {
    system.holdNewThreads();
    start();
    tap->setEnabled(false);
    EXPECT_FALSE(tap->isEnabled());
    system.letThreadsGo();
    ASSERT_TRUE(fake::RunLoop::waitForRuns(1));
    EXPECT_FALSE(keyboard.isTapEnabled());
    tap->setEnabled(true);
    EXPECT_TRUE(keyboard.isTapEnabled());
}

TEST_F(MacKeyboardTapTest, AThreadThatComesAfterTheEndServesNothing) {
    system.holdNewThreads();
    start();
    ASSERT_NE(tap, nullptr);
    static_cast<void>(fake::RunLoop::takeJournal());
    std::thread late([this] {
        // The end waits for the thread, so the port is gone before it comes.
        while (keyboard.hasTap()) {
            std::this_thread::yield();
        }
        system.letThreadsGo();
    });
    stop();
    late.join();
    EXPECT_THAT(fake::RunLoop::takeJournal(), ElementsAre("invalidate the tap's port"));
    EXPECT_THAT(fake::RunLoop::takeRuns(), IsEmpty());
}

TEST_F(MacKeyboardTapTest, ARefusedTapIsNoneAndSaysSo) {
    keyboard.refusesTaps = true;
    start();
    EXPECT_EQ(tap, nullptr);
    EXPECT_EQ(refusal, "CGEvent.tapCreate failed");
    keyboard.refusesTaps = false;
    system.isTrusted = false;
    start();
    EXPECT_EQ(tap, nullptr);
    EXPECT_EQ(refusal, "CGEvent.tapCreate failed");
    EXPECT_EQ(fake::Objects::shared().liveCount(), 0U);
}

TEST_F(MacKeyboardTapTest, ATapWithoutASourceOrAThreadIsRemovedAgain) {
    keyboard.refusesSources = true;
    start();
    EXPECT_EQ(tap, nullptr);
    EXPECT_EQ(refusal, "CFMachPortCreateRunLoopSource failed");
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_THAT(fake::RunLoop::takeJournal(), ElementsAre("disable the tap", "invalidate the tap's port"));
    keyboard.refusesSources = false;
    {
        const contract::RefusedThreads refused;
        start();
    }
    EXPECT_EQ(tap, nullptr);
    EXPECT_EQ(refusal, "The event tap's thread cannot be started");
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_THAT(fake::RunLoop::takeJournal(), ElementsAre("disable the tap", "invalidate the tap's port"));
    EXPECT_EQ(fake::Objects::shared().liveCount(), 0U);
}

TEST_F(MacKeyboardTapTest, DestroyingATapReleasesWhatTheSystemGaveForIt) {
    start();
    EXPECT_TRUE(keyboard.hasTap());
    stop();
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_EQ(fake::Objects::shared().liveCount(), 0U);
}

TEST_F(MacKeyboardTapTest, TheSourceIsOnItsThreadsLoopInTheCommonModesUntilItIsRemoved) {
    start();
    EXPECT_THAT(
        fake::RunLoop::takeJournal(),
        ElementsAre("disable the tap", "add the tap to a thread's loop in kCFRunLoopCommonModes", "enable the tap"));
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    stop();
    EXPECT_THAT(fake::RunLoop::takeJournal(),
                ElementsAre("disable the tap", "remove the tap from a thread's loop in kCFRunLoopCommonModes",
                            "stop a thread's loop", "invalidate the tap's port"));
    EXPECT_THAT(fake::RunLoop::takeRuns(), AllOf(Not(IsEmpty()), Each("kCFRunLoopDefaultMode for 1 s")));
}

TEST_F(MacKeyboardTapTest, TheThreadHasItsNameAndTheHighestQualityOfService) {
    start();
    EXPECT_THAT(system.threads(),
                ElementsAre(fake::System::Thread{"com.larkmoor.event-tap", QOS_CLASS_USER_INTERACTIVE}));
}

TEST_F(MacKeyboardTapTest, AThreadWhosePortTheSystemTookAwayWaitsInsteadOfTurningAndCanBeStopped) {
    start();
    static_cast<void>(fake::RunLoop::takeRuns());
    const auto before = Clock::now();
    keyboard.takePortAway();
    ASSERT_TRUE(fake::RunLoop::waitForRuns(2));
    // Two runs that returned at once, with a wait of a slice between them.
    EXPECT_GE(Clock::now() - before, 900ms);
    stop();
}

}  // namespace
}  // namespace ferrowyn
