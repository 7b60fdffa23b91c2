#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "tests/x11/switching_fixture.h"

namespace ferrowyn::x11test {
namespace {

class SwitchingTest : public testing::TestWithParam<const char*> {};

std::string managerName(const testing::TestParamInfo<const char*>& instance) {
    return instance.param;
}

TEST_P(SwitchingTest, AQuickTapTogglesBetweenTheTwoLatestWindows) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(3);
    desk.startProgram();
    for (int round = 0; round < 4; ++round) {
        desk.input.chord({key::leftAlt, key::tab});
        desk.expectSwitchTo(desk.window(round % 2 == 0 ? 2 : 3));
    }
    desk.expectQuiet();
}

TEST_P(SwitchingTest, HoldingCyclesForwardBackwardAndAround) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(4);
    desk.startProgram();
    // Recency: 4 3 2 1. Two Tabs: the third row.
    desk.hold(2);
    desk.letGo();
    desk.expectSwitchTo(desk.window(2));
    // 2 4 3 1. Four Tabs go around to the first row: nothing changes.
    desk.hold(4);
    desk.letGo();
    desk.expectSwitchTo(desk.window(2));
    // Backward opens on the last row.
    desk.holdBackward();
    desk.letGo();
    desk.expectSwitchTo(desk.window(1));
    // 1 2 4 3. Backward once, then forward twice: around to the second row.
    desk.holdBackward();
    desk.input.tap(key::tab);
    desk.input.tap(key::tab);
    desk.letGo();
    desk.expectSwitchTo(desk.window(2));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, ADigitSwitchesStraightToItsRow) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(5);
    desk.startProgram();
    desk.hold();
    desk.input.tap(key::digit4);
    desk.expectSwitchTo(desk.window(2));
    desk.letGo();
    // 2 5 4 3 1. With Control held instead of the trigger, too; a digit beyond the rows is ignored.
    desk.hold();
    desk.input.tap(key::digit9);
    desk.input.tap(key::down);
    desk.letGo();
    desk.input.chord({key::leftControl, key::digit3});
    desk.expectSwitchTo(desk.window(4));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, TypingFiltersAndReturnSwitches) {
    SwitchingFixture desk(GetParam());
    desk.openWindow({.title = "Quarterly report"});
    ASSERT_TRUE(desk.desktop.waitForActiveWindow(desk.window(1)) ||
                (desk.desktop.activate(desk.window(1)), desk.desktop.waitForActiveWindow(desk.window(1))));
    desk.openWindows(3);
    desk.startProgram();
    desk.hold();
    for (const auto letter : {key::r, key::e, key::p}) {
        desk.input.tap(letter);
    }
    // Typing pins: letting go does not switch.
    desk.letGo();
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(1));
    desk.expectQuiet();
    for (const auto& window : desk.windows) {
        EXPECT_THAT(window->takeInput().keyPresses, testing::Not(testing::Contains(key::r))) << "typed text leaked";
    }
}

TEST_P(SwitchingTest, EscapeClosesWithoutSwitching) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    desk.startProgram();
    desk.hold();
    desk.input.tap(key::escape);
    EXPECT_TRUE(desk.desktop.waitForPanel(false)) << "waited for the panel to go";
    desk.letGo();
    EXPECT_EQ(desk.desktop.activeWindow(), desk.window(2));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, ArrowsPinThePanelOpen) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(4);
    desk.startProgram();
    desk.hold();
    desk.input.tap(key::down);
    desk.letGo();
    EXPECT_FALSE(desk.desktop.waitForPanel(false, milliseconds{300})) << "letting go must not close a pinned panel";
    desk.input.tap(key::up);
    desk.input.tap(key::down);
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(2));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, HomeEndAndPageKeysJump) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(7);
    desk.startProgram();
    // Rows: 7 6 5 4 3 2 1.
    desk.hold();
    desk.input.tap(key::end);
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(1));
    desk.letGo();
    // 1 7 6 5 4 3 2: Home, then Page Down by four.
    desk.hold();
    desk.input.tap(key::home);
    desk.input.tap(key::pageDown);
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(4));
    desk.letGo();
    // 4 1 7 6 5 3 2: End, then Page Up by four.
    desk.hold();
    desk.input.tap(key::end);
    desk.input.tap(key::pageUp);
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(7));
    desk.letGo();
    desk.expectQuiet();
}

TEST_P(SwitchingTest, ControlLCyclesTheLayoutAndThePanelTakesItsSize) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(3);
    desk.startProgram();
    desk.hold();
    const auto widthBecomes = [&](int width) {
        return desk.desktop.waitUntil([&] {
            const auto panel = desk.desktop.visiblePanel();
            return panel && desk.desktop.placeOf(*panel)->width == width;
        });
    };
    EXPECT_TRUE(widthBecomes(640));
    desk.input.chord({key::leftControl, key::l});
    desk.input.chord({key::leftControl, key::l});
    EXPECT_TRUE(widthBecomes(760)) << "list, grouped, grid: the grid is wider";
    desk.input.chord({key::leftControl, key::l});
    EXPECT_TRUE(widthBecomes(640));
    desk.letGo();
    desk.input.tap(key::escape);
    desk.expectQuiet();
}

TEST_P(SwitchingTest, ControlDPinsTheApplicationWhichThenLeadsEveryList) {
    SwitchingFixture desk(GetParam());
    ChildProcess::Options options;
    options.command = {"xterm", "-T", "Terminal"};
    options.environment = desk.server.clientEnvironment();
    const ChildProcess terminal(options);
    ASSERT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.clientList().size() == 1; }));
    const auto favourite = desk.desktop.clientList().front();
    desk.openWindows(3);
    desk.startProgram(4);
    // Rows: 3 2 1 terminal. Pinned, the terminal stays where it is until the next session.
    desk.hold();
    desk.input.tap(key::end);
    desk.input.chord({key::leftControl, key::d});
    desk.letGo();
    EXPECT_FALSE(desk.desktop.waitForPanel(false, milliseconds{300})) << "pinning an application pins the panel";
    desk.input.tap(key::escape);
    EXPECT_TRUE(desk.desktop.waitForPanel(false));
    desk.hold();
    desk.input.tap(key::digit1);
    EXPECT_TRUE(desk.desktop.waitForActiveWindow(favourite)) << "the favourite is the first row";
    desk.letGo();
    desk.expectQuiet();
}

TEST_P(SwitchingTest, WithoutAWindowManagerItSaysWhatIsMissingAndStartsOnceThereIsOne) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    desk.manager.reset();
    FerrowynProgram program(FERROWYN_PROGRAM, desk.server);
    EXPECT_TRUE(program.process().waitForOutput("No window manager with the extended window-manager hints is running"));
    EXPECT_EQ(program.process().output().find("Services active"), std::string::npos);
    desk.manager = std::make_unique<WindowManagerProcess>(desk.server, GetParam());
    EXPECT_TRUE(program.waitUntilActive());
}

TEST_P(SwitchingTest, TheProgramEndsWhenTheServerDoes) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(1);
    desk.startProgram();
    desk.windows.clear();
    desk.server.kill();
    EXPECT_EQ(desk.program->process().waitForExit(), 1);
}

TEST_P(SwitchingTest, ClickingARowSwitchesToIt) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(4);
    desk.startProgram();
    desk.hold();
    const auto place = desk.desktop.placeOf(*desk.desktop.visiblePanel());
    ASSERT_TRUE(place);
    // The third row: below the search line and two rows of 52 with 1 between.
    desk.input.click(place->x + 200, place->y + 56 + 8 + 2 * 53 + 26);
    desk.expectSwitchTo(desk.window(2));
    desk.letGo();
    desk.expectQuiet();
}

TEST_P(SwitchingTest, ClickingElsewhereClosesAndStillReachesTheWindowBelow) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    desk.startProgram();
    const auto place = desk.desktop.placeOf(desk.window(2));
    ASSERT_TRUE(place);
    desk.hold();
    // Pinned and let go of: with Alt held the click would be the manager's, to move the window.
    desk.input.tap(key::down);
    desk.letGo();
    static_cast<void>(desk.windows[1]->takeInput());
    desk.input.click(place->x + 20, place->y + place->height - 10);
    EXPECT_TRUE(desk.windows[1]->waitForButtonPress()) << "the click must reach the window below";
    EXPECT_TRUE(desk.desktop.waitForPanel(false))
        << "waited for the panel to go; it said: " << desk.program->process().output();
    EXPECT_EQ(desk.desktop.activeWindow(), desk.window(2));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, ClickingElsewhereWithTheTriggerHeldClosesWhateverTheManagerDoesWithTheClick) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    desk.startProgram();
    const auto place = desk.desktop.placeOf(desk.window(2));
    ASSERT_TRUE(place);
    desk.hold();
    desk.input.click(place->x + 20, place->y + place->height - 10);
    EXPECT_TRUE(desk.desktop.waitForPanel(false)) << "waited for the panel to go";
    desk.letGo();
    EXPECT_EQ(desk.desktop.activeWindow(), desk.window(2));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, AMinimisedWindowIsRestored) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(3);
    desk.startProgram();
    desk.desktop.watchProperties(desk.window(1));
    desk.desktop.iconify(desk.window(1));
    ASSERT_TRUE(desk.desktop.waitUntil([&] { return !desk.desktop.isViewable(desk.window(1)); }));
    desk.hold();
    desk.input.tap(key::end);
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(1));
    EXPECT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.isViewable(desk.window(1)); }));
    desk.letGo();
    desk.expectQuiet();
}

TEST_P(SwitchingTest, AWindowOnAnotherDesktopIsReached) {
    SwitchingFixture desk(GetParam());
    desk.desktop.setDesktopCount(2);
    desk.openWindows(3);
    desk.startProgram();
    desk.desktop.watchProperties(desk.window(1));
    desk.desktop.moveToDesktop(desk.window(1), 1);
    ASSERT_TRUE(desk.desktop.waitUntil([&] {
        const auto on = desk.desktop.cardinals(desk.window(1), "_NET_WM_DESKTOP");
        return !on.empty() && on.front() == 1;
    })) << "waited for the window to be on the other desktop";
    desk.hold();
    desk.input.tap(key::end);
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(1));
    desk.letGo();
    desk.expectQuiet();
}

TEST_P(SwitchingTest, ThePanelStandsAboveAFullScreenWindow) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    desk.startProgram();
    desk.desktop.setState(desk.window(2), "_NET_WM_STATE_FULLSCREEN", true);
    ASSERT_TRUE(desk.desktop.waitUntil([&] {
        const auto place = desk.desktop.placeOf(desk.window(2));
        return place && place->width == 1280 && place->height == 800;
    })) << "waited for the window to fill the screen";
    const auto below = desk.desktop.pixel(640, 300);
    desk.hold();
    const auto place = desk.desktop.placeOf(*desk.desktop.visiblePanel());
    ASSERT_TRUE(place);
    EXPECT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.pixel(place->x + 30, place->y + 20) != below; }));
    desk.letGo();
    desk.expectSwitchTo(desk.window(1));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, DialogsAreListedAndSkipTaskbarWindowsAreNot) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    desk.openWindow({.title = "Save as", .type = "_NET_WM_WINDOW_TYPE_DIALOG", .transientFor = desk.window(1)});
    ASSERT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.clientList().size() == 3; }));
    desk.openWindow({.title = "Helper", .states = {"_NET_WM_STATE_SKIP_TASKBAR"}});
    ASSERT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.clientList().size() == 4; }));
    desk.desktop.activate(desk.window(2));
    ASSERT_TRUE(desk.desktop.waitForActiveWindow(desk.window(2)));
    desk.startProgram(3);
    desk.hold();
    desk.input.tap(key::s);
    desk.input.tap(key::a);
    desk.input.tap(key::v);
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(3));
    desk.letGo();
    desk.expectQuiet();
}

TEST_P(SwitchingTest, AWindowClosedWhileListedKeepsItsRowAndNothingBreaks) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(3);
    desk.startProgram();
    desk.hold();
    desk.windows[1]->destroy();
    ASSERT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.clientList().size() == 2; }));
    desk.letGo();
    EXPECT_TRUE(desk.desktop.waitForPanel(false)) << "waited for the panel to go";
    ASSERT_TRUE(desk.program->waitForList(2, desk.window(3)));
    desk.input.chord({key::leftAlt, key::tab});
    desk.expectSwitchTo(desk.window(1));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, ALockedKeyboardNeverOpensThePanelAndIsPublishedAsSecureInput) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    desk.startProgram();
    TestDesktop locker(desk.server.display());
    const auto grab = xcb_grab_keyboard(locker.connection(), 0, locker.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                        XCB_GRAB_MODE_ASYNC);
    free(xcb_grab_keyboard_reply(locker.connection(), grab, nullptr));
    desk.input.chord({key::leftAlt, key::tab});
    EXPECT_TRUE(desk.program->process().waitForOutput("Secure input active: true"));
    EXPECT_FALSE(desk.desktop.visiblePanel());
    xcb_ungrab_keyboard(locker.connection(), XCB_CURRENT_TIME);
    xcb_flush(locker.connection());
    EXPECT_TRUE(desk.program->process().waitForOutput("Secure input active: false"));
    desk.input.chord({key::leftAlt, key::tab});
    desk.expectSwitchTo(desk.window(1));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, AnApplicationThatHangsIsStillReached) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    ChildProcess::Options options;
    options.command = {"xterm", "-T", "Hanging terminal"};
    options.environment = desk.server.clientEnvironment();
    ChildProcess terminal(options);
    ASSERT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.clientList().size() == 3; }));
    const auto hanging = desk.desktop.clientList().back();
    desk.desktop.activate(hanging);
    ASSERT_TRUE(desk.desktop.waitForActiveWindow(hanging));
    desk.startProgram(3);
    desk.use(desk.window(2));
    terminal.signal(SIGSTOP);
    desk.hold();
    for (const auto letter : {key::h, key::a, key::n, key::g}) {
        desk.input.tap(letter);
    }
    desk.input.tap(key::enter);
    EXPECT_TRUE(desk.desktop.waitForActiveWindow(hanging));
    desk.letGo();
    desk.expectQuiet();
    terminal.signal(SIGCONT);
}

TEST_P(SwitchingTest, APointerThatRestsOnTheRowsDoesNotStealTheSelection) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(5);
    desk.startProgram();
    desk.hold();
    const auto place = desk.desktop.placeOf(*desk.desktop.visiblePanel());
    ASSERT_TRUE(place);
    desk.input.tap(key::escape);
    desk.letGo();
    EXPECT_TRUE(desk.desktop.waitForPanel(false));
    const int rowFour = place->y + 56 + 8 + 3 * 53 + 26;
    desk.input.movePointer(place->x + 300, rowFour);
    desk.hold();
    desk.input.movePointer(place->x + 301, rowFour + 1);
    desk.letGo();
    desk.expectSwitchTo(desk.window(4));
    // More than three points away, the pointer chooses. Rows: 4 5 3 2 1.
    desk.hold();
    const auto selection = desk.desktop.pixel(place->x + 16, rowFour - 2 * 53);
    desk.input.movePointer(place->x + 310, rowFour + 5);
    EXPECT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.pixel(place->x + 16, rowFour) == selection; }))
        << "waited for the selection to be drawn under the pointer";
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(2));
    desk.letGo();
    desk.expectQuiet();
}

TEST_P(SwitchingTest, SwitchingGoesOnAfterTheWindowManagerWasReplaced) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    desk.startProgram();
    desk.manager.reset();
    ASSERT_TRUE(desk.program->process().waitForOutput("Accessibility trust changed to notTrusted"));
    EXPECT_TRUE(desk.program->process().waitForOutput("Services suspended"));
    desk.program->process().discardOutput();
    desk.manager = std::make_unique<WindowManagerProcess>(desk.server, GetParam());
    ASSERT_TRUE(desk.program->waitUntilActive());
    desk.desktop.activate(desk.window(2));
    ASSERT_TRUE(desk.desktop.waitForActiveWindow(desk.window(2)));
    ASSERT_TRUE(desk.program->waitForFirst(desk.window(2)));
    desk.input.chord({key::leftAlt, key::tab});
    desk.expectSwitchTo(desk.window(1));
    desk.expectQuiet();
}

TEST_P(SwitchingTest, TheTriggerSurvivesAChangeOfTheKeyMap) {
    SwitchingFixture desk(GetParam());
    desk.openWindows(2);
    desk.startProgram();
    for (const std::string layout : {"ru", "fr", "us"}) {
        ChildProcess::Options options;
        options.command = {"setxkbmap", layout};
        options.environment = desk.server.clientEnvironment();
        ASSERT_EQ(ChildProcess(options).waitForExit(), 0);
        const auto expected = desk.window(desk.desktop.activeWindow() == desk.window(2) ? 1 : 2);
        desk.input.chord({key::leftAlt, key::tab});
        desk.expectSwitchTo(expected);
    }
    desk.expectQuiet();
}

TEST_P(SwitchingTest, TwoHundredWindowsAreListedAndTheLastIsReached) {
    SwitchingFixture desk(GetParam());
    for (int ordinal = 1; ordinal <= 200; ++ordinal) {
        desk.openWindow({.title = "Window " + std::to_string(ordinal), .width = 120, .height = 90});
    }
    ASSERT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.clientList().size() == 200; }, milliseconds{30000}));
    desk.desktop.activate(desk.window(200));
    ASSERT_TRUE(desk.desktop.waitForActiveWindow(desk.window(200)));
    desk.startProgram();
    desk.use(desk.window(1));
    desk.use(desk.window(2));
    desk.input.chord({key::leftAlt, key::tab});
    desk.expectSwitchTo(desk.window(1));
    desk.hold();
    desk.input.tap(key::end);
    desk.input.tap(key::enter);
    EXPECT_TRUE(desk.desktop.waitUntil([&] { return desk.desktop.activeWindow() != desk.window(1); }));
    desk.letGo();
    desk.expectQuiet();
}

INSTANTIATE_TEST_SUITE_P(X11, SwitchingTest, testing::Values("openbox", "xfwm4"), managerName);

class TwoScreensTest : public testing::TestWithParam<const char*> {};

TEST_P(TwoScreensTest, ThePanelOpensOnTheScreenWithThePointer) {
    SwitchingFixture::Options options;
    options.screens = {"2304x800x24"};
    options.monitors = {"1280/339x800/212+0+0", "1024/271x768/203+1280+0"};
    SwitchingFixture desk(GetParam(), options);
    desk.openWindows(2);
    desk.startProgram();
    for (const auto& [pointer, left, right] : {std::tuple{600, 0, 1280}, std::tuple{1800, 1280, 2304}}) {
        desk.input.movePointer(pointer, 400);
        desk.hold();
        const auto place = desk.desktop.placeOf(*desk.desktop.visiblePanel());
        ASSERT_TRUE(place);
        EXPECT_GE(place->x, left);
        EXPECT_LE(place->x + place->width, right);
        desk.input.tap(key::escape);
        desk.letGo();
        EXPECT_TRUE(desk.desktop.waitForPanel(false));
    }
    desk.expectQuiet();
}

INSTANTIATE_TEST_SUITE_P(X11, TwoScreensTest, testing::Values("openbox"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
