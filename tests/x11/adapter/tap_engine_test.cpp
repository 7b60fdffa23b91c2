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

#include "platform/log.h"
#include "platform/x11/keyboard/x11_tap_engine.h"
#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {
namespace {

constexpr std::uint16_t tabKey = 48;
constexpr std::string_view guardIsGone = "The keyboard's guard is gone; keys are not held back any more";

/// Does something as soon as a certain message is written.
class HookedLog final : public Log {
public:
    void write(LogLevel /*level*/, std::string_view /*category*/, std::string_view message) override {
        if (message == awaited) {
            if (const auto hook = std::exchange(onMessage, nullptr)) {
                hook();
            }
        }
    }

    std::string_view awaited;
    std::function<void()> onMessage;
};

class TapEngineTest : public testing::Test {
protected:
    TapEngineTest() {
        auto connection = X11Connection::open(server.display().c_str());
        auto guard = X11KeyboardGuard::start(*connection, server.display(), log);
        hasGuard = guard != nullptr;
        engine = X11TapEngine::create(
            std::move(connection), std::move(guard), SwitcherModifier::option,
            [this](const TapEvent& event) { return handle(event); }, context, log);
        engine->handle({.kind = X11TapRequest::Kind::enable});
        serve();
    }

    TapVerdict handle(const TapEvent& event) {
        const bool isOptionDown = (event.flags() & event_flags::option) != 0;
        if (event.type() == TapEvent::Type::keyDown && event.keyCode() == tabKey && isOptionDown) {
            (isOpen ? moves : requests) += 1;
            return {.isSwallowed = true, .requestsSession = !isOpen};
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
    void openSession() {
        isOpen = true;
        engine->handle({.kind = X11TapRequest::Kind::openSession});
    }
    void closeSession() {
        isOpen = false;
        engine->handle({.kind = X11TapRequest::Kind::closeSession});
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
        openSession();
        EXPECT_TRUE(serveUntil([&] { return ends == 1; })) << "the release of the modifier is lost";
        closeSession();
        EXPECT_EQ(moves, 0);
        EXPECT_TRUE(serveUntil([&] { return desktop.keyboardIsFree(); }));
        EXPECT_FALSE(desktop.anyKeyIsDown()) << "a key is stuck";
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
    int requests = 0;
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

}  // namespace
}  // namespace ferrowyn::x11test
