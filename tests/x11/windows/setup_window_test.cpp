// The setup window and the about window of the real program.

#include <csignal>

#include "tests/x11/windows/windows_fixture.h"

namespace ferrowyn::x11test {
namespace {

class SetupWindowTest : public WindowsFixture {
protected:
    void press(const std::string& title, const std::string& button) {
        ASSERT_TRUE(reader->act(control(title, "push button", button).reference, "Press"));
    }
    [[nodiscard]] static Lines withHeader(const Lines& state) {
        Lines lines{"graphic: Ferrowyn", "label: Ferrowyn", "label: Switch between every open window, not just apps.",
                    "label: Version " FERROWYN_VERSION};
        lines.insert(lines.end(), state.begin(), state.end());
        lines.insert(lines.end(), {"push button: ferrowyn.example", "push button: Close"});
        return lines;
    }
    [[nodiscard]] static Lines granted() {
        return withHeader({
            "panel: ",
            "label: A window manager is running",
            "label: The switcher is running in the background.",
            "label: Alt+Tab",
            "label: open / next",
            "label: Alt+Shift+Tab",
            "label: previous",
            "label: Alt+1–9",
            "label: jump",
            "label: Esc",
            "label: cancel",
            "label: Start typing while the switcher is open to filter by app name or window title.",
            "label: Typing keeps it open, and so do the arrow keys: letting go of the modifier no longer switches, "
            "Return does.",
            "push button: Done",
        });
    }
    [[nodiscard]] static Lines required() {
        return withHeader({
            "panel: ",
            "label: A window manager is required",
            "label: Ferrowyn lists and focuses other apps' windows through the window manager, and sees its shortcut "
            "through XInput 2.2. One of the two is missing on this desktop.",
            "label: 1.",
            "label: Start a window manager that follows EWMH, for example “xfwm4 --replace” in a terminal.",
            "label: 2.",
            "label: If one is running, update the X server: it must offer XInput 2.2 (X.Org 1.12 or later). Xephyr "
            "cannot be used.",
            "label: 3.",
            "label: Come back here — it detects the change automatically.",
            "push button: Check Again",
            "push button: Copy Report",
            "push button: Reveal App",
            "label: Window manager running, but still not working?",
            "label: Run “ferrowyn --doctor” in a terminal: it says which window manager and which XInput version it "
            "finds. A window manager that does not follow EWMH, such as twm, cannot be used — it has to be replaced.",
        });
    }
};

TEST_F(SetupWindowTest, BothStatesAreToldAndItChangesBetweenThemByItself) {
    start();
    open("--setup", setupTitle);
    EXPECT_EQ(shown(setupTitle).role, "frame");
    expectLines(setupTitle, granted());
    open("--settings", settingsTitle);
    expectLabel(settingsTitle, "A window manager is running");
    manager->process().signal(SIGTERM);
    ASSERT_TRUE(manager->process().waitForExit());
    expectLines(setupTitle, required());
    expectLabel(settingsTitle, "A window manager is required");
    // Its buttons, pressed as assistive technology does, for windows have no certain place now.
    press(setupTitle, "Close");
    EXPECT_TRUE(reader->waitUntil([&] { return shown(setupTitle).children.empty(); }));
    press(settingsTitle, "Open Setup");
    expectLines(setupTitle, required());
    press(setupTitle, "Check Again");
    expectLines(setupTitle, required());
    const WindowManagerProcess another(server, "openbox");
    expectLines(setupTitle, granted());
    expectLabel(settingsTitle, "A window manager is running");
    EXPECT_FALSE(shows(settingsTitle, "push button", "Open Setup"));
}

TEST_F(SetupWindowTest, BothOfItsButtonsCloseIt) {
    start();
    for (const char* const button : {"Done", "Close"}) {
        open("--setup", setupTitle);
        click(setupTitle, "push button", button);
        EXPECT_TRUE(desktop.waitUntil([&] { return !findWindow(setupTitle); })) << "waited for it to be gone";
    }
    EXPECT_TRUE(program->process().isRunning());
}

TEST_F(SetupWindowTest, TheMenuOpensTheAboutWindow) {
    startTray();
    start();
    openMenu();
    chooseFromMenu("About Ferrowyn");
    waitUntilUsable(aboutTitle);
    EXPECT_EQ(shown(aboutTitle).role, "frame");
    expectLines(aboutTitle, {
                                "filler: About Ferrowyn, version " FERROWYN_VERSION,
                                "panel: About Ferrowyn, version " FERROWYN_VERSION,
                                "graphic: Ferrowyn",
                                "label: Ferrowyn",
                                "label: Version " FERROWYN_VERSION,
                                "label: Switch between every open window, not just apps.",
                                "push button: ferrowyn.example",
                                "label: © " + thisYear() + " Ferrowyn",
                                "push button: Close",
                            });
    click(aboutTitle, "push button", "Close");
    EXPECT_TRUE(desktop.waitUntil([&] { return !findWindow(aboutTitle); })) << "waited for it to be gone";
}

}  // namespace
}  // namespace ferrowyn::x11test
