// Every control of the settings window, reached and changed with the keyboard alone.

#include "tests/x11/switching/switching_desk.h"
#include "tests/x11/windows/windows_fixture.h"

namespace ferrowyn::x11test {
namespace {

class SettingsKeyboardTest : public WindowsFixture {
protected:
    /// From one entry of the sidebar to the next.
    void nextPane(const std::string& name) {
        input.tap(key::down);
        expectFocus("list item", name);
        expectLabel(settingsTitle, name);
    }
    void tabTo(const std::string& role, const std::string& name) {
        input.tap(key::tab);
        expectFocus(role, name);
    }
    /// Space presses the switch that has the focus.
    void tabToAndToggle(const std::string& name, bool isOn) {
        tabTo("check box", name);
        input.tap(key::space);
        expectChecked(settingsTitle, "check box", name, isOn);
    }
    void backToSidebar(int controls) {
        for (int control = 0; control < controls; ++control) {
            input.chord({key::leftShift, key::tab});
        }
        expectFocus("list", "Settings");
    }
};

TEST_F(SettingsKeyboardTest, TabReachesEveryControlAndKeysChangeIt) {
    server.home().write(".config/Ferrowyn/Ferrowyn.ini",
                        "[switcher]\nfavouriteBundleIdentifiers=[\"org.example.gone\", \"org.example.browser\"]\n");
    start();
    open("--settings", settingsTitle);
    tabToAndToggle("Launch Ferrowyn at login", true);
    tabToAndToggle("Check for updates automatically", false);
    tabTo("push button", "Check Now");
    backToSidebar(3);

    nextPane("Shortcut");
    tabTo("combo box", "Summon with");
    input.tap(key::down);
    expectSetting("switcher", "modifier", "\"command\"");
    tabToAndToggle("Switch when the modifier is released", false);
    backToSidebar(2);

    nextPane("Appearance");
    tabTo("radio button", "List");
    input.tap(key::right);
    expectChecked(settingsTitle, "radio button", "Grouped", true);
    input.tap(key::right);
    expectChecked(settingsTitle, "radio button", "Grid", true);
    tabTo("spin box", "Show up to 9 rows before scrolling");
    input.tap(key::up);
    expectLabel(settingsTitle, "Show up to 10 rows before scrolling");
    tabToAndToggle("Show shortcut hints", false);
    backToSidebar(3);

    nextPane("Windows");
    tabToAndToggle("Show the active app's windows first", false);
    tabToAndToggle("Minimised windows", false);
    tabToAndToggle("Windows on other workspaces", false);
    backToSidebar(3);

    nextPane("Favourites");
    tabToAndToggle("Show favourite apps first", false);
    tabTo("push button", "Remove gone from favourites");
    input.tap(key::space);
    expectSetting("switcher", "favouriteBundleIdentifiers", "[\"org.example.browser\"]");
    // The focus does not go with the row.
    expectFocus("push button", "Remove Browser from favourites");
    tabTo("push button", "Remove All");
    backToSidebar(3);

    nextPane("About");
    tabTo("push button", "ferrowyn.example");

    restart();
    expectSetting("switcher", "confirmOnModifierRelease", "false");
    expectSetting("switcher", "layout", "\"grid\"");
    expectSetting("switcher", "maximumVisibleRows", "10");
    expectSetting("switcher", "showShortcutHints", "false");
    expectSetting("switcher", "activeAppFirst", "false");
    expectSetting("switcher", "includeMinimized", "false");
    expectSetting("switcher", "includeOtherSpaces", "false");
    expectSetting("switcher", "favouritesFirst", "false");
    expectSetting("updates", "automatic", "false");
    open("--settings", settingsTitle);
    expectChecked(settingsTitle, "check box", "Launch Ferrowyn at login", true);
    expectLabel(settingsTitle, "Not checked yet.");
}

TEST_F(SettingsKeyboardTest, KeysCloseTheWindowAndTheSameOneComesBackAsItWas) {
    start();
    open("--settings", settingsTitle);
    const auto window = shown(settingsTitle).reference;
    input.tap(key::down);
    expectLabel(settingsTitle, "Shortcut");
    for (const bool isByControlW : {false, true}) {
        if (isByControlW) {
            input.chord({key::leftControl, key::w});
        } else {
            input.tap(key::escape);
        }
        EXPECT_TRUE(desktop.waitUntil([&] { return !findWindow(settingsTitle); }));
        EXPECT_TRUE(reader->waitUntil([&] { return shown(settingsTitle).lines().empty(); }));
        EXPECT_TRUE(program->process().isRunning());
        open("--settings", settingsTitle);
        EXPECT_EQ(shown(settingsTitle).reference, window);
        expectLabel(settingsTitle, "Summon with");
    }
    // Behind another one, it comes to the front.
    const auto windowBehind = findWindow(settingsTitle);
    desktop.activate(windows.back()->id());
    ASSERT_TRUE(desktop.waitForActiveWindow(windows.back()->id()));
    open("--settings", settingsTitle);
    EXPECT_EQ(findWindow(settingsTitle), windowBehind);
    EXPECT_EQ(shown(settingsTitle).reference, window);
}

}  // namespace
}  // namespace ferrowyn::x11test
