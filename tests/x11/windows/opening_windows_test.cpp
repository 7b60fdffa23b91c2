// The program's windows and the switcher as they come to the front when the person asks for them.

#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/switching/switching_desk.h"
#include "tests/x11/windows/program_windows.h"

namespace ferrowyn::x11test {
namespace {

constexpr const char* settings = "Ferrowyn Settings";

class OpeningWindowsTest : public ManagedDeskTest {
protected:
    void SetUp() override {
        // Over a part of the settings window, but not over its sidebar.
        openActive({.title = "Window 1", .x = 700, .y = 60});
        startProgram();
    }

    void openSettings() {
        ASSERT_TRUE(own.choose("Settings…"));
        settingsWindow = own.waitForActive(settings).value_or(XCB_WINDOW_NONE);
        ASSERT_NE(settingsWindow, xcb_window_t{XCB_WINDOW_NONE}) << "waited for the settings window";
    }

    /// Goes to the other window, until the settings window knows it: the toolkit, which hears of that a moment later,
    /// closes its menus then, and a person does not open one that fast.
    void leaveSettings() {
        ASSERT_TRUE(waitUntilItLooksActive(true));
        use(window(1));
        ASSERT_TRUE(waitUntilItLooksActive(false));
    }
    /// The selected row of the sidebar is blue while the window has the keyboard.
    [[nodiscard]] bool waitUntilItLooksActive(bool isActive) {
        return desktop.waitUntil([&] {
            const auto place = desktop.placeOf(settingsWindow);
            const auto pixel = place ? desktop.pixel(place->x + 175, place->y + 29) : 0;
            const auto red = pixel >> 16U & 0xFFU, blue = pixel & 0xFFU;
            return (blue > red + 80) == isActive;
        });
    }

    xcb_window_t settingsWindow = XCB_WINDOW_NONE;
    TrayHostProcess tray{server, "trayer"};
    ProgramWindows own{*this};
};

TEST_P(OpeningWindowsTest, TheMenuBringsAWindowToTheFrontWithTheKeyboardEachTime) {
    openSettings();
    leaveSettings();
    ASSERT_TRUE(own.choose("Settings…"));
    EXPECT_EQ(own.waitForActive(settings), settingsWindow) << "it was behind another window";
    leaveSettings();
    desktop.iconify(settingsWindow);
    ASSERT_TRUE(desktop.waitUntil([&] { return !desktop.isViewable(settingsWindow); }));
    ASSERT_TRUE(own.choose("Settings…"));
    EXPECT_EQ(own.waitForActive(settings), settingsWindow) << "it was minimised";
    EXPECT_TRUE(waitUntilItLooksActive(true));
    input.tap(key::escape);
    EXPECT_TRUE(own.waitUntilGone(settings)) << "its key was to close it";
    use(window(1));
    EXPECT_EQ(ask({"--settings"}).status, 0);
    EXPECT_TRUE(own.waitForActive(settings)) << "it had been closed";
}

TEST_P(OpeningWindowsTest, AWindowThatIsOpenOnAnotherDesktopIsShown) {
    openSettings();
    desktop.setDesktopCount(2);
    desktop.setCurrentDesktop(1);
    ASSERT_TRUE(desktop.waitUntil([this] { return desktop.currentDesktop() == 1 && !findWindow(settings); }));
    EXPECT_EQ(ask({"--settings"}).status, 0);
    EXPECT_TRUE(own.waitForActive(settings));
}

TEST_P(OpeningWindowsTest, AWindowThatIsOpenedRightAfterASwitchStaysInFront) {
    openActive({.title = "Window 2"});
    ASSERT_TRUE(program->waitForList(2, window(2)));
    input.chord({key::leftAlt, key::tab});
    ASSERT_TRUE(desktop.waitForActiveWindow(window(1)));
    EXPECT_EQ(ask({"--settings"}).status, 0);
    ASSERT_TRUE(own.waitForActive(settings)) << program->process().output();
    // The switch is checked a moment after it, and then the settings are the later choice.
    ASSERT_TRUE(program->process().waitUntilOutput([this] {
        const std::string said = program->process().output();
        return said.find("was chosen after window") != std::string::npos || said.find("check(s)") != std::string::npos;
    })) << "waited for the switch to be checked";
    EXPECT_TRUE(own.waitForActive(settings)) << program->process().output();
}

INSTANTIATE_TEST_SUITE_P(X11, OpeningWindowsTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, OpeningWindowsTest, testing::Values("metacity"), managerName);

class OpeningSwitcherTest : public DeskTest<testing::Test> {
protected:
    OpeningSwitcherTest()
        : DeskTest("openbox",
                   {.screens = {"1440x600x24"}, .monitors = {"800/211x600/158+0+0", "640/169x480/127+800+0"}}) {}

    [[nodiscard]] bool waitUntilOpen() {
        return desktop.waitUntil([this] { return desktop.visiblePanel() && !desktop.keyboardIsFree(); });
    }
    void close() {
        input.tap(key::escape);
        EXPECT_TRUE(desktop.waitForPanel(false));
    }

    ProgramWindows own{*this};
};

TEST_F(OpeningSwitcherTest, TheSwitcherThatNoKeyOpensComesWhereThePointerIs) {
    constexpr int edge = 800;
    openWindows(2);
    startProgram();
    for (const int x : {100, 1300, 100}) {
        // Nothing but the pointer moves.
        input.movePointer(x, 100);
        EXPECT_EQ(ask({"--show"}).status, 0);
        ASSERT_TRUE(waitUntilOpen());
        const auto place = panelPlace();
        EXPECT_EQ(place.x + place.width / 2 > edge, x > edge) << "the pointer is at " << x;
        close();
    }
}

}  // namespace
}  // namespace ferrowyn::x11test
