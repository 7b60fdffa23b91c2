#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/x11/desk_test.h"

namespace ferrowyn::x11test {
namespace {

class SwitchingKeysTest : public ManagedDeskTest {};

TEST_P(SwitchingKeysTest, ADigitSwitchesStraightToItsRow) {
    openWindows(5);
    startProgram();
    hold();
    input.tap(key::digit4);
    expectSwitchTo(window(2));
    letGo();
    // 2 5 4 3 1. With Control held instead of the trigger, too; a digit beyond the rows is ignored.
    hold();
    input.tap(key::digit9);
    input.tap(key::down);
    letGo();
    input.chord({key::leftControl, key::digit3});
    expectSwitchTo(window(4));
}

TEST_P(SwitchingKeysTest, TypingFiltersAndReturnSwitches) {
    openActive({.title = "Quarterly report"});
    openWindows(3);
    startProgram();
    hold();
    type({key::r, key::e, key::p});
    // Typing pins: letting go does not switch.
    letGo();
    input.tap(key::enter);
    expectSwitchTo(window(1));
    expectQuiet();
    for (const auto& window : windows) {
        EXPECT_THAT(window->takeInput().keyPresses, testing::Not(testing::Contains(key::r))) << "typed text leaked";
    }
}

TEST_P(SwitchingKeysTest, EscapeClosesWithoutSwitching) {
    openWindows(2);
    startProgram();
    hold();
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    letGo();
    EXPECT_EQ(desktop.activeWindow(), window(2));
}

TEST_P(SwitchingKeysTest, ArrowsPinThePanelOpen) {
    openWindows(4);
    startProgram();
    hold();
    input.tap(key::down);
    // Letting go does not switch to the third row: the panel is still there to be moved in.
    letGo();
    input.tap(key::down);
    input.tap(key::enter);
    expectSwitchTo(window(1));
    hold();
    input.tap(key::down);
    letGo();
    input.tap(key::up);
    input.tap(key::enter);
    expectSwitchTo(window(4));
}

TEST_P(SwitchingKeysTest, QuickTriggersMoveOnAtOnceInAPinnedPanel) {
    openWindows(6);
    startProgram();
    hold();
    input.tap(key::down);
    letGo();
    const auto pressedAt = std::chrono::steady_clock::now();
    for (int move = 1; move <= 4; ++move) {
        input.chord({key::leftAlt, key::tab});
    }
    input.tap(key::enter);
    // Rows: 6 5 4 3 2 1. From the third the four go around to the first.
    expectSwitchTo(window(6));
    // A trigger that waits does so for a quarter of a second, one after the other.
    EXPECT_LT(std::chrono::steady_clock::now() - pressedAt, milliseconds{800});
}

TEST_P(SwitchingKeysTest, HomeEndAndPageKeysJump) {
    openWindows(7);
    startProgram();
    // Rows: 7 6 5 4 3 2 1.
    hold();
    input.tap(key::end);
    input.tap(key::enter);
    expectSwitchTo(window(1));
    letGo();
    // 1 7 6 5 4 3 2: Home, then Page Down by four.
    hold();
    input.tap(key::home);
    input.tap(key::pageDown);
    input.tap(key::enter);
    expectSwitchTo(window(4));
    letGo();
    // 4 1 7 6 5 3 2: End, then Page Up by four.
    hold();
    input.tap(key::end);
    input.tap(key::pageUp);
    input.tap(key::enter);
    expectSwitchTo(window(7));
    letGo();
}

TEST_P(SwitchingKeysTest, ControlLCyclesTheLayoutAndThePanelTakesItsSize) {
    openWindows(3);
    startProgram();
    hold();
    expectPanelWidth(listWidth);
    input.chord({key::leftControl, key::l});
    input.chord({key::leftControl, key::l});
    expectPanelWidth(gridWidth);
    input.chord({key::leftControl, key::l});
    expectPanelWidth(listWidth);
    letGo();
    input.tap(key::escape);
}

TEST_P(SwitchingKeysTest, ControlDPinsTheApplicationWhichThenLeadsEveryList) {
    const ChildProcess terminal = startClient({"xterm", "-T", "Terminal"});
    ASSERT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == 1; }));
    const auto favourite = desktop.clientList().front();
    openWindows(3);
    startProgram(4);
    // Rows: 3 2 1 terminal. Pinned, the terminal stays where it is until the next session.
    hold();
    input.tap(key::end);
    input.chord({key::leftControl, key::d});
    // Letting go does not switch to the terminal: pinning an application pins the panel.
    letGo();
    input.tap(key::up);
    input.tap(key::enter);
    expectSwitchTo(window(1));
    hold();
    input.tap(key::digit1);
    expectSwitchTo(favourite);
    letGo();
}

TEST_P(SwitchingKeysTest, TheTriggerSurvivesAChangeOfTheKeyMap) {
    openWindows(2);
    startProgram();
    for (const std::string layout : {"ru", "fr", "us"}) {
        run({"setxkbmap", layout});
        const auto expected = window(desktop.activeWindow() == window(2) ? 1 : 2);
        input.chord({key::leftAlt, key::tab});
        expectSwitchTo(expected);
    }
}

INSTANTIATE_TEST_SUITE_P(X11, SwitchingKeysTest, testing::Values("openbox", "xfwm4"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
