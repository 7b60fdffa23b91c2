#include "platform/macos/mac_event_taps.h"

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using fake::Keyboard;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using Outcome = Keyboard::Outcome;
constexpr Keyboard::Key tab{.keyCode = 48, .flags = kCGEventFlagMaskAlternate};

/// A tap that is served by a thread of its own, as the program serves it.
class MacEventTapsTest : public MacFixture {
protected:
    ~MacEventTapsTest() override { stopServing(); }

    std::shared_ptr<EventTap> createTap() {
        return taps.create(EventTaps::keyboardMask, SwitcherModifier::option, [this](const TapEvent& event) {
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
    }

    void serve(const std::shared_ptr<EventTap>& tap) {
        source = taps.createSource(tap);
        std::promise<std::shared_ptr<TapRunLoop>> started;
        isServing = true;
        thread = taps.startThread("com.larkmoor.event-tap", [this, tap, &started] {
            const auto own = taps.currentRunLoop();
            source->addTo(*own);
            tap->setEnabled(true);
            started.set_value(own);
            while (isServing) {
                own->runFor(Seconds(1.0));
            }
        });
        loop = started.get_future().get();
    }

    void stopServing() {
        isServing = false;
        if (loop != nullptr) {
            source->removeFrom(*loop);
            loop->stop();
        }
        thread.reset();
        loop.reset();
        source.reset();
    }

    /// How many pools each thread is in, and how many it has been in.
    inline static thread_local int poolsAround = 0;
    std::atomic<int> pools{0};
    std::vector<int> poolsAroundEvents;
    MacEventTaps taps{log, [this](const std::function<void()>& work) {
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
    std::atomic<bool> isServing{false};
    std::shared_ptr<TapRunLoopSource> source;
    std::shared_ptr<TapRunLoop> loop;
    std::unique_ptr<TapThread> thread;
};

TEST_F(MacEventTapsTest, TheTapIsTheSessionsFirstAndMayChangeEvents) {
    const auto tap = createTap();
    ASSERT_NE(tap, nullptr);
    EXPECT_EQ(keyboard.tapRequest(),
              (Keyboard::TapRequest{kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault, 0x1C00}));
}

TEST_F(MacEventTapsTest, ATapThatNobodyServesYetIsDisabledSoThatNoKeyWaitsForIt) {
    const auto tap = createTap();
    EXPECT_FALSE(tap->isEnabled());
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    EXPECT_THAT(types, IsEmpty());
}

TEST_F(MacEventTapsTest, TheCallbackDecidesWhatBecomesOfAnEvent) {
    const auto tap = createTap();
    serve(tap);
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    verdict.isSwallowed = true;
    EXPECT_EQ(keyboard.press(tab), Outcome::swallowed);
    verdict = {.isSwallowed = false, .requestedSession = TapSession{1}};
    EXPECT_EQ(keyboard.press({.type = kCGEventKeyUp, .keyCode = 48}), Outcome::reachedApplication);
    EXPECT_EQ(keyboard.press({.type = kCGEventFlagsChanged}), Outcome::reachedApplication);
    stopServing();
    EXPECT_THAT(types, ElementsAre(TapEvent::Type::keyDown, TapEvent::Type::keyDown, TapEvent::Type::keyUp,
                                   TapEvent::Type::flagsChanged));
    EXPECT_THAT(keyCodes, Each(48));
    EXPECT_THAT(flags, Each(event_flags::option));
}

TEST_F(MacEventTapsTest, EachEventAndEachTurnOfTheThreadHasAnAutoreleasePool) {
    const auto tap = createTap();
    serve(tap);
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    stopServing();
    EXPECT_THAT(poolsAroundEvents, ElementsAre(2, 2)) << "that of the event within that of the turn";
    EXPECT_GE(pools.load(), 3);
}

TEST_F(MacEventTapsTest, ATapIsMadeWhereTheSystemHasNoEventToPrepareTextsWith) {
    keyboard.refusesEvents = true;
    EXPECT_NE(createTap(), nullptr);
}

TEST_F(MacEventTapsTest, TextIsTheEventsOwnOrThatOfOtherModifiers) {
    keyboard.layout[{0, 0}] = u"a";
    keyboard.layout[{0, kCGEventFlagMaskShift}] = u"A";
    keyboard.layout[{0, kCGEventFlagMaskAlternate}] = u"å";
    keyboard.layout[{1, 0}] = u"🦀!";
    const auto tap = createTap();
    serve(tap);
    const auto press = [&](const Keyboard::Key& key, std::optional<std::uint64_t> with) {
        textFlags = with;
        EXPECT_EQ(keyboard.press(key), Outcome::reachedApplication) << "the very event that came";
    };
    press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate}, std::nullopt);
    press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate}, 0);
    press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate}, event_flags::shift);
    press({.keyCode = 1}, std::nullopt);
    press({.keyCode = 2}, std::nullopt);
    stopServing();
    EXPECT_THAT(texts, ElementsAre(u"å", u"a", u"A", u"🦀!", u""));
    EXPECT_THAT(flags, ElementsAre(event_flags::option, event_flags::option, event_flags::option, 0U, 0U))
        << "the event itself keeps its flags";
}

TEST_F(MacEventTapsTest, AnEventThatCannotBeCopiedTypesItsOwnText) {
    keyboard.layout[{0, kCGEventFlagMaskAlternate}] = u"å";
    keyboard.refusesCopies = true;
    textFlags = 0;
    const auto tap = createTap();
    serve(tap);
    EXPECT_EQ(keyboard.press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate}), Outcome::reachedApplication);
    stopServing();
    EXPECT_THAT(texts, ElementsAre(u"å"));
}

TEST_F(MacEventTapsTest, ADisabledTapSaysSoAndCanBeEnabledAgain) {
    const auto tap = createTap();
    serve(tap);
    keyboard.disableTap(kCGEventTapDisabledByTimeout);
    EXPECT_FALSE(tap->isEnabled());
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    tap->setEnabled(true);
    EXPECT_TRUE(tap->isEnabled());
    keyboard.disableTap(kCGEventTapDisabledByUserInput);
    EXPECT_FALSE(tap->isEnabled());
    stopServing();
    EXPECT_THAT(types, ElementsAre(TapEvent::Type::disabledByTimeout, TapEvent::Type::disabledByUserInput));
}

TEST_F(MacEventTapsTest, AnEventThatIsNoneHasNoKeyAndNoText) {
    const MacTapEvent event(kCGEventTapDisabledByTimeout, nullptr);
    EXPECT_EQ(event.flags(), 0U);
    EXPECT_EQ(event.keyCode(), 0);
    EXPECT_EQ(event.text(std::nullopt), u"");
    EXPECT_EQ(event.text(0), u"");
}

TEST_F(MacEventTapsTest, TheSystemIsAskedOnlyWhileTheTapIsServed) {
    const auto tap = createTap();
    tap->setEnabled(true);
    EXPECT_TRUE(tap->isEnabled());
    EXPECT_FALSE(keyboard.isTapEnabled());
    serve(tap);
    EXPECT_TRUE(keyboard.isTapEnabled());
    stopServing();
    EXPECT_FALSE(keyboard.isTapEnabled()) << "every key would wait for a verdict that nobody gives";
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    tap->setEnabled(false);
    serve(tap);
    EXPECT_TRUE(keyboard.isTapEnabled());
    tap->setEnabled(false);
    EXPECT_FALSE(keyboard.isTapEnabled());
    EXPECT_FALSE(tap->isEnabled());
    stopServing();
    tap->setEnabled(true);
    EXPECT_FALSE(keyboard.isTapEnabled());
}

TEST_F(MacEventTapsTest, AnInvalidatedTapIsGoneForGood) {
    const auto tap = createTap();
    serve(tap);
    tap->invalidate();
    EXPECT_FALSE(keyboard.hasTap());
    tap->setEnabled(true);
    EXPECT_FALSE(tap->isEnabled());
    tap->invalidate();
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
}

TEST_F(MacEventTapsTest, DestroyingATapRemovesIt) {
    auto tap = createTap();
    EXPECT_TRUE(keyboard.hasTap());
    tap.reset();
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_EQ(fake::Objects::shared().liveCount(), 0U);
}

TEST_F(MacEventTapsTest, ARefusedTapIsNone) {
    keyboard.refusesTaps = true;
    EXPECT_EQ(createTap(), nullptr);
    keyboard.refusesTaps = false;
    system.isTrusted = false;
    EXPECT_EQ(createTap(), nullptr);
}

TEST_F(MacEventTapsTest, ARefusedSourceIsNone) {
    const auto tap = createTap();
    keyboard.refusesSources = true;
    EXPECT_EQ(taps.createSource(tap), nullptr);
    EXPECT_EQ(taps.createSource(nullptr), nullptr);
}

TEST_F(MacEventTapsTest, TheSourceIsOnItsThreadsLoopInTheCommonModesUntilItIsRemoved) {
    const auto tap = createTap();
    serve(tap);
    EXPECT_THAT(
        fake::RunLoop::takeJournal(),
        ElementsAre("disable the tap", "add the tap to a thread's loop in kCFRunLoopCommonModes", "enable the tap"));
    EXPECT_EQ(keyboard.press(tab), Outcome::reachedApplication);
    stopServing();
    EXPECT_THAT(fake::RunLoop::takeJournal(),
                ElementsAre("disable the tap", "remove the tap from a thread's loop in kCFRunLoopCommonModes",
                            "stop a thread's loop"));
    EXPECT_THAT(fake::RunLoop::takeRuns(), AllOf(Not(IsEmpty()), Each("kCFRunLoopDefaultMode for 1 s")));
}

TEST_F(MacEventTapsTest, TheThreadHasItsNameAndTheHighestQualityOfService) {
    serve(createTap());
    EXPECT_THAT(system.threads(),
                ElementsAre(fake::System::Thread{"com.larkmoor.event-tap", QOS_CLASS_USER_INTERACTIVE}));
}

TEST_F(MacEventTapsTest, ALoopWithNothingToServeWaitsInsteadOfTurning) {
    const auto own = taps.currentRunLoop();
    const auto before = std::chrono::steady_clock::now();
    own->runFor(Seconds(0.1));
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(100));
}

TEST_F(MacEventTapsTest, ALoopWithNothingToServeCanBeStopped) {
    const auto own = taps.currentRunLoop();
    const auto before = std::chrono::steady_clock::now();
    std::thread stopper([&own] { own->stop(); });
    own->runFor(Seconds(60));
    stopper.join();
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(30));
}

TEST_F(MacEventTapsTest, AThreadWhosePortWasTakenAwayCanBeStopped) {
    const auto tap = createTap();
    serve(tap);
    tap->invalidate();
    stopServing();
    EXPECT_EQ(thread, nullptr);
}

TEST_F(MacEventTapsTest, AStopThatComesBeforeTheRunIsNotForgotten) {
    const auto own = taps.currentRunLoop();
    own->stop();
    own->runFor(Seconds(1.0));
    EXPECT_THAT(fake::RunLoop::takeRuns(), IsEmpty()) << "it did not even begin to wait";
}

}  // namespace
}  // namespace ferrowyn
