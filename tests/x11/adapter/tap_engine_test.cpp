// The tap's engine, served by the test itself: what happens between two of its steps is not left to chance.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/log.h"
#include "platform/x11/keyboard/x11_tap_engine.h"
#include "platform/x11/xcb_reply.h"
#include "tests/x11/adapter/tap_rig.h"
#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {
namespace {

constexpr std::uint16_t tabKey = 48;
constexpr std::string_view guardIsGone = "The keyboard's guard is gone; keys are not held back any more";

class TapEngineTest : public testing::Test {
protected:
    TapEngineTest() {
        auto connection = X11Connection::open(server.display().c_str());
        auto guard = X11KeyboardGuard::start(*connection, server.display(), log);
        hasGuard = guard != nullptr;
        auto created = X11TapEngine::create(
            std::move(connection), std::move(guard), SwitcherModifier::option,
            [this](const TapEvent& event) { return handle(event); }, context, log);
        engine = std::move(created.engine);
        engine->setEnabled(true);
        serve();
    }

    TapVerdict handle(const TapEvent& event) {
        const bool isOptionDown = (event.flags() & event_flags::option) != 0;
        if (event.type() == TapEvent::Type::keyDown && event.keyCode() == tabKey && isOptionDown) {
            if (isOpen) {
                ++moves;
                return {.isSwallowed = true};
            }
            return {.isSwallowed = true, .requestedSession = TapSession{++requests}};
        }
        if (event.type() == TapEvent::Type::keyDown && isOpen) {
            typed += event.text(0);
        }
        if (event.type() == TapEvent::Type::flagsChanged && isOpen && !isOptionDown) {
            ++ends;
            return {.mayEndSession = true};
        }
        return {.isSwallowed = isOpen};
    }
    void serve() { ASSERT_TRUE(engine->serve()); }
    [[nodiscard]] bool serveUntil(const std::function<bool()>& predicate) {
        const Deadline deadline(patience);
        while (!deadline.hasPassed()) {
            if (!engine->serve()) {
                return false;
            }
            if (predicate()) {
                return true;
            }
            pollfd arrival{engine->connection().fileDescriptor(), POLLIN, 0};
            poll(&arrival, 1, 10);
        }
        return false;
    }
    /// Answers as the main thread does: these messages come when the test says so.
    void open(TapSession session) {
        isOpen = true;
        engine->openSession(session);
    }
    void close(TapSession session) {
        isOpen = false;
        engine->closeSession(session);
    }
    [[nodiscard]] TapSession latest() const { return TapSession{requests}; }
    void openOneByTheTrigger() {
        const auto before = requests;
        input.press(key::leftAlt);
        input.tap(key::tab);
        ASSERT_TRUE(serveUntil([&] { return requests == before + 1; }));
        open(latest());
        serve();
    }
    [[nodiscard]] bool holdsKeyboard() const {
        // What the tap has asked for is done by then.
        auto* const connection = engine->connection().get();
        const XcbReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
        return !desktop.keyboardIsFree();
    }
    void expectNothingLeft() {
        EXPECT_TRUE(serveUntil([&] { return desktop.keyboardIsFree(); })) << "a grab is left";
        EXPECT_FALSE(desktop.anyKeyIsDown()) << "a key is stuck";
    }
    void killGuard() {
        const auto process = childNamed(getpid(), "ferrowyn-keyboard-guard");
        ASSERT_TRUE(process);
        kill(*process, SIGKILL);
        siginfo_t end{};
        ASSERT_EQ(waitid(P_PID, static_cast<id_t>(*process), &end, WEXITED | WNOWAIT), 0);
    }
    /// `type` happens when the guard is known to be gone and the grabs have not changed yet, `typeOn` when the trigger
    /// has been delivered.
    void switchOnceBehindTheGuardsEnd(
        const std::function<void()>& type, const std::function<void()>& typeOn = [] {}) {
        ASSERT_TRUE(hasGuard);
        killGuard();
        log.awaited = guardIsGone;
        log.onMessage = type;
        ASSERT_TRUE(serveUntil([&] { return requests == 1; }));
        typeOn();
        open(latest());
        EXPECT_TRUE(serveUntil([&] { return ends == 1; })) << "the release of the modifier is lost";
        close(latest());
        EXPECT_EQ(moves, 0);
        expectNothingLeft();
    }

    PrivateXServer server;
    WindowManagerProcess manager{server, "openbox"};
    TestDesktop desktop{server.display()};
    TestWindow window{server.display(), {.title = "Window"}};
    TestInput input{server.display()};
    HookedLog log;
    X11InputContext context;
    bool hasGuard = false;
    std::unique_ptr<X11TapEngine> engine;
    bool isOpen = false;
    std::uint64_t requests = 0;
    std::u16string typed;
    int moves = 0;
    int ends = 0;
};

TEST_F(TapEngineTest, ATriggerThatWaitsWhileTheGuardIsFoundGoneLosesNoRelease) {
    input.press(key::leftAlt);
    input.press(key::tab);
    input.release(key::tab);
    input.release(key::leftAlt);
    switchOnceBehindTheGuardsEnd([] {});
}

TEST_F(TapEngineTest, ATriggerPressedJustBeforeTheGrabsChangeLosesNoRelease) {
    switchOnceBehindTheGuardsEnd([this] { input.chord({key::leftAlt, key::tab}); });
}

TEST_F(TapEngineTest, ATriggerPressedBeforeTheGrabsChangeAndReleasedAfterwardsLosesNoRelease) {
    switchOnceBehindTheGuardsEnd(
        [this] {
            input.press(key::leftAlt);
            input.press(key::tab);
        },
        [this] {
            input.release(key::tab);
            input.release(key::leftAlt);
        });
}

TEST_F(TapEngineTest, AModifierPressedAgainBeforeItsMissedReleaseIsRepeatedStaysDown) {
    TapPhysicalKeyboard keyboard(server.display());
    ASSERT_TRUE(keyboard.isThere());
    keyboard.press(key::leftAlt);
    keyboard.press(key::tab);
    // The server holds these back, so the master keyboard misses them.
    keyboard.release(key::leftAlt);
    keyboard.release(key::tab);
    // The tap has taken the keyboard and has not read the releases yet.
    context.reportActiveWindow = [&, isFirst = true](std::uint32_t) mutable {
        if (std::exchange(isFirst, false)) {
            keyboard.press(key::leftAlt);
        }
    };
    ASSERT_TRUE(serveUntil([&] { return requests == 1; }));
    open(latest());
    EXPECT_TRUE(serveUntil([&] { return ends == 1; }));
    close(latest());
    serve();
    keyboard.press(key::tab);
    EXPECT_TRUE(serveUntil([&] { return requests == 2; })) << "the second switch is lost";
    open(latest());
    keyboard.release(key::tab);
    keyboard.release(key::leftAlt);
    EXPECT_TRUE(serveUntil([&] { return ends == 2; }));
    close(latest());
    expectNothingLeft();
}

TEST_F(TapEngineTest, ALateEndOfALostSessionLeavesTheNextOneItsKeyboard) {
    openOneByTheTrigger();
    const auto lost = latest();
    // A locker or a hung main thread takes the keyboard from the session; the tap is enabled again before the main
    // thread has closed the session, and the user presses the trigger at once.
    engine->loseKeyboard();
    isOpen = false;
    input.release(key::leftAlt);
    engine->setEnabled(true);
    serve();
    input.press(key::leftAlt);
    input.tap(key::tab);
    ASSERT_TRUE(serveUntil([&] { return latest() != lost; }));

    close(lost);
    serve();
    EXPECT_TRUE(holdsKeyboard()) << "the next session awaits its answer";
    input.tap(key::q);
    input.release(key::leftAlt);
    serve();
    open(latest());
    EXPECT_TRUE(serveUntil([&] { return ends == 1; }));
    EXPECT_EQ(typed, u"q") << "what is typed before the answer belongs to the session";
    close(latest());
    expectNothingLeft();
    EXPECT_THAT(window.takeInput().keyPresses, testing::Not(testing::Contains(key::q)));
}

TEST_F(TapEngineTest, ATriggerThatFindsItsSessionClosedAwaitsItsOwnAnswer) {
    openOneByTheTrigger();
    const auto first = latest();
    // The main thread has closed the session, and the tap has not heard of it yet.
    isOpen = false;
    input.tap(key::tab);
    ASSERT_TRUE(serveUntil([&] { return latest() != first; }));
    close(first);
    serve();
    EXPECT_TRUE(holdsKeyboard());
    open(latest());
    input.tap(key::q);
    EXPECT_TRUE(serveUntil([&] { return typed == u"q"; }));
    close(latest());
    input.release(key::leftAlt);
    expectNothingLeft();
}

TEST_F(TapEngineTest, ASessionOpenedFromTheMenuMeanwhileIsNoAnswerToTakeTheKeyboardFrom) {
    input.press(key::leftAlt);
    input.tap(key::tab);
    ASSERT_TRUE(serveUntil([&] { return requests == 1; }));
    const TapSession fromMenu{100};
    open(fromMenu);
    // The request found a session open.
    engine->closeSession(latest());
    input.tap(key::q);
    EXPECT_TRUE(serveUntil([&] { return typed == u"q"; }));
    close(fromMenu);
    input.release(key::leftAlt);
    expectNothingLeft();
}

TEST_F(TapEngineTest, ATriggerBehindTheModifiersReleaseWaitsForAsLongAsTheEndTakes) {
    openOneByTheTrigger();
    input.release(key::leftAlt);
    input.chord({key::leftAlt, key::tab});
    ASSERT_TRUE(serveUntil([&] { return ends == 1; }));
    // A main thread that needs longer than any hand does.
    const Deadline busy(milliseconds{400});
    EXPECT_TRUE(serveUntil([&] { return busy.hasPassed(); }));
    EXPECT_EQ(moves, 0);
    EXPECT_EQ(requests, 1U);
    close(latest());
    ASSERT_TRUE(serveUntil([&] { return requests == 2; }));
    open(latest());
    EXPECT_TRUE(serveUntil([&] { return ends == 2; }));
    close(latest());
    expectNothingLeft();
}

TEST_F(TapEngineTest, ATriggerBehindAReleaseThatEndsNothingMovesTheSelection) {
    openOneByTheTrigger();
    input.release(key::leftAlt);
    input.chord({key::leftAlt, key::tab});
    ASSERT_TRUE(serveUntil([&] { return ends == 1; }));
    EXPECT_EQ(moves, 0);
    open(latest());
    EXPECT_TRUE(serveUntil([&] { return moves == 1; }));
    close(latest());
    expectNothingLeft();
}

TEST_F(TapEngineTest, ATriggerThatComesWhileTheTapIsDisabledLeavesNoKeyDown) {
    // The server has grabbed the keyboard for this trigger and holds back what follows, before the tap is disabled.
    input.chord({key::leftAlt, key::tab});
    engine->setEnabled(false);
    expectNothingLeft();
    EXPECT_EQ(requests, 0U);
}

TEST_F(TapEngineTest, ATriggerThatWaitsForTheEndDoesNotKeepTheKeyboardFromTheUserWhenTheProgramHangs) {
    std::vector<std::function<void()>> posted;
    context.postToMainThread = [&](std::function<void()> task) { posted.push_back(std::move(task)); };
    openOneByTheTrigger();
    ASSERT_EQ(posted.size(), 1U) << "asked with the trigger's press";
    input.release(key::leftAlt);
    ASSERT_TRUE(serveUntil([&] { return ends == 1; }));
    // The main thread gets as far as the first question and hangs before the release of the modifier.
    posted.front()();
    input.chord({key::leftAlt, key::tab});
    EXPECT_TRUE(serveUntil([&] { return desktop.keyboardIsFree(); })) << "held although nothing answers";
}

}  // namespace
}  // namespace ferrowyn::x11test
