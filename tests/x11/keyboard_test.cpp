#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/x11/switching_fixture.h"

namespace ferrowyn::x11test {
namespace {

constexpr std::uint8_t deadCircumflex = 34, menuKey = 135;

void run(const PrivateXServer& server, const std::vector<std::string>& command) {
    ChildProcess process({.command = command, .environment = server.clientEnvironment()});
    ASSERT_EQ(process.waitForExit(), 0) << process.output();
}

/// As the user's settings file has it: "option", "command" or "control".
void chooseTrigger(const PrivateXServer& server, const std::string& modifier) {
    server.home().write(".config/Ferrowyn/Ferrowyn.ini", "[switcher]\nmodifier=\"" + modifier + "\"\n");
}

void tapAll(TestInput& input, std::initializer_list<std::uint8_t> keyCodes) {
    for (const auto keyCode : keyCodes) {
        input.tap(keyCode);
    }
}

void openTitled(SwitchingFixture& desk, const std::string& title) {
    const auto window = desk.openWindow({.title = title}).id();
    if (!desk.desktop.waitForActiveWindow(window, milliseconds{1000})) {
        desk.desktop.activate(window);
        ASSERT_TRUE(desk.desktop.waitForActiveWindow(window)) << "waited for \"" << title << "\" to be active";
    }
}

TEST(KeyboardTest, LocksOfTheKeyboardChangeNothing) {
    SwitchingFixture desk("openbox");
    openTitled(desk, "Report");
    desk.openWindows(3);
    desk.startProgram();
    const std::vector<std::vector<std::uint8_t>> combinations{
        {key::numLock}, {key::capsLock}, {key::scrollLock}, {key::numLock, key::capsLock, key::scrollLock}};
    for (const auto& locks : combinations) {
        for (const auto lock : locks) {
            desk.input.tap(lock);
        }
        const auto expected = desk.window(desk.desktop.activeWindow() == desk.window(4) ? 3 : 4);
        desk.input.chord({key::leftAlt, key::tab});
        desk.expectSwitchTo(expected);
        for (const auto lock : locks) {
            desk.input.tap(lock);
        }
    }
    for (const auto lock : combinations.back()) {
        desk.input.tap(lock);
    }
    desk.hold();
    tapAll(desk.input, {key::r, key::e, key::p});
    desk.letGo();
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(1));
    desk.hold();
    desk.input.tap(key::digit3);
    desk.expectSwitchTo(desk.window(3));
    desk.letGo();
    desk.expectQuiet();
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

class SecondLayoutTest : public testing::TestWithParam<SecondLayout> {
protected:
    /// The second layout is the active one from here on.
    static void switchLayout(SwitchingFixture& desk) {
        run(desk.server, {"setxkbmap", "-layout", std::string("us,") + GetParam().layout, "-variant",
                          std::string(",") + GetParam().variant, "-option", "grp:caps_toggle"});
        desk.input.tap(key::capsLock);
    }
};

TEST_P(SecondLayoutTest, KeysKeepTheirPlacesAndTypedTextFollowsTheLayout) {
    SwitchingFixture desk("openbox");
    openTitled(desk, std::string("1 ") + GetParam().typed);
    desk.openWindows(4);
    desk.startProgram();
    switchLayout(desk);

    // The trigger, and back.
    desk.input.chord({key::leftAlt, key::tab});
    desk.expectSwitchTo(desk.window(4));
    // 4 5 3 2 1: a digit is a place on the keyboard.
    desk.hold();
    desk.input.tap(key::digit3);
    desk.expectSwitchTo(desk.window(3));
    desk.letGo();
    // 3 4 5 2 1: Control+D neither types nor lets go of the panel.
    desk.hold();
    desk.input.chord({key::leftControl, key::d});
    desk.letGo();
    EXPECT_FALSE(desk.desktop.waitForPanel(false, milliseconds{300})) << "Control+D pins the panel";
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(4));
    // Control+L, twice: the grid is wider.
    desk.hold();
    desk.input.chord({key::leftControl, key::l});
    desk.input.chord({key::leftControl, key::l});
    EXPECT_TRUE(desk.desktop.waitUntil([&] {
        const auto panel = desk.desktop.visiblePanel();
        return panel && desk.desktop.placeOf(*panel)->width == 760;
    })) << "waited for the grid";
    tapAll(desk.input, {key::a, key::s, key::d});
    desk.letGo();
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(1));
    desk.expectQuiet();
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

TEST(KeyboardTest, DeadKeysAndComposeSequencesTypeTheirText) {
    SwitchingFixture desk("openbox");
    openTitled(desk, "2 ^ 8");
    openTitled(desk, "© Notes");
    desk.openWindows(2);
    run(desk.server, {"setxkbmap", "-layout", "fr", "-option", "compose:menu"});
    desk.startProgram();
    desk.hold();
    tapAll(desk.input, {deadCircumflex, key::space});
    desk.letGo();
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(1));
    desk.hold();
    tapAll(desk.input, {menuKey, key::o, key::c});
    desk.letGo();
    desk.input.tap(key::enter);
    desk.expectSwitchTo(desk.window(2));
    desk.expectQuiet();
}

TEST(KeyboardTest, AHeldTabMovesOnAndStopsAtOnceOnRelease) {
    constexpr int delay = 200, rate = 20;
    SwitchingFixture desk("openbox");
    desk.openWindows(30);
    run(desk.server, {"xset", "r", "rate", std::to_string(delay), std::to_string(rate)});
    desk.startProgram();
    using Clock = std::chrono::steady_clock;
    // How long a finger holds a key, not a wait for something.
    const auto holdFor = [](milliseconds duration) { std::this_thread::sleep_for(duration); };
    desk.input.press(key::leftAlt);
    const auto pressed = Clock::now();
    desk.input.press(key::tab);
    holdFor(milliseconds{600});
    desk.input.release(key::tab);
    const double held = std::chrono::duration<double, std::milli>(Clock::now() - pressed).count();
    // Long enough for ten more, were it to go on.
    holdFor(milliseconds{500});
    desk.letGo();
    EXPECT_TRUE(desk.desktop.waitForPanel(false));
    // The manager passes through no active window at all on its way.
    xcb_window_t active = XCB_WINDOW_NONE;
    ASSERT_TRUE(desk.desktop.waitUntil([&] {
        active = desk.desktop.activeWindow();
        return active != XCB_WINDOW_NONE && active != desk.window(30);
    }));
    int row = 0;
    while (row < 30 && desk.window(static_cast<std::size_t>(30 - row)) != active) {
        ++row;
    }
    EXPECT_GE(row, 3) << "it never repeated";
    EXPECT_LE(row, 1 + 2 + static_cast<int>((held - delay) * rate / 1000)) << "it went on";
    desk.expectQuiet();
}

TEST(KeyboardTest, SuperIsATriggerWithTabAndTheKeyAboveIt) {
    SwitchingFixture desk("openbox");
    chooseTrigger(desk.server, "command");
    desk.openWindows(3);
    desk.startProgram();
    desk.input.chord({key::leftSuper, key::tab});
    desk.expectSwitchTo(desk.window(2));
    desk.input.chord({key::leftSuper, key::grave});
    desk.expectSwitchTo(desk.window(3));
    // 3 2 1: backward, to the last.
    desk.input.chord({key::leftSuper, key::leftShift, key::grave});
    desk.expectSwitchTo(desk.window(1));
    desk.input.press(key::leftSuper);
    desk.input.tap(key::tab);
    ASSERT_TRUE(desk.desktop.waitForPanel(true));
    desk.input.tap(key::digit3);
    desk.expectSwitchTo(desk.window(2));
    desk.input.release(key::leftSuper);
    desk.expectQuiet();
}

TEST(KeyboardTest, ControlIsATrigger) {
    SwitchingFixture desk("openbox");
    chooseTrigger(desk.server, "control");
    desk.openWindows(3);
    desk.startProgram();
    desk.input.chord({key::leftControl, key::tab});
    desk.expectSwitchTo(desk.window(2));
    desk.input.chord({key::leftControl, key::leftShift, key::tab});
    desk.expectSwitchTo(desk.window(1));
    // 1 2 3.
    desk.input.press(key::leftControl);
    desk.input.tap(key::tab);
    desk.input.tap(key::tab);
    desk.input.release(key::leftControl);
    desk.expectSwitchTo(desk.window(3));
    desk.expectQuiet();
}

}  // namespace
}  // namespace ferrowyn::x11test
