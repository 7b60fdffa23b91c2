#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <future>
#include <mutex>
#include <string>
#include <thread>

#include "tests/x11/adapter/tap_keyboard_fixture.h"

namespace ferrowyn::x11test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST_F(TapKeyboardTest, ShiftReversesTheTriggerAndIsReportedAsAFlag) {
    TapRig rig(server.display(), {});
    input.chord({key::leftAlt, key::leftShift, key::tab});
    ASSERT_TRUE(rig.waitForClosed(1));
    EXPECT_EQ(rig.seen().front().flags, event_flags::option | event_flags::shift);
    EXPECT_EQ(rig.seen().front().keyCode, tabKey);
}

TEST_F(TapKeyboardTest, TheKeyLeftOfOneIsATriggerOnlyWithCommand) {
    TapRig rig(server.display(), {.trigger = SwitcherModifier::command});
    toggle(key::leftSuper, key::grave);
    ASSERT_TRUE(rig.waitForClosed(1));
    EXPECT_EQ(rig.seen().front().keyCode, graveKey);
    EXPECT_EQ(rig.seen().front().flags, event_flags::command);

    rig.tap().setTrigger(SwitcherModifier::option);
    ASSERT_TRUE(rig.settle());
    rig.forgetSeen();
    toggle(key::leftAlt, key::grave);
    ASSERT_TRUE(rig.settle());
    EXPECT_EQ(rig.opened(), 1);
    EXPECT_THAT(rig.seen(), testing::IsEmpty());
}

TEST_F(TapKeyboardTest, ControlIsAlsoCommandInASessionUnlessItIsTheTrigger) {
    TapRig rig(server.display(), {});
    startSession(rig);
    input.chord({key::leftControl, key::d});
    ASSERT_TRUE(rig.settle());
    const auto seen = rig.seen();
    const auto pressed = std::find_if(seen.begin(), seen.end(), [](const auto& event) {
        return event.type == TapEvent::Type::keyDown && event.keyCode == dKey;
    });
    ASSERT_NE(pressed, seen.end());
    EXPECT_EQ(pressed->flags, event_flags::option | event_flags::control | event_flags::command);
    EXPECT_EQ(pressed->text, u"d");
    input.release(key::leftAlt);
    EXPECT_TRUE(rig.waitForClosed(1));
    ASSERT_TRUE(rig.settle());

    rig.tap().setTrigger(SwitcherModifier::control);
    ASSERT_TRUE(rig.settle());
    rig.forgetSeen();
    toggle(key::leftControl);
    ASSERT_TRUE(rig.settle());
    ASSERT_THAT(rig.seen(), Not(testing::IsEmpty()));
    EXPECT_EQ(rig.seen().front().flags, event_flags::control);
}

TEST_F(TapKeyboardTest, ATriggerWaitsForNoEndOfASessionThatTheModifierDoesNotEnd) {
    TapRig rig(server.display(), {.holdMode = false});
    startSession(rig);
    input.release(key::leftAlt);
    auto shortest = std::chrono::steady_clock::duration::max();
    for (int move = 1; move <= 3; ++move) {
        const auto pressedAt = std::chrono::steady_clock::now();
        toggle();
        ASSERT_TRUE(rig.waitUntil([&] { return rig.moves() == move; }));
        shortest = std::min(shortest, std::chrono::steady_clock::now() - pressedAt);
    }
    // Generous, for a loaded machine: a key that waits does so for a quarter of a second.
    EXPECT_LT(shortest, milliseconds{100});
    rig.close();
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, AHeldControlDoesNotKeepASessionOfCommandOpen) {
    TapRig rig(server.display(), {.trigger = SwitcherModifier::command});
    startSession(rig, key::leftSuper);
    input.press(key::leftControl);
    input.release(key::leftSuper);
    EXPECT_TRUE(rig.waitForClosed(1));
    input.release(key::leftControl);
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, ControlAndTabAreNotTheTriggerOfCommand) {
    TapRig rig(server.display(), {.trigger = SwitcherModifier::command, .holdMode = false});
    startSession(rig, key::leftSuper);
    input.release(key::leftSuper);
    ASSERT_TRUE(rig.settle());
    rig.forgetSeen();
    input.chord({key::leftControl, key::tab});
    input.chord({key::leftControl, key::d});
    ASSERT_TRUE(rig.settle());
    EXPECT_EQ(rig.moves(), 0);
    std::vector<std::pair<std::uint16_t, std::uint64_t>> pressed;
    for (const auto& event : rig.seen()) {
        if (event.type == TapEvent::Type::keyDown) {
            pressed.emplace_back(event.keyCode, event.flags);
        }
    }
    EXPECT_THAT(pressed, testing::ElementsAre(std::pair(tabKey, event_flags::control),
                                              std::pair(dKey, event_flags::control | event_flags::command)));
    rig.close();
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, NeverOpensWhileAnotherClientHoldsTheKeyboardAndProbesOnlyOnRequest) {
    TapRig rig(server.display(), {});
    {
        KeyboardHolder holder(server.display());
        ASSERT_TRUE(holder.hasGrab());
        toggle();
        ASSERT_TRUE(rig.waitUntil([&] { return rig.context().isKeyboardHeldElsewhere.load(); }));
        ASSERT_TRUE(rig.settle());
        EXPECT_THAT(rig.seen(), testing::IsEmpty());
        EXPECT_THAT(holder.takePresses(), testing::ElementsAre(key::leftAlt, key::tab));
        rig.context().requestKeyboardProbe();
        ASSERT_TRUE(rig.settle());
        EXPECT_TRUE(rig.context().isKeyboardHeldElsewhere);
    }
    ASSERT_TRUE(rig.settle());
    EXPECT_TRUE(rig.context().isKeyboardHeldElsewhere) << "probed without being asked";
    rig.context().requestKeyboardProbe();
    ASSERT_TRUE(rig.settle());
    EXPECT_FALSE(rig.context().isKeyboardHeldElsewhere);
    EXPECT_TRUE(desktop.keyboardIsFree());
    toggle();
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, ASessionThatOpensClearsThatTheKeyboardIsHeld) {
    TapRig rig(server.display(), {});
    {
        const KeyboardHolder holder(server.display());
        toggle();
        ASSERT_TRUE(rig.waitUntil([&] { return rig.context().isKeyboardHeldElsewhere.load(); }));
    }
    toggle();
    EXPECT_TRUE(rig.waitForClosed(1));
    EXPECT_FALSE(rig.context().isKeyboardHeldElsewhere);
}

TEST_F(TapKeyboardTest, GivesTheKeyboardBackWhenTheMainThreadDoesNotAnswer) {
    TapRig rig(server.display(), {.answers = false});
    toggle();
    ASSERT_TRUE(rig.waitUntil([&] { return rig.requests() == 1; }));
    EXPECT_FALSE(desktop.keyboardIsFree());
    expectNothingLeft();
    EXPECT_EQ(rig.seen().size(), 1U);
    const TapSession first{1};
    EXPECT_TRUE(rig.tap().hasGivenUp(first)) << "an answer that comes later must open nothing";
    rig.tap().closeSession(first);
    ASSERT_TRUE(rig.settle());
    EXPECT_FALSE(rig.tap().hasGivenUp(first));
    toggle();
    ASSERT_TRUE(rig.waitUntil([&] { return rig.requests() == 2; }));
    EXPECT_FALSE(rig.tap().hasGivenUp(TapSession{2})) << "the answer may still come";
    rig.taps().notifyKeyboardUnavailable();
    ASSERT_TRUE(rig.settle());
    EXPECT_TRUE(rig.tap().hasGivenUp(TapSession{2}));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, ASessionThatOpensForARequestThatWasGivenUpGetsNoKeysAndIsReported) {
    TapRig rig(server.display(), {.answers = false});
    toggle();
    const TapSession session{1};
    ASSERT_TRUE(rig.waitUntil([&] { return rig.requests() == 1; }));
    expectNothingLeft();
    ASSERT_TRUE(rig.tap().hasGivenUp(session));
    rig.forgetSeen();
    // The main thread has begun to open it in time, and was slow.
    rig.tap().openSession(session);
    ASSERT_TRUE(rig.settle());
    EXPECT_TRUE(desktop.keyboardIsFree());
    EXPECT_THAT(rig.seen(), ElementsAre(testing::Field(&TapRig::Seen::type, TapEvent::Type::disabledByUserInput)));
    EXPECT_TRUE(rig.tap().isEnabled()) << "the next trigger is the tap's";
    rig.tap().closeSession(session);
    rig.openFromMenu();
    ASSERT_TRUE(rig.waitForOpened(1));
    ASSERT_TRUE(rig.settle());
    EXPECT_FALSE(desktop.keyboardIsFree()) << "the next session has the keyboard";
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, GivesTheKeyboardBackWhenNoSessionIsOpenedAndLeavesTheKeysAlone) {
    TapRig rig(server.display(), {.opensSessions = false});
    for (int request = 1; request <= 20; ++request) {
        toggle();
        ASSERT_TRUE(rig.waitUntil([&] { return rig.requests() == request; }));
    }
    ASSERT_TRUE(rig.settle());
    expectNothingLeft();
    input.tap(key::a);
    EXPECT_TRUE(window.waitForKeyPress(key::a)) << "the keyboard belongs to the window again";
}

TEST_F(TapKeyboardTest, AHiddenSwitcherSeesNoOtherKey) {
    TapRig rig(server.display(), {});
    ASSERT_TRUE(desktop.waitForFocus(window.id())) << "keys go nowhere before";
    input.tap(key::a);
    input.tap(key::tab);
    input.chord({key::leftAlt, key::a});
    input.chord({key::leftControl, key::tab});
    ASSERT_TRUE(rig.settle());
    EXPECT_THAT(rig.seen(), testing::IsEmpty());
    EXPECT_THAT(window.takeInput().keyPresses, testing::IsSupersetOf({key::a, key::tab}));
    EXPECT_TRUE(desktop.keyboardIsFree());
}

TEST_F(TapKeyboardTest, ASessionFromTheMenuGetsItsKeysOnceTheMenuLetsTheKeyboardGo) {
    TapRig rig(server.display(), {});
    {
        const KeyboardHolder menu(server.display());
        rig.openFromMenu();
        ASSERT_TRUE(rig.waitForOpened(1));
        ASSERT_TRUE(rig.settle());
    }
    ASSERT_TRUE(rig.waitUntil([&] { return !rig.seenWhileWaiting().empty(); })) << "the tap tells the flags it found";
    EXPECT_TRUE(typesInSession(rig, {key::a}, u"a"));
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, TheTriggerFreezesNoKeyboardWhileASessionFromTheMenuHasNone) {
    TapRig rig(server.display(), {});
    KeyboardHolder holder(server.display());
    ASSERT_TRUE(holder.hasGrab());
    rig.openFromMenu();
    ASSERT_TRUE(rig.waitForOpened(1));
    // By then the tap has stopped asking for the keyboard.
    ASSERT_TRUE(rig.waitUntil([&] { return rig.context().isKeyboardHeldElsewhere.load(); }, milliseconds{3000}) ||
                rig.context().isKeyboardHeldElsewhere.load());
    toggle();
    ASSERT_TRUE(rig.settle());
    static_cast<void>(holder.takePresses());
    input.tap(key::a);
    EXPECT_THAT(holder.takePresses(), Contains(key::a));
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
}

TEST_F(TapKeyboardTest, AWindowManagerThatStartsLaterOrRestartsDoesNotTakeTheTrigger) {
    TapRig rig(server.display(), {});
    toggle();
    ASSERT_TRUE(rig.waitForClosed(1));
    const WindowManagerProcess next(server, "xfwm4", true);
    for (int session = 2; session <= 20; ++session) {
        toggle();
        ASSERT_TRUE(rig.waitForClosed(session));
    }
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, GivesTheKeyboardBackAndReportsItWhenTheSessionIsLocked) {
    // Not Alt: a disabled tap would leave the trigger to the manager, which takes the keyboard in its own time and may
    // miss the release.
    TapRig rig(server.display(), {.trigger = SwitcherModifier::control});
    startSession(rig, key::leftControl);
    rig.taps().notifyKeyboardUnavailable();
    // The release of Tab may still come before it.
    ASSERT_TRUE(rig.waitUntil([&] {
        const auto& seen = rig.seenWhileWaiting();
        return !seen.empty() && seen.back().type == TapEvent::Type::disabledByUserInput;
    }));
    EXPECT_FALSE(rig.tap().isEnabled());
    EXPECT_TRUE(desktop.waitForFreeKeyboard());
    input.release(key::leftControl);
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
    toggle(key::leftControl);
    ASSERT_TRUE(rig.settle());
    EXPECT_EQ(rig.opened(), 1);
    rig.tap().setEnabled(true);
    EXPECT_TRUE(rig.tap().isEnabled());
    ASSERT_TRUE(rig.settle());
    toggle(key::leftControl);
    EXPECT_TRUE(rig.waitForClosed(2));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, OfSeveralRequestsTheLastSaysWhetherItIsEnabled) {
    TapRig rig(server.display(), {});
    for (int repetition = 0; repetition < 20; ++repetition) {
        rig.taps().notifyKeyboardUnavailable();
        rig.tap().setEnabled(true);
        ASSERT_TRUE(rig.settle());
        EXPECT_TRUE(rig.tap().isEnabled());
        rig.tap().setEnabled(true);
        rig.tap().setEnabled(false);
        ASSERT_TRUE(rig.settle());
        EXPECT_FALSE(rig.tap().isEnabled());
    }
}

TEST_F(TapKeyboardTest, ADisabledOrRemovedTapGivesTheKeyboardBack) {
    TapRig rig(server.display(), {});
    startSession(rig);
    rig.tap().setEnabled(false);
    EXPECT_TRUE(desktop.waitForFreeKeyboard());
    input.release(key::leftAlt);
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
    rig.tap().setEnabled(true);
    ASSERT_TRUE(rig.settle());
    startSession(rig);
    ASSERT_TRUE(rig.settle());
    rig.removeTap();
    EXPECT_TRUE(desktop.keyboardIsFree());
    input.release(key::leftAlt);
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, ALostConnectionDisablesTheTapForGoodAndCostsNoTime) {
    TapRig rig(server.display(), {});
    server.kill();
    ASSERT_TRUE(rig.waitUntil([&] { return !rig.tap().isEnabled(); }));
    rig.tap().setEnabled(true);
    EXPECT_FALSE(rig.tap().isEnabled());
    const auto before = rig.tapThreadCpuTime();
    EXPECT_FALSE(rig.waitUntil([] { return false; }, milliseconds{500}));
    EXPECT_LT(rig.tapThreadCpuTime() - before, std::chrono::milliseconds(50));
}

/// A tap whose engines the test makes.
class MadeTapTest : public TapKeyboardTest {
protected:
    /// Called when the first engine has been made, with its connection.
    std::function<void(const X11Connection&)> onEngine;
    /// Called on the tap thread with each event. Set before the start.
    std::function<TapVerdict(const TapEvent&)> decide = [](const TapEvent&) { return TapVerdict{}; };
    std::atomic<bool> isRefused{false};
    HookedLog log;
    X11InputContext context;

    [[nodiscard]] X11KeyboardTap::Creation create() {
        return X11KeyboardTap::start([this](SwitcherModifier trigger) { return makeEngine(trigger); },
                                     SwitcherModifier::option, log);
    }
    [[nodiscard]] std::unique_ptr<X11KeyboardTap> start() {
        auto created = create();
        EXPECT_EQ(created.refusal, "");
        return std::move(created.tap);
    }
    [[nodiscard]] std::vector<TapEvent::Type> takeTold() {
        const std::scoped_lock guard(lock_);
        return std::exchange(told_, {});
    }
    [[nodiscard]] bool waitUntilTold(TapEvent::Type type) {
        return desktop.waitUntil([&] {
            const std::scoped_lock guard(lock_);
            return testing::Value(told_, Contains(type));
        });
    }

private:
    X11TapEngine::Creation makeEngine(SwitcherModifier trigger) {
        if (isRefused) {
            return {nullptr, "refused"};
        }
        auto created = X11TapEngine::create(
            X11Connection::open(server.display().c_str()), nullptr, trigger,
            [this](const TapEvent& event) {
                {
                    const std::scoped_lock guard(lock_);
                    told_.push_back(event.type());
                }
                return decide(event);
            },
            context, log);
        if (const auto call = std::exchange(onEngine, nullptr)) {
            call(created.engine->connection());
        }
        return created;
    }

    std::mutex lock_;
    std::vector<TapEvent::Type> told_;
};

TEST_F(MadeTapTest, ATapThatCannotBeginAnewSaysSoAndTriesAgainWhenItIsEnabled) {
    xcb_pixmap_t handle = XCB_PIXMAP_NONE;
    onEngine = [&](const X11Connection& connection) {
        handle = xcb_generate_id(connection.get());
        xcb_create_pixmap(connection.get(), 1, handle, connection.root(), 1, 1);
        xcb_flush(connection.get());
    };
    const auto tap = start();
    ASSERT_NE(tap, nullptr);
    ASSERT_TRUE(tap->isEnabled());
    isRefused = true;
    // Somebody ends the connection, as the guard does.
    xcb_kill_client(desktop.connection(), handle);
    EXPECT_TRUE(desktop.waitUntil([&] { return !tap->isEnabled(); }));
    EXPECT_TRUE(waitUntilTold(TapEvent::Type::disabledByUserInput));
    tap->setEnabled(true);
    EXPECT_FALSE(tap->isEnabled());
    tap->setTrigger(SwitcherModifier::control);
    isRefused = false;
    tap->setEnabled(true);
    EXPECT_TRUE(desktop.waitUntil([&] { return tap->isEnabled(); }));
    EXPECT_THAT(takeTold(), ElementsAre(TapEvent::Type::disabledByUserInput));
    EXPECT_TRUE(desktop.waitUntil([&] {
        input.chord({key::leftControl, key::tab});
        return testing::Value(takeTold(), Contains(TapEvent::Type::keyDown));
    }));
}

TEST_F(MadeTapTest, AThreadThatIsSlowToServeIsWaitedForOneSecondAndServesTheTapAllTheSame) {
    auto* const other = desktop.connection();
    onEngine = [&](const X11Connection&) {
        // The thread's grabs wait for this client from here on.
        xcb_grab_server(other);
        const XcbReply<xcb_get_input_focus_reply_t> sync(
            xcb_get_input_focus_reply(other, xcb_get_input_focus(other), nullptr));
    };
    const auto before = std::chrono::steady_clock::now();
    const auto tap = start();
    const auto waited = std::chrono::steady_clock::now() - before;
    ASSERT_NE(tap, nullptr);
    EXPECT_GE(waited, std::chrono::seconds(1));
    EXPECT_TRUE(tap->isEnabled());
    xcb_ungrab_server(other);
    xcb_flush(other);
    EXPECT_TRUE(desktop.waitUntil([&] {
        input.chord({key::leftAlt, key::tab});
        return testing::Value(takeTold(), Contains(TapEvent::Type::keyDown));
    }));
}

TEST_F(MadeTapTest, ATapThatIsDestroyedBeforeItsThreadServesLeavesNothing) {
    auto* const other = desktop.connection();
    onEngine = [&](const X11Connection&) {
        xcb_grab_server(other);
        const XcbReply<xcb_get_input_focus_reply_t> sync(
            xcb_get_input_focus_reply(other, xcb_get_input_focus(other), nullptr));
    };
    auto tap = start();
    ASSERT_NE(tap, nullptr);
    std::promise<void> removal;
    tap->onRemoval = [&] { removal.set_value(); };
    std::thread release([&, hasBegun = removal.get_future()] {
        hasBegun.wait();
        xcb_ungrab_server(other);
        xcb_flush(other);
    });
    tap.reset();
    release.join();
    EXPECT_FALSE(isTabGrabbed(XCB_INPUT_DEVICE_ALL, XCB_MOD_MASK_1));
    toggle();
    expectNothingLeft();
    EXPECT_THAT(takeTold(), testing::IsEmpty());
}

TEST_F(MadeTapTest, AStartWithoutADescriptorToWakeTheThreadIsRefusedInWords) {
    rlimit usual{};
    getrlimit(RLIMIT_NOFILE, &usual);
    onEngine = [&](const X11Connection&) {
        // All below the lowest free one are in use.
        const int lowest = dup(STDERR_FILENO);
        close(lowest);
        const rlimit none{static_cast<rlim_t>(lowest), usual.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    };
    const auto refused = create();
    setrlimit(RLIMIT_NOFILE, &usual);
    EXPECT_EQ(refused.tap, nullptr);
    EXPECT_EQ(refused.refusal, "No event descriptor for the keyboard's thread");
    EXPECT_FALSE(isTabGrabbed(XCB_INPUT_DEVICE_ALL, XCB_MOD_MASK_1));
    EXPECT_NE(start(), nullptr);
}

TEST_F(MadeTapTest, ARequestThatIsClosedWhileTheTapGivesItUpIsForgotten) {
    const TapSession session{7};
    decide = [&](const TapEvent& event) {
        TapVerdict verdict;
        if (event.type() == TapEvent::Type::keyDown) {
            verdict = {.isSwallowed = true, .requestedSession = session};
        }
        return verdict;
    };
    std::promise<bool> forgotten;
    auto answer = forgotten.get_future();
    const auto tap = start();
    ASSERT_NE(tap, nullptr);
    tap->post([&](X11TapEngine&) {
        log.awaited = "No answer to the trigger; the keyboard is given back";
        log.onMessage = [&] {
            tap->closeSession(session);
            tap->post([&](X11TapEngine&) { forgotten.set_value(!tap->hasGivenUp(session)); });
        };
    });
    toggle();
    ASSERT_EQ(answer.wait_for(patience), std::future_status::ready) << "waited for the tap to give the request up";
    EXPECT_TRUE(answer.get());
}

TEST_F(MadeTapTest, IsEnabledSaysTheLastRequestWhileEarlierOnesAreCarriedOut) {
    for (const bool last : {true, false}) {
        std::promise<void> requested;
        std::promise<bool> between;
        auto isRequested = requested.get_future();
        auto isEnabledBetween = between.get_future();
        const auto tap = start();
        ASSERT_NE(tap, nullptr);
        tap->post([&](X11TapEngine&) { isRequested.wait(); });
        tap->setEnabled(!last);
        tap->post([&](X11TapEngine&) { between.set_value(tap->isEnabled()); });
        tap->setEnabled(last);
        requested.set_value();
        EXPECT_EQ(isEnabledBetween.get(), last);
    }
}

/// Taps of one `X11KeyboardTaps`.
class SeveralTapsTest : public TapKeyboardTest {
protected:
    [[nodiscard]] std::unique_ptr<KeyboardTap> start(std::promise<void>& disabled) {
        auto started = taps.start(SwitcherModifier::option, [&disabled](const TapEvent& event) {
            if (event.type() == TapEvent::Type::disabledByUserInput) {
                disabled.set_value();
            }
            return TapVerdict{};
        });
        EXPECT_EQ(started.refusal, "");
        return std::move(started.tap);
    }
    void expectDisabled(std::promise<void>& disabled) {
        EXPECT_EQ(disabled.get_future().wait_for(patience), std::future_status::ready) << "waited for the tap's report";
    }

    SilentLog log;
    X11InputContext context;
    X11KeyboardTaps taps{context, log, server.display()};
    std::promise<void> firstDisabled;
    std::promise<void> secondDisabled;
};

TEST_F(SeveralTapsTest, TheTapStartedLastIsToldWhenTheOneBeforeItIsDestroyed) {
    auto first = start(firstDisabled);
    const auto second = start(secondDisabled);
    ASSERT_NE(second, nullptr);
    first.reset();
    taps.notifyKeyboardUnavailable();
    expectDisabled(secondDisabled);
    EXPECT_FALSE(second->isEnabled());
}

TEST_F(SeveralTapsTest, NoTapIsToldAfterTheLastOneWasDestroyed) {
    start(firstDisabled).reset();
    taps.notifyKeyboardUnavailable();
    context.requestKeyboardProbe();
    EXPECT_EQ(firstDisabled.get_future().wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    const auto second = start(secondDisabled);
    ASSERT_NE(second, nullptr);
    taps.notifyKeyboardUnavailable();
    expectDisabled(secondDisabled);
}

TEST_F(TapKeyboardTest, TheThreadHasTheEndOfItsName) {
    TapRig rig(server.display(), {});
    std::vector<std::string> names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        names.push_back(name);
    }
    EXPECT_THAT(names, Contains("kmoor.event-tap"));
}

TEST_F(TapKeyboardTest, TellsWhenTheUserLastActedAndWhereThePointerIs) {
    TapRig rig(server.display(), {});
    input.movePointer(321, 123);
    toggle();
    ASSERT_TRUE(rig.waitForClosed(1));
    EXPECT_EQ(rig.context().pointer(), (std::pair<std::uint32_t, std::uint32_t>{321, 123}));
    const auto time = rig.context().lastUserTime.load();
    EXPECT_NE(time, 0U);
    toggle();
    ASSERT_TRUE(rig.waitForClosed(2));
    EXPECT_GE(rig.context().lastUserTime.load(), time);
}

}  // namespace
}  // namespace ferrowyn::x11test
