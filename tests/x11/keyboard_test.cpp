#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/x11/desk_test.h"

namespace ferrowyn::x11test {
namespace {

constexpr std::uint8_t deadCircumflex = 34, menuKey = 135;

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
