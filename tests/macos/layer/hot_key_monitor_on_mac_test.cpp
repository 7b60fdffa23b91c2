#include <chrono>

#include "input/hot_key_monitor.h"
#include "input/tap_state.h"
#include "platform/macos/mac_keyboard_tap.h"
#include "platform/macos/mac_trust.h"
#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using fake::Keyboard;
using testing::ElementsAre;
using testing::IsEmpty;

using Outcome = Keyboard::Outcome;
using Failure = HotKeyMonitor::Failure;
constexpr Keyboard::Key optionTab{.keyCode = 48, .flags = kCGEventFlagMaskAlternate};

/// The monitor of the program on this layer's taps and trust, with the simulated clock.
class HotKeyMonitorOnMacTest : public MacFixture {
protected:
    HotKeyMonitorOnMacTest() {
        monitor->onCommand = [this](const SwitcherCommand& command) { commands.push_back(command); };
        monitor->onTapFailed = [this](Failure failure) { failures.push_back(failure); };
    }
    ~HotKeyMonitorOnMacTest() override { system.letThreadsGo(); }

    [[nodiscard]] Platform platformOnMac() {
        const Platform& simulated = desktop.platform();
        return {.mainLoop = simulated.mainLoop,
                .backgroundWork = simulated.backgroundWork,
                .log = simulated.log,
                .userDefaults = simulated.userDefaults,
                .application = simulated.application,
                .workspace = simulated.workspace,
                .windowInventory = simulated.windowInventory,
                .accessibilityObservers = simulated.accessibilityObservers,
                .windowControl = simulated.windowControl,
                .trust = trust,
                .keyboardTaps = taps,
                .screens = simulated.screens,
                .pointer = simulated.pointer,
                .panel = simulated.panel,
                .icons = simulated.icons,
                .httpClient = simulated.httpClient,
                .loginItem = simulated.loginItem,
                .texts = simulated.texts};
    }
    /// Presses a key and lets the main thread hear of it.
    Outcome press(const Keyboard::Key& key) {
        const Outcome outcome = keyboard.press(key);
        desktop.settle();
        return outcome;
    }

    MacKeyboardTaps taps{[](const std::function<void()>& work) { work(); }};
    MacTrust trust{[](const auto&) { return Subscription(); }};
    std::unique_ptr<HotKeyMonitor> monitor = std::make_unique<HotKeyMonitor>(platformOnMac(), SwitcherModifier::option);
    std::vector<SwitcherCommand> commands;
    std::vector<Failure> failures;
};

TEST_F(HotKeyMonitorOnMacTest, TheTriggerIsSwallowedAndOpensTheSwitcher) {
    ASSERT_TRUE(monitor->start());
    EXPECT_EQ(press(optionTab), Outcome::swallowed);
    EXPECT_EQ(press({.keyCode = 0}), Outcome::reachedApplication);
    EXPECT_THAT(commands, ElementsAre(SwitcherCommand(command::Invoke{false})));
}

TEST_F(HotKeyMonitorOnMacTest, TypedTextLosesTheTriggerButKeepsShift) {
    keyboard.layout[{0, 0}] = u"a";
    keyboard.layout[{0, kCGEventFlagMaskShift}] = u"A";
    keyboard.layout[{0, kCGEventFlagMaskAlternate}] = u"å";
    keyboard.layout[{0, kCGEventFlagMaskAlternate | kCGEventFlagMaskShift}] = u"Å";
    ASSERT_TRUE(monitor->start());
    monitor->state().openSession(false);
    EXPECT_EQ(press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate}), Outcome::swallowed);
    EXPECT_EQ(press({.keyCode = 0, .flags = kCGEventFlagMaskAlternate | kCGEventFlagMaskShift}), Outcome::swallowed);
    EXPECT_EQ(press({.keyCode = 0}), Outcome::swallowed);
    EXPECT_THAT(commands,
                ElementsAre(SwitcherCommand(command::InsertText{"a"}), SwitcherCommand(command::InsertText{"A"}),
                            SwitcherCommand(command::InsertText{"a"})));
}

TEST_F(HotKeyMonitorOnMacTest, LettingTheTriggerGoIsPassedOnAndSent) {
    ASSERT_TRUE(monitor->start());
    monitor->state().openSession(true);
    EXPECT_EQ(press({.type = kCGEventFlagsChanged}), Outcome::reachedApplication);
    EXPECT_THAT(commands, ElementsAre(SwitcherCommand(command::ModifierReleased{})));
}

TEST_F(HotKeyMonitorOnMacTest, FourTimeoutsAreRetriedAndTheFifthGivesTheTapUp) {
    ASSERT_TRUE(monitor->start());
    for (const Seconds delay : {Seconds(0.25), Seconds(0.5), Seconds(1), Seconds(2)}) {
        keyboard.disableTap(kCGEventTapDisabledByTimeout);
        desktop.settle();
        EXPECT_FALSE(keyboard.isTapEnabled());
        desktop.advance(delay);
        EXPECT_TRUE(keyboard.isTapEnabled()) << "after " << delay.count() << " s";
    }
    keyboard.disableTap(kCGEventTapDisabledByTimeout);
    desktop.settle();
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_FALSE(monitor->isRunning().get());
    EXPECT_THAT(failures, ElementsAre(Failure::repeatedTimeouts));
}

TEST_F(HotKeyMonitorOnMacTest, ATapDisabledByUserInputComesBackAtOnce) {
    ASSERT_TRUE(monitor->start());
    keyboard.disableTap(kCGEventTapDisabledByUserInput);
    EXPECT_FALSE(keyboard.isTapEnabled());
    desktop.settle();
    EXPECT_TRUE(keyboard.isTapEnabled());
}

TEST_F(HotKeyMonitorOnMacTest, TrustThatIsRevokedTakesTheTapDown) {
    ASSERT_TRUE(monitor->start());
    system.isTrusted = false;
    desktop.advance(3s);
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_THAT(failures, ElementsAre(Failure::trustRevoked));
}

TEST_F(HotKeyMonitorOnMacTest, WithoutTrustOrTapItDoesNotStart) {
    system.isTrusted = false;
    EXPECT_FALSE(monitor->start());
    EXPECT_THAT(takeLog(), ElementsAre("Cannot install event tap without Accessibility trust"));
    system.isTrusted = true;
    keyboard.refusesTaps = true;
    EXPECT_FALSE(monitor->start());
    EXPECT_THAT(takeLog(), ElementsAre("CGEvent.tapCreate failed"));
}

TEST_F(HotKeyMonitorOnMacTest, WithoutASourceItDoesNotStartAndTheKeyboardStaysUsable) {
    keyboard.refusesSources = true;
    EXPECT_FALSE(monitor->start());
    EXPECT_FALSE(monitor->isRunning().get());
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_THAT(takeLog(), ElementsAre("CFMachPortCreateRunLoopSource failed"));
    desktop.advance(60s);
    EXPECT_THAT(takeLog(), IsEmpty());
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);
    EXPECT_THAT(commands, IsEmpty());
    keyboard.refusesSources = false;
    EXPECT_TRUE(monitor->start());
    EXPECT_EQ(press(optionTab), Outcome::swallowed);
}

TEST_F(HotKeyMonitorOnMacTest, StoppingRemovesTheSourceBeforeThePortGoes) {
    ASSERT_TRUE(monitor->start());
    EXPECT_THAT(
        fake::RunLoop::takeJournal(),
        ElementsAre("disable the tap", "add the tap to a thread's loop in kCFRunLoopCommonModes", "enable the tap"));
    monitor->stop();
    EXPECT_THAT(fake::RunLoop::takeJournal(),
                ElementsAre("disable the tap", "remove the tap from a thread's loop in kCFRunLoopCommonModes",
                            "stop a thread's loop", "invalidate the tap's port"));
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);
    EXPECT_TRUE(monitor->start()) << "and it can start again";
    EXPECT_EQ(press(optionTab), Outcome::swallowed);
}

TEST_F(HotKeyMonitorOnMacTest, AThreadThatIsSlowToStartIsWaitedForOneSecond) {
    system.holdNewThreads();
    const auto before = std::chrono::steady_clock::now();
    EXPECT_TRUE(monitor->start());
    const auto waited = std::chrono::steady_clock::now() - before;
    EXPECT_GE(waited, 1s);
    EXPECT_LT(waited, 15s) << "and not until it comes, which it never does";
    EXPECT_TRUE(monitor->isRunning().get());
    EXPECT_FALSE(keyboard.isTapEnabled()) << "no key may wait for a thread that does not serve yet";
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);
    system.letThreadsGo();
    monitor->stop();
}

TEST_F(HotKeyMonitorOnMacTest, AThreadThatComesAfterAllServesTheTapFromThenOn) {
    system.holdNewThreads();
    EXPECT_TRUE(monitor->start());
    desktop.advance(3s);
    EXPECT_FALSE(keyboard.isTapEnabled()) << "the health check does not know who serves the tap";
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);
    system.letThreadsGo();
    ASSERT_TRUE(keyboard.waitUntilTapIsEnabled());
    EXPECT_EQ(press(optionTab), Outcome::swallowed);
    EXPECT_THAT(commands, ElementsAre(SwitcherCommand(command::Invoke{false})));
}

}  // namespace
}  // namespace ferrowyn
