// The panes of the settings window, changed with the mouse: the file, the switcher and the other windows follow at
// once, and the next start of the program keeps it.

#include <filesystem>
#include <string>

#include "tests/x11/switching/switching_desk.h"
#include "tests/x11/windows/windows_fixture.h"

namespace ferrowyn::x11test {
namespace {

/// What a person does with the mouse in the settings window.
class SettingsMouseTest : public WindowsFixture {
protected:
    void openPane(const std::string& name) {
        open("--settings", settingsTitle);
        choosePane(name);
    }
    void restartAt(const std::string& pane) {
        restart();
        openPane(pane);
    }
    void toggle(const std::string& name, bool isOn) {
        click(settingsTitle, "check box", name);
        expectChecked(settingsTitle, "check box", name, isOn);
    }
    void choose(const std::string& trigger) {
        click(settingsTitle, "combo box", "Summon with");
        click(settingsTitle, "list item", trigger);
        EXPECT_TRUE(reader->waitUntil([&] { return shownTrigger() == trigger; })) << shownTrigger();
        // Its list keeps the mouse until it is gone.
        EXPECT_TRUE(reader->waitUntil([&] { return !shows(settingsTitle, "list item", trigger); }));
    }
    [[nodiscard]] std::string shownTrigger() const {
        const auto window = shown(settingsTitle);
        const auto* const choice = window.find("combo box", "Summon with");
        return choice == nullptr ? "" : choice->text;
    }
    [[nodiscard]] static std::string rows(int count) {
        return "Show up to " + std::to_string(count) + " rows before scrolling";
    }
    [[nodiscard]] std::filesystem::path autostartEntry() const {
        return server.home().path() + "/.config/autostart/com.larkmoor.ferrowyn.desktop";
    }
};

TEST_F(SettingsMouseTest, GeneralTheSwitchWritesTheAutostartEntryAndTheMenuHasItToo) {
    startTray();
    start();
    openPane("General");
    toggle("Launch Ferrowyn at login", true);
    EXPECT_TRUE(reader->waitUntil([&] { return std::filesystem::exists(autostartEntry()); }));

    restartAt("General");
    expectChecked(settingsTitle, "check box", "Launch Ferrowyn at login", true);
    openMenu();
    EXPECT_TRUE(menuRow("Launch at Login").is(State::checked));
    chooseFromMenu("Launch at Login");
    expectChecked(settingsTitle, "check box", "Launch Ferrowyn at login", false);
    EXPECT_FALSE(std::filesystem::exists(autostartEntry()));
}

TEST_F(SettingsMouseTest, GeneralUpdatesAreLookedForWhenAskedAndAtTheStartWhenSo) {
    server.home().write(".config/Ferrowyn/Ferrowyn.ini", "[updates]\nautomatic=false\n");
    start();
    openPane("General");
    const auto hasLooked = [&] {
        const auto window = shown(settingsTitle);
        return window.find("push button", "Check Now") != nullptr &&
               window.find("label", "Not checked yet.") == nullptr;
    };
    EXPECT_FALSE(hasLooked());
    click(settingsTitle, "push button", "Check Now");
    EXPECT_TRUE(reader->waitUntil(hasLooked)) << shown(settingsTitle);

    toggle("Check for updates automatically", true);
    expectSetting("updates", "automatic", "true");
    restartAt("General");
    EXPECT_TRUE(reader->waitUntil(hasLooked)) << shown(settingsTitle);
    toggle("Check for updates automatically", false);
    expectSetting("updates", "automatic", "false");
    restartAt("General");
    expectChecked(settingsTitle, "check box", "Check for updates automatically", false);
    expectLabel(settingsTitle, "Not checked yet.");
}

TEST_F(SettingsMouseTest, ShortcutTheNewTriggerOpensTheSwitcherAndTheOldOneDoesNot) {
    const std::string replacementNote = "Super + Tab replaces the desktop's own switcher while Ferrowyn is running.";
    start();
    open("--setup", setupTitle);
    expectLabel(setupTitle, "Alt+Tab");
    openPane("Shortcut");
    choose("Super + Tab");
    expectSetting("switcher", "modifier", "\"command\"");
    expectLabel(settingsTitle, replacementNote);
    expectLabel(setupTitle, "Super+Tab");
    expectSwitcher(
        {
            "list item: Report, Writer, 1 of 5",
            "list item: Maps, Browser, 2 of 5",
            "list item: Weather, Browser, 3 of 5",
            "list item: News, Browser, 4 of 5",
            "list item: Letter, Writer, 5 of 5",
        },
        listWidth, key::leftSuper);
    expectManagerSwitches();

    restartAt("Shortcut");
    EXPECT_EQ(shownTrigger(), "Super + Tab");
    choose("Ctrl + Tab");
    expectSetting("switcher", "modifier", "\"control\"");
    EXPECT_FALSE(shows(settingsTitle, "label", replacementNote));
    // Ctrl is taken now, so the keys of an open switcher go with another one.
    expectLabel(settingsTitle, "Super+L");
    expectLabel(settingsTitle, "Super+D");
    desktop.activate(windows.back()->id());
    ASSERT_TRUE(desktop.waitForActiveWindow(windows.back()->id()));
    static_cast<void>(windows.back()->takeInput());
    input.chord({key::leftSuper, key::tab});
    EXPECT_TRUE(windows.back()->waitForKeyPress(key::tab)) << "waited for the old trigger to reach the application";
    input.press(key::leftControl);
    input.tap(key::tab);
    EXPECT_TRUE(desktop.waitForPanel(true)) << "waited for the new trigger to open the panel";
    input.tap(key::escape);
    input.release(key::leftControl);
    EXPECT_TRUE(desktop.waitForPanel(false));
}

TEST_F(SettingsMouseTest, ShortcutTheSwitcherStaysOpenWhenTheModifierIsReleased) {
    start();
    openPane("Shortcut");
    toggle("Switch when the modifier is released", false);
    expectSetting("switcher", "confirmOnModifierRelease", "false");
    // News, and after it was used, Weather.
    for (const std::size_t last : {0, 1}) {
        if (last == 1) {
            restartAt("Shortcut");
            expectChecked(settingsTitle, "check box", "Switch when the modifier is released", false);
        }
        desktop.activate(windows.back()->id());
        ASSERT_TRUE(desktop.waitForActiveWindow(windows.back()->id()));
        ASSERT_TRUE(program->waitForFirst(windows.back()->id()));
        input.chord({key::leftAlt, key::tab});
        waitForSwitcher();
        // To the last row; had the release of Alt switched already, these keys would go to a window.
        input.tap(key::end);
        input.tap(key::enter);
        EXPECT_TRUE(desktop.waitForActiveWindow(browser.windows().at(last))) << "waited for the last row";
        EXPECT_TRUE(desktop.waitForPanel(false));
    }
}

TEST_F(SettingsMouseTest, AppearanceTheSwitcherAndTheMenuTakeTheLayout) {
    startTray();
    start();
    openPane("Appearance");
    click(settingsTitle, "radio button", "Grid");
    expectSetting("switcher", "layout", "\"grid\"");
    expectLabel(settingsTitle, "Large icons like the system switcher, five across.");
    const Lines flat{
        "list item: Report, Writer, 1 of 5", "list item: Maps, Browser, 2 of 5",  "list item: Weather, Browser, 3 of 5",
        "list item: News, Browser, 4 of 5",  "list item: Letter, Writer, 5 of 5",
    };
    expectSwitcher(flat, gridWidth);
    openMenu();
    EXPECT_TRUE(menuRow("Grid").is(State::checked));
    EXPECT_FALSE(menuRow("List").is(State::checked));
    chooseFromMenu("Grouped");
    expectChecked(settingsTitle, "radio button", "Grouped", true);
    expectLabel(settingsTitle, "Each application heads a section listing its own windows.");
    expectSetting("switcher", "layout", "\"grouped\"");
    const Lines grouped{
        "heading: 2 windows (Writer)",      "list item: Report, Writer, 1 of 5", "list item: Letter, Writer, 2 of 5",
        "heading: 3 windows (Browser)",     "list item: Maps, Browser, 3 of 5",  "list item: Weather, Browser, 4 of 5",
        "list item: News, Browser, 5 of 5",
    };
    expectSwitcher(grouped, listWidth);

    restartAt("Appearance");
    expectChecked(settingsTitle, "radio button", "Grouped", true);
    expectSwitcher(grouped, listWidth);
    click(settingsTitle, "radio button", "List");
    expectSetting("switcher", "layout", "\"list\"");
    expectSwitcher(flat, listWidth);
}

TEST_F(SettingsMouseTest, AppearanceTheSwitcherIsAsHighAsItsRowsAndHints) {
    constexpr int onMinus = 10;
    constexpr int onPlus = -10;
    start();
    openPane("Appearance");
    const int highest = switcherHeight([](int height) { return height > 0; });
    for (int count = 9; count > 4; --count) {
        click(settingsTitle, "spin box", rows(count), onMinus);
        expectLabel(settingsTitle, rows(count - 1));
    }
    expectSetting("switcher", "maximumVisibleRows", "4");
    click(settingsTitle, "spin box", rows(4), onMinus);
    click(settingsTitle, "spin box", rows(4), onPlus);
    // The click before it went no lower.
    expectLabel(settingsTitle, rows(5));
    click(settingsTitle, "spin box", rows(5), onMinus);
    expectLabel(settingsTitle, rows(4));
    // Of five rows one is to be scrolled to.
    const int withFourRows = switcherHeight([&](int height) { return height < highest; });
    toggle("Show shortcut hints", false);
    expectSetting("switcher", "showShortcutHints", "false");
    const int withoutHints = switcherHeight([&](int height) { return height < withFourRows; });

    restartAt("Appearance");
    expectLabel(settingsTitle, rows(4));
    expectChecked(settingsTitle, "check box", "Show shortcut hints", false);
    EXPECT_EQ(switcherHeight([&](int height) { return height == withoutHints; }), withoutHints);
}

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
