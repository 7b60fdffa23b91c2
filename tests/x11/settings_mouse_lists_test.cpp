// The panes of the settings window that say what is listed and where, changed with the mouse: the file and the switcher
// follow at once, and the next start of the program keeps it.

#include "tests/x11/settings_mouse_fixture.h"
#include "tests/x11/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

TEST_F(SettingsMouseTest, WindowsTheSwitcherListsThemInThisOrderAndOnlyThese) {
    desktop.setDesktopCount(2);
    start();
    openPane("Windows");
    // The active application, whose windows may come first, is no longer this program.
    const auto useReport = [&] {
        desktop.activate(windows.back()->id());
        ASSERT_TRUE(desktop.waitForActiveWindow(windows.back()->id()));
    };
    useReport();
    expectSwitcher(
        {
            "list item: Report, Writer, 1 of 5",
            "list item: Letter, Writer, 2 of 5",
            "list item: Maps, Browser, 3 of 5",
            "list item: Weather, Browser, 4 of 5",
            "list item: News, Browser, 5 of 5",
        },
        listWidth);
    toggle("Show the active app's windows first", false);
    expectSetting("switcher", "activeAppFirst", "false");
    expectLabel(settingsTitle,
                "Strict most-recently-used order — the second entry is whatever you were on immediately before.");
    useReport();
    expectSwitcher(
        {
            "list item: Report, Writer, 1 of 5",
            "list item: Maps, Browser, 2 of 5",
            "list item: Weather, Browser, 3 of 5",
            "list item: News, Browser, 4 of 5",
            "list item: Letter, Writer, 5 of 5",
        },
        listWidth);
    desktop.iconify(windows.front()->id());
    desktop.moveToDesktop(browser.windows().front(), 1);
    expectSwitcher(
        {
            "list item: Report, Writer, 1 of 5",
            "list item: Maps, Browser, 2 of 5",
            "list item: Weather, Browser, 3 of 5",
            "list item: News, Browser, Other Workspace, 4 of 5",
            "list item: Letter, Writer, Minimised, 5 of 5",
        },
        listWidth);
    toggle("Minimised windows", false);
    expectSetting("switcher", "includeMinimized", "false");
    expectSwitcher(
        {
            "list item: Report, Writer, 1 of 4",
            "list item: Maps, Browser, 2 of 4",
            "list item: Weather, Browser, 3 of 4",
            "list item: News, Browser, Other Workspace, 4 of 4",
        },
        listWidth);
    toggle("Windows on other workspaces", false);
    expectSetting("switcher", "includeOtherSpaces", "false");
    const Lines fewest{
        "list item: Report, Writer, 1 of 3",
        "list item: Maps, Browser, 2 of 3",
        "list item: Weather, Browser, 3 of 3",
    };
    expectSwitcher(fewest, listWidth);

    restartAt("Windows");
    expectChecked(settingsTitle, "check box", "Show the active app's windows first", false);
    expectChecked(settingsTitle, "check box", "Minimised windows", false);
    expectChecked(settingsTitle, "check box", "Windows on other workspaces", false);
    expectSwitcher(fewest, listWidth);
}

TEST_F(SettingsMouseTest, FavouritesThePinnedLeadTheListUntilTheyAreRemoved) {
    start();
    openPane("Favourites");
    const Lines plain{
        "list item: Report, Writer, 1 of 5", "list item: Maps, Browser, 2 of 5",  "list item: Weather, Browser, 3 of 5",
        "list item: News, Browser, 4 of 5",  "list item: Letter, Writer, 5 of 5",
    };
    expectSwitcher(plain, listWidth);
    // Pinned where it is done: in the switcher, with its second row selected.
    input.press(key::leftAlt);
    input.tap(key::tab);
    ASSERT_TRUE(desktop.waitForPanel(true));
    input.chord({key::leftControl, key::d});
    expectSetting("switcher", "favouriteBundleIdentifiers", "[\"org.example.browser\"]");
    input.tap(key::escape);
    input.release(key::leftAlt);
    ASSERT_TRUE(desktop.waitForPanel(false));
    EXPECT_TRUE(reader->waitUntil([&] { return shows(settingsTitle, "list item", "Browser"); }));
    const Lines pinned{
        "list item: Maps, Browser, 1 of 5 (Favourite)",
        "list item: Weather, Browser, 2 of 5 (Favourite)",
        "list item: News, Browser, 3 of 5 (Favourite)",
        "list item: Report, Writer, 4 of 5",
        "list item: Letter, Writer, 5 of 5",
    };
    expectSwitcher(pinned, listWidth);
    toggle("Show favourite apps first", false);
    expectSetting("switcher", "favouritesFirst", "false");
    const Lines marked{
        "list item: Report, Writer, 1 of 5",
        "list item: Maps, Browser, 2 of 5 (Favourite)",
        "list item: Weather, Browser, 3 of 5 (Favourite)",
        "list item: News, Browser, 4 of 5 (Favourite)",
        "list item: Letter, Writer, 5 of 5",
    };
    expectSwitcher(marked, listWidth);

    restartAt("Favourites");
    expectChecked(settingsTitle, "check box", "Show favourite apps first", false);
    expectSwitcher(marked, listWidth);
    click(settingsTitle, "push button", "Remove Browser from favourites");
    expectSetting("switcher", "favouriteBundleIdentifiers", "[]");
    expectLabel(settingsTitle, "Nothing pinned yet.");
    expectSwitcher(plain, listWidth);
}

TEST_F(SettingsMouseTest, FavouritesOneOrAllOfThemAreRemoved) {
    server.home().write(".config/Ferrowyn/Ferrowyn.ini",
                        "[switcher]\nfavouriteBundleIdentifiers=[\"org.example.writer\", \"org.example.gone\", "
                        "\"org.example.browser\"]\n");
    start();
    openPane("Favourites");
    click(settingsTitle, "push button", "Remove gone from favourites");
    expectSetting("switcher", "favouriteBundleIdentifiers", "[\"org.example.writer\", \"org.example.browser\"]");
    EXPECT_TRUE(reader->waitUntil([&] { return !shows(settingsTitle, "list item", "gone"); }));
    EXPECT_TRUE(shows(settingsTitle, "list item", "Writer"));
    click(settingsTitle, "push button", "Remove All");
    expectSetting("switcher", "favouriteBundleIdentifiers", "[]");
    expectLabel(settingsTitle, "Nothing pinned yet.");
}

}  // namespace
}  // namespace ferrowyn::x11test
