#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

constexpr std::uint8_t deadCircumflex = 34, menuKey = 135;

namespace keypad {
constexpr std::uint8_t home = 79, up = 80, pageUp = 81, left = 83, right = 85, end = 87, down = 88, pageDown = 89,
                       enter = 104;
}  // namespace keypad

class KeyboardTest : public DeskTest<testing::Test> {
protected:
    KeyboardTest() : DeskTest("openbox") {}
};

TEST_F(KeyboardTest, LocksOfTheKeyboardChangeNothing) {
    openActive({.title = "Report"});
    openWindows(3);
    startProgram();
    const std::vector<std::vector<std::uint8_t>> combinations{
        {key::numLock}, {key::capsLock}, {key::scrollLock}, {key::numLock, key::capsLock, key::scrollLock}};
    for (const auto& locks : combinations) {
        for (const auto lock : locks) {
            input.tap(lock);
        }
        const auto expected = window(desktop.activeWindow() == window(4) ? 3 : 4);
        input.chord({key::leftAlt, key::tab});
        expectSwitchTo(expected);
        for (const auto lock : locks) {
            input.tap(lock);
        }
    }
    for (const auto lock : combinations.back()) {
        input.tap(lock);
    }
    hold();
    type({key::r, key::e, key::p});
    letGo();
    input.tap(key::enter);
    expectSwitchTo(window(1));
    hold();
    input.tap(key::digit3);
    expectSwitchTo(window(3));
    letGo();
}

/// A layout that stands second after an American one, and what its keys in the places of A, S and D type.
struct SecondLayout {
    const char* name;
    const char* layout;
    const char* variant;
    const char* typed;
};

void PrintTo(const SecondLayout& layout, std::ostream* stream) {
    *stream << layout.name;
}

class SecondLayoutTest : public DeskTest<testing::TestWithParam<SecondLayout>> {
protected:
    SecondLayoutTest() : DeskTest("openbox") {}

    /// The second layout is the active one from here on.
    void switchLayout() {
        run({"setxkbmap", "-layout", std::string("us,") + GetParam().layout, "-variant",
             std::string(",") + GetParam().variant, "-option", "grp:caps_toggle"});
        input.tap(key::capsLock);
    }
};

TEST_P(SecondLayoutTest, KeysKeepTheirPlacesAndTypedTextFollowsTheLayout) {
    openActive({.title = std::string("1 ") + GetParam().typed});
    openWindows(4);
    startProgram();
    switchLayout();

    // The trigger, and back.
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(4));
    // 4 5 3 2 1: a digit is a place on the keyboard.
    hold();
    input.tap(key::digit3);
    expectSwitchTo(window(3));
    letGo();
    // 3 4 5 2 1: Control+D neither types nor lets go of the panel.
    hold();
    input.chord({key::leftControl, key::d});
    letGo();
    type({key::down, key::enter});
    expectSwitchTo(window(5));
    // Control+L, twice: the grid is wider.
    hold();
    input.chord({key::leftControl, key::l});
    input.chord({key::leftControl, key::l});
    expectPanelWidth(gridWidth);
    type({key::a, key::s, key::d});
    letGo();
    input.tap(key::enter);
    expectSwitchTo(window(1));
}

std::string layoutName(const testing::TestParamInfo<SecondLayout>& instance) {
    return instance.param.name;
}

INSTANTIATE_TEST_SUITE_P(X11, SecondLayoutTest,
                         testing::Values(SecondLayout{"Cyrillic", "ru", "", "фыв"},
                                         SecondLayout{"Greek", "gr", "", "ασδ"},
                                         SecondLayout{"Dvorak", "us", "dvorak", "aoe"},
                                         SecondLayout{"Azerty", "fr", "", "qsd"}),
                         layoutName);

TEST_F(KeyboardTest, DeadKeysAndComposeSequencesTypeTheirText) {
    openActive({.title = "2 ^ 8"});
    openActive({.title = "© Notes"});
    openWindows(2);
    run({"setxkbmap", "-layout", "fr", "-option", "compose:menu"});
    startProgram();
    hold();
    type({deadCircumflex, key::space});
    letGo();
    input.tap(key::enter);
    expectSwitchTo(window(1));
    hold();
    type({menuKey, key::o, key::c});
    letGo();
    input.tap(key::enter);
    expectSwitchTo(window(2));
}

/// A way to make the Caps Lock key an Escape key, and whether the Escape key remains one.
struct RemappedEscape {
    const char* name;
    std::vector<std::string> command;
    bool keepsEscape;
};

void PrintTo(const RemappedEscape& remapped, std::ostream* stream) {
    *stream << remapped.name;
}

class RemappedEscapeTest : public DeskTest<testing::TestWithParam<RemappedEscape>> {
protected:
    RemappedEscapeTest() : DeskTest("openbox") {}

    /// In a session, this key closes the panel or does not, and nothing is switched if it does.
    void expectCancels(std::uint8_t keyCode, bool cancels) {
        const auto active = desktop.activeWindow();
        const auto other = window(active == window(2) ? 1 : 2);
        hold();
        input.tap(keyCode);
        if (cancels) {
            EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for key " << int{keyCode} << " to cancel";
            EXPECT_EQ(desktop.activeWindow(), active);
            letGo();
        } else {
            letGo();
            expectSwitchTo(other);
        }
        expectQuiet();
    }
};

TEST_P(RemappedEscapeTest, TheKeyThatIsEscapeCancels) {
    openWindows(2);
    startProgram();
    run(GetParam().command);
    // The map is read between sessions: by the end of this one it has been.
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(1));
    expectCancels(key::capsLock, true);
    expectCancels(key::escape, GetParam().keepsEscape);
}

std::string remappedName(const testing::TestParamInfo<RemappedEscape>& instance) {
    return instance.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    X11, RemappedEscapeTest,
    testing::Values(RemappedEscape{"SwappedWithCapsLock", {"setxkbmap", "-option", "caps:swapescape"}, false},
                    RemappedEscape{"AlsoOnCapsLock", {"setxkbmap", "-option", "caps:escape"}, true},
                    // The key stays among those of the Lock modifier.
                    RemappedEscape{"ByXmodmap", {"xmodmap", "-e", "keycode 66 = Escape"}, true},
                    RemappedEscape{
                        "ByXmodmapWithoutLock",
                        {"xmodmap", "-e", "clear Lock", "-e", "keycode 66 = Escape", "-e", "keycode 9 = F13"},
                        false}),
    remappedName);

TEST_F(KeyboardTest, TheKeypadMovesUnlessNumLockMakesItType) {
    openActive({.title = "Report 4"});
    openWindows(6);
    startProgram();
    // Rows: 7 6 5 4 3 2 1.
    hold();
    input.tap(keypad::end);
    input.tap(keypad::enter);
    expectSwitchTo(window(1));
    letGo();
    // 1 7 6 5 4 3 2: Home, then Page Down by four.
    hold();
    input.tap(keypad::home);
    input.tap(keypad::pageDown);
    input.tap(keypad::enter);
    expectSwitchTo(window(4));
    letGo();
    // 4 1 7 6 5 3 2: End, then Page Up by four.
    hold();
    input.tap(keypad::end);
    input.tap(keypad::pageUp);
    input.tap(keypad::enter);
    expectSwitchTo(window(7));
    letGo();
    // 7 4 1 6 5 3 2: from the second row.
    hold();
    type({keypad::down, keypad::down, keypad::up, keypad::right, keypad::left, keypad::right, keypad::enter});
    expectSwitchTo(window(6));
    letGo();
    input.tap(key::numLock);
    hold();
    type({key::r, key::e, keypad::left});
    letGo();
    input.tap(keypad::enter);
    expectSwitchTo(window(1));
    input.tap(key::numLock);
}

TEST_F(KeyboardTest, ShiftThatWentUpBeforeTheProgramWasServedStillGoesBack) {
    run({"setxkbmap", "-layout", "us,ru", "-option", "grp:alt_shift_toggle"});
    openWindows(4);
    startProgram();
    input.press(key::leftAlt);
    input.grabServer();
    input.press(key::leftShift);
    input.press(key::tab);
    input.release(key::leftShift);
    input.ungrabServer();
    input.release(key::tab);
    letGo();
    // 4 3 2 1.
    expectSwitchTo(window(1));
    // And one that comes after Tab turns nothing round.
    input.press(key::leftAlt);
    input.grabServer();
    input.press(key::tab);
    input.press(key::leftShift);
    input.ungrabServer();
    input.release(key::tab);
    letGo();
    expectSwitchTo(window(4));
    input.release(key::leftShift);
}

/// Layouts are switched with Alt and Shift together: the second of the two is a switch then, and no modifier.
TEST_F(KeyboardTest, ShiftGoesBackWhereItSwitchesTheLayoutWithAlt) {
    run({"setxkbmap", "-layout", "us,ru", "-option", "grp:alt_shift_toggle"});
    openWindows(5);
    startProgram();
    // 5 4 3 2 1: the last one.
    input.press(key::leftAlt);
    input.press(key::leftShift);
    input.tap(key::tab);
    ASSERT_TRUE(desktop.waitForPanel(true));
    input.release(key::leftShift);
    letGo();
    expectSwitchTo(window(1));
    // 1 5 4 3 2: in the session, too.
    hold();
    input.press(key::leftShift);
    input.tap(key::tab);
    input.tap(key::tab);
    input.release(key::leftShift);
    letGo();
    expectSwitchTo(window(2));
    // 2 1 5 4 3: and forward again without it.
    hold(2);
    letGo();
    expectSwitchTo(window(5));
}

TEST_F(KeyboardTest, AHeldTabMovesOnAndStopsAtOnceOnRelease) {
    constexpr int delay = 200, rate = 20;
    openWindows(30);
    run({"xset", "r", "rate", std::to_string(delay), std::to_string(rate)});
    startProgram();
    using Clock = std::chrono::steady_clock;
    // How long a finger holds a key, not a wait for something.
    const auto holdFor = [](milliseconds duration) { std::this_thread::sleep_for(duration); };
    input.press(key::leftAlt);
    const auto pressed = Clock::now();
    input.press(key::tab);
    holdFor(milliseconds{600});
    input.release(key::tab);
    const double held = std::chrono::duration<double, std::milli>(Clock::now() - pressed).count();
    // Long enough for ten more, were it to go on.
    holdFor(milliseconds{500});
    letGo();
    EXPECT_TRUE(desktop.waitForPanel(false));
    // The manager passes through no active window at all on its way.
    xcb_window_t active = XCB_WINDOW_NONE;
    ASSERT_TRUE(desktop.waitUntil([&] {
        active = desktop.activeWindow();
        return active != XCB_WINDOW_NONE && active != window(30);
    }));
    int row = 0;
    while (row < 30 && window(static_cast<std::size_t>(30 - row)) != active) {
        ++row;
    }
    EXPECT_GE(row, 3) << "it never repeated";
    EXPECT_LE(row, 1 + 2 + static_cast<int>((held - delay) * rate / 1000)) << "it went on";
}

TEST_F(KeyboardTest, SuperIsATriggerWithTabAndTheKeyAboveIt) {
    writeSwitcherSetting("modifier=\"command\"");
    openWindows(3);
    startProgram();
    input.chord({key::leftSuper, key::tab});
    expectSwitchTo(window(2));
    input.chord({key::leftSuper, key::grave});
    expectSwitchTo(window(3));
    // 3 2 1: backward, to the last.
    input.chord({key::leftSuper, key::leftShift, key::grave});
    expectSwitchTo(window(1));
    input.press(key::leftSuper);
    input.tap(key::tab);
    ASSERT_TRUE(desktop.waitForPanel(true));
    input.tap(key::digit3);
    expectSwitchTo(window(2));
    input.release(key::leftSuper);
}

TEST_F(KeyboardTest, ControlIsATrigger) {
    writeSwitcherSetting("modifier=\"control\"");
    openWindows(3);
    startProgram();
    input.chord({key::leftControl, key::tab});
    expectSwitchTo(window(2));
    input.chord({key::leftControl, key::leftShift, key::tab});
    expectSwitchTo(window(1));
    // 1 2 3.
    input.press(key::leftControl);
    input.tap(key::tab);
    input.tap(key::tab);
    input.release(key::leftControl);
    expectSwitchTo(window(3));
}

}  // namespace
}  // namespace ferrowyn::x11test
