#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/x11/harness/test_input.h"
#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

class QuickToggleTest : public ManagedDeskTest {};

TEST_P(QuickToggleTest, AQuickTapTogglesBetweenTheTwoLatestWindows) {
    openWindows(3);
    startProgram();
    for (int round = 0; round < 4; ++round) {
        input.chord({key::leftAlt, key::tab});
        expectSwitchTo(window(round % 2 == 0 ? 2 : 3));
    }
}

TEST_P(QuickToggleTest, HoldingCyclesForwardBackwardAndAround) {
    openWindows(4);
    startProgram();
    // Recency: 4 3 2 1. Two Tabs: the third row.
    hold(2);
    letGo();
    expectSwitchTo(window(2));
    // 2 4 3 1. Four Tabs go around to the first row: nothing changes.
    hold(4);
    letGo();
    expectSwitchTo(window(2));
    // Backward opens on the last row.
    holdBackward();
    letGo();
    expectSwitchTo(window(1));
    // 1 2 4 3. Backward once, then forward twice: around to the second row.
    holdBackward();
    input.tap(key::tab);
    input.tap(key::tab);
    letGo();
    expectSwitchTo(window(2));
}

INSTANTIATE_TEST_SUITE_P(X11, QuickToggleTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, QuickToggleTest,
                         testing::Values("icewm", "metacity", "i3", "kwin_x11", "mutter", "wmaker"), managerName);

/// A window manager and how many switches are tried under it.
struct Trial {
    const char* manager;
    int switches;
};

void PrintTo(const Trial& trial, std::ostream* stream) {
    *stream << trial.manager;
}

class FastSwitchingTest : public DeskTest<testing::TestWithParam<Trial>> {
protected:
    FastSwitchingTest() : DeskTest(GetParam().manager) {}
};

TEST_P(FastSwitchingTest, EveryFastSwitchEndsOnTheExpectedWindow) {
    openWindows(3);
    startProgram();
    Hands hands(input);
    for (int round = 0; round < GetParam().switches; ++round) {
        const auto expected = window(round % 2 == 0 ? 2 : 3);
        hands.toggle();
        ASSERT_TRUE(desktop.waitForActiveWindow(expected, milliseconds{3000}))
            << "switch " << round << ": waited for " << expected << ", but " << desktop.activeWindow()
            << " is active; it said: " << program->process().output();
        ASSERT_TRUE(desktop.waitForPanel(false)) << "switch " << round << ": the panel stayed";
    }
}

std::string trialName(const testing::TestParamInfo<Trial>& instance) {
    return instance.param.manager;
}

INSTANTIATE_TEST_SUITE_P(X11, FastSwitchingTest, testing::Values(Trial{"openbox", 500}, Trial{"xfwm4", 500}),
                         trialName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, FastSwitchingTest,
                         testing::Values(Trial{"icewm", 100}, Trial{"metacity", 100}, Trial{"i3", 100},
                                         Trial{"kwin_x11", 100}, Trial{"mutter", 100}),
                         trialName);

class PreEmptedBindingTest : public ManagedDeskTest {
protected:
    /// In a session that is on the screen: nothing but the panel was added, and nothing has been switched yet.
    void expectOnlyThePanel(const std::set<xcb_window_t>& shownBefore, xcb_window_t active) {
        auto expected = shownBefore;
        expected.insert(desktop.visiblePanel().value_or(XCB_WINDOW_NONE));
        EXPECT_EQ(desktop.shownTopLevels(), expected) << "the manager shows something of its own";
        EXPECT_EQ(desktop.activeWindow(), active) << "the manager switched by itself";
    }
};

TEST_P(PreEmptedBindingTest, TheKeyIsTheManagersUntilTheProgramRuns) {
    openWindows(3);
    expectManagerSwitches();
    for (std::size_t ordinal = 1; ordinal <= 3; ++ordinal) {
        makeActive(window(ordinal));
    }
    startProgram();
    const auto shown = desktop.shownTopLevels();

    hold(2);
    expectOnlyThePanel(shown, window(3));
    letGo();
    expectSwitchTo(window(1));
    holdBackward();
    expectOnlyThePanel(shown, window(1));
    letGo();
    expectSwitchTo(window(2));
    EXPECT_EQ(desktop.shownTopLevels(), shown);
}

INSTANTIATE_TEST_SUITE_P(X11, PreEmptedBindingTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, PreEmptedBindingTest,
                         testing::Values("icewm", "metacity", "i3", "kwin_x11", "mutter"), managerName);

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
