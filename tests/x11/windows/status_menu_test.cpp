// The menu of the real program in a real tray, as assistive technology is told of it and as mouse and keyboard use it.

#include <xcb/xproto.h>

#include "platform/x11/xcb_reply.h"
#include "tests/x11/windows/windows_fixture.h"

namespace ferrowyn::x11test {
namespace {

class StatusMenuTest : public WindowsFixture {
protected:
    StatusMenuTest() { startTray(); }

    /// The rows below the header and what is wrong.
    [[nodiscard]] static Lines rowsBelow(Lines above, int windowCount) {
        const Lines rows{
            "menu item: Open Switcher",
            "menu item: " + std::to_string(windowCount) + " windows tracked",
            "separator: ",
            "label: LAYOUT",
            "menu item: List",
            "menu item: Grouped",
            "menu item: Grid",
            "separator: ",
            "menu item: Launch at Login",
            "menu item: Settings…",
            "menu item: Setup Guide…",
            "menu item: About Ferrowyn",
            "separator: ",
            "menu item: Quit Ferrowyn",
        };
        above.insert(above.end(), rows.begin(), rows.end());
        return above;
    }
    [[nodiscard]] bool isEnabled(const std::string& row) const {
        const auto now = menu();
        const auto* const found = now ? now->find("menu item", row) : nullptr;
        return found != nullptr && found->is(State::enabled);
    }
};

TEST_F(StatusMenuTest, EveryRowHasItsRoleAndItsNameWhenAllIsWell) {
    start();
    openMenu();
    expectMenu(rowsBelow({"push button: Settings (Ferrowyn, Ready)", "separator: "}, 5));
    EXPECT_TRUE(isEnabled("Open Switcher"));
    EXPECT_FALSE(isEnabled("5 windows tracked"));
    EXPECT_TRUE(menuRow("List").is(State::checked));
    EXPECT_FALSE(menuRow("Grouped").is(State::checked));
    EXPECT_FALSE(menuRow("Launch at Login").is(State::checked));
    closeMenuBy(key::escape);
}

TEST_F(StatusMenuTest, TheKeyboardGoesThroughTheRowsAndIsHeardOnEach) {
    start();
    openMenu();
    for (const char* const row : {"Open Switcher", "List", "Grouped", "Grid", "Launch at Login", "Settings…",
                                  "Setup Guide…", "About Ferrowyn", "Quit Ferrowyn"}) {
        input.tap(key::down);
        expectFocus("menu item", row);
    }
    input.tap(key::down);
    expectFocus("push button", "Settings");
    closeMenuBy(key::enter);
    EXPECT_TRUE(waitForWindow(settingsTitle));
}

TEST_F(StatusMenuTest, AssistiveTechnologyChoosesARow) {
    start();
    openMenu();
    const auto grid = menuRow("Grid").reference;
    EXPECT_TRUE(reader->act(grid, "Press"));
    expectSetting("switcher", "layout", "\"grid\"");
    waitUntilMenuIsGone();
}

TEST_F(StatusMenuTest, WithoutAWindowManagerItSaysSoAndLeadsToWhatIsMissing) {
    start();
    manager->process().signal(SIGTERM);
    ASSERT_TRUE(manager->process().waitForExit());
    const Lines lost{"push button: Settings (Ferrowyn, A window manager is required)",
                     "separator: ", "menu item: Show What Is Missing…", "separator: "};
    // Where it stands in the tray, the icon opens the menu without a window manager too.
    openMenu();
    EXPECT_TRUE(reader->waitUntil([&] { return isEnabled("Show What Is Missing…"); })) << *menu();
    const auto lines = menu()->lines();
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(lost.size())), lost);
    EXPECT_FALSE(isEnabled("Open Switcher"));
    chooseFromMenu("Show What Is Missing…");
    expectLabel(setupTitle, "A window manager is required");
}

TEST_F(StatusMenuTest, WhileAnotherProgramHoldsTheKeyboardItSaysThatItWaits) {
    const std::string inSettings = "Secure input is active — another app is blocking global shortcuts.";
    start();
    open("--settings", settingsTitle);
    auto* const holder = windows.back()->connection();
    const XcbReply<xcb_grab_keyboard_reply_t> held(xcb_grab_keyboard_reply(
        holder,
        xcb_grab_keyboard(holder, 0, windows.back()->id(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
        nullptr));
    ASSERT_TRUE(held && held->status == XCB_GRAB_STATUS_SUCCESS);
    input.chord({key::leftAlt, key::tab});
    expectLabel(settingsTitle, inSettings);
    clickTrayIcon();
    expectMenu(rowsBelow({"push button: Settings (Ferrowyn, Secure input active — shortcut paused)",
                          "separator: ", "menu item: Waiting for the other app to release it", "separator: "},
                         5));
    EXPECT_FALSE(isEnabled("Waiting for the other app to release it"));
    // No key reaches the menu.
    constexpr int beside = 20;
    input.click(beside, beside);
    ASSERT_TRUE(reader->waitUntil([&] { return !menu(); })) << "waited for the menu to go";
    xcb_ungrab_keyboard(holder, XCB_CURRENT_TIME);
    xcb_flush(holder);
    EXPECT_TRUE(reader->waitUntil([&] { return !shows(settingsTitle, "label", inSettings); }))
        << "waited for the program to see that the keyboard is free";
    openMenu();
    expectMenu(rowsBelow({"push button: Settings (Ferrowyn, Ready)", "separator: "}, 5));
    closeMenuBy(key::escape);
}

}  // namespace
}  // namespace ferrowyn::x11test
