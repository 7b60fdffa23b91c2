// What assistive technology is told of every pane of the settings window.

#include <filesystem>

#include "tests/x11/windows/windows_fixture.h"

namespace ferrowyn::x11test {
namespace {

class SettingsContentsTest : public WindowsFixture {
protected:
    /// Chooses the pane and compares all that the window then says of itself.
    void expectPane(const std::string& name, const Lines& controls) {
        choosePane(name);
        Lines lines{"list: Settings",     "list item: General",    "list item: Shortcut", "list item: Appearance",
                    "list item: Windows", "list item: Favourites", "list item: About",    "layered pane: ",
                    "panel: " + name,     "label: " + name};
        lines.insert(lines.end(), controls.begin(), controls.end());
        expectLines(settingsTitle, lines);
    }
};

TEST_F(SettingsContentsTest, EveryControlOfEveryPaneHasItsRoleAndItsName) {
    server.home().write(".config/Ferrowyn/Ferrowyn.ini", "[updates]\nautomatic=false\n");
    start();
    open("--settings", settingsTitle);
    EXPECT_EQ(shown(settingsTitle).role, "frame");

    const std::string updatesNote =
        "The check sends only the app version and your system version. No account, no identifier, and nothing about "
        "your windows.";
    expectPane("General", {
                              "panel: ",
                              "check box: Launch Ferrowyn at login",
                              "label: Updates",
                              "panel: Updates",
                              "check box: Check for updates automatically (" + updatesNote + ")",
                              "label: " + updatesNote,
                              "label: Not checked yet.",
                              "push button: Check Now",
                              "label: Requirements",
                              "panel: Requirements",
                              "label: A window manager is running",
                          });

    const std::string releaseNote = "With this off, the switcher stays open until you press Return or Esc.";
    expectPane("Shortcut", {
                               "panel: ",
                               "label: Summon with",
                               "combo box: Summon with",
                               "check box: Switch when the modifier is released (" + releaseNote + ")",
                               "label: " + releaseNote,
                               "label: While the switcher is open",
                               "panel: While the switcher is open",
                               "label: Cycle List → Grouped → Grid",
                               "label: Ctrl+L",
                               "label: Pin or unpin the highlighted app",
                               "label: Ctrl+D",
                               "label: Jump straight to a row",
                               "label: Ctrl+1–9",
                               "label: Move the selection",
                               "label: ↑ ↓",
                               "label: Close without switching",
                               "label: Esc",
                           });

    const std::string list = "A flat list, one window per line — densest, and the fastest to scan when titles differ.";
    expectPane("Appearance", {
                                 "label: Layout",
                                 "panel: Layout",
                                 "radio button: List (" + list + ")",
                                 "radio button: Grouped (Each application heads a section listing its own windows.)",
                                 "radio button: Grid (Large icons like the system switcher, five across.)",
                                 "label: " + list,
                                 "panel: ",
                                 "label: Show up to 9 rows before scrolling",
                                 "spin box: Show up to 9 rows before scrolling",
                                 "check box: Show shortcut hints",
                             });

    const std::string orderNote =
        "Every window of the app you are in is grouped at the top, then everything else by most recent use.";
    const std::string workspacesNote =
        "A workspace is one of the desktops you switch between, often with Ctrl+Alt+Arrow. Turn this off to list only "
        "what is on the workspace in front of you.";
    expectPane("Windows", {
                              "label: Ordering",
                              "panel: Ordering",
                              "check box: Show the active app's windows first (" + orderNote + ")",
                              "label: " + orderNote,
                              "label: Include",
                              "panel: Include",
                              "check box: Minimised windows",
                              "check box: Windows on other workspaces (" + workspacesNote + ")",
                              "label: " + workspacesNote,
                          });

    const std::string favouritesNote =
        "Press Ctrl+D while the switcher is open to pin or unpin the highlighted window's app. Favourites are "
        "remembered per app rather than per window, so they survive closing and reopening.";
    expectPane("Favourites", {
                                 "panel: ",
                                 "check box: Show favourite apps first (" + favouritesNote + ")",
                                 "label: " + favouritesNote,
                                 "label: Pinned apps",
                                 "panel: Pinned apps",
                                 "label: Nothing pinned yet.",
                                 "push button: Remove All",
                             });

    expectPane("About", {
                            "panel: About Ferrowyn, version " FERROWYN_VERSION,
                            "graphic: Ferrowyn",
                            "label: Ferrowyn",
                            "label: Version " FERROWYN_VERSION,
                            "label: Switch between every open window, not just apps.",
                            "push button: ferrowyn.example",
                            "label: © " + thisYear() + " Ferrowyn",
                        });
}

TEST_F(SettingsContentsTest, WhatIsChosenAndWhatCannotBeUsedIsTold) {
    start();
    open("--settings", settingsTitle);
    expectChecked(settingsTitle, "check box", "Launch Ferrowyn at login", false);
    expectChecked(settingsTitle, "check box", "Check for updates automatically", true);
    choosePane("Shortcut");
    EXPECT_EQ(control(settingsTitle, "combo box", "Summon with").text, "Alt + Tab");
    expectChecked(settingsTitle, "check box", "Switch when the modifier is released", true);
    choosePane("Appearance");
    expectChecked(settingsTitle, "radio button", "List", true);
    expectChecked(settingsTitle, "radio button", "Grouped", false);
    expectChecked(settingsTitle, "radio button", "Grid", false);
    EXPECT_EQ(control(settingsTitle, "spin box", "Show up to 9 rows before scrolling").value, 9);
    choosePane("Favourites");
    const auto favourites = shown(settingsTitle);
    EXPECT_TRUE(favourites.find("check box", "Show favourite apps first")->is(State::enabled));
    EXPECT_FALSE(favourites.find("push button", "Remove All")->is(State::enabled)) << "there is nothing to remove";
}

TEST_F(SettingsContentsTest, WhatKeepsItFromStartingAtLoginIsToldInTheWindowAndInTheMenu) {
    const std::string entry = ".config/autostart/com.larkmoor.ferrowyn.desktop";
    const std::string turnedOff =
        "Your desktop keeps Ferrowyn from starting: allow it in the autostart settings, or turn this off and on again.";
    server.home().write(entry, "[Desktop Entry]\nType=Application\nName=Ferrowyn\nExec=" FERROWYN_PROGRAM
                               "\nX-GNOME-Autostart-enabled=false\n");
    startTray();
    // The desktop's own settings for autostart, as Xfce has them.
    const auto folder = server.home().path() + "/programs";
    server.home().write("programs/xfce4-session-settings", "#!/bin/sh\n: >\"$HOME/settings-opened\"\n");
    std::filesystem::permissions(folder + "/xfce4-session-settings", std::filesystem::perms::owner_all);
    programOptions.environment["XDG_CURRENT_DESKTOP"] = "XFCE";
    programOptions.environment["PATH"] = folder + ":" + std::getenv("PATH");
    start();
    open("--settings", settingsTitle);
    expectChecked(settingsTitle, "check box", "Launch Ferrowyn at login", true);
    EXPECT_TRUE(shows(settingsTitle, "label", turnedOff));
    EXPECT_TRUE(shows(settingsTitle, "push button", "Open Autostart Settings"));
    click(settingsTitle, "push button", "Open Autostart Settings");
    EXPECT_TRUE(desktop.waitUntil([&] { return std::filesystem::exists(server.home().path() + "/settings-opened"); }))
        << "waited for the desktop's own settings to be started";
    openMenu();
    EXPECT_EQ(menuRow("Launch at Login").description, turnedOff);
    EXPECT_TRUE(menuRow("Launch at Login").is(State::checked));
    chooseFromMenu("Launch at Login");
    expectChecked(settingsTitle, "check box", "Launch Ferrowyn at login", false);
    EXPECT_FALSE(shows(settingsTitle, "label", turnedOff));

    const std::string unwritable = "Ferrowyn must be able to write to the autostart folder to launch at login.";
    std::filesystem::remove_all(server.home().path() + "/.config/autostart");
    server.home().write(".config/autostart", "a file, where a folder should be");
    restart();
    open("--settings", settingsTitle);
    EXPECT_FALSE(control(settingsTitle, "check box", "Launch Ferrowyn at login").is(State::enabled));
    EXPECT_TRUE(shows(settingsTitle, "label", unwritable));
    EXPECT_FALSE(shows(settingsTitle, "push button", "Open Autostart Settings"));
    openMenu();
    EXPECT_EQ(menuRow("Launch at Login").description, unwritable);
    EXPECT_FALSE(menuRow("Launch at Login").is(State::enabled));
    closeMenuBy(key::escape);
}

TEST_F(SettingsContentsTest, EveryFavouriteIsAnItemWithAButtonThatSaysWhatItRemoves) {
    server.home().write(".config/Ferrowyn/Ferrowyn.ini",
                        "[switcher]\nfavouriteBundleIdentifiers=[\"org.example.browser\", \"org.example.writer\", "
                        "\"org.example.gone\"]\n");
    start();
    open("--settings", settingsTitle);
    choosePane("Favourites");
    EXPECT_THAT(shown(settingsTitle).lines(),
                testing::IsSupersetOf({
                    "list item: Browser",
                    "push button: Remove Browser from favourites (Remove Browser from favourites)",
                    "list item: Writer",
                    "push button: Remove Writer from favourites (Remove Writer from favourites)",
                    "list item: gone",
                    "push button: Remove gone from favourites (Remove gone from favourites)",
                }));
    EXPECT_FALSE(shows(settingsTitle, "label", "Nothing pinned yet."));
}

}  // namespace
}  // namespace ferrowyn::x11test
