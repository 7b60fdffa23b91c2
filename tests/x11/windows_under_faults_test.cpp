// The program's windows and its menu while the window manager goes and comes back.

#include "tests/x11/desk_test.h"
#include "tests/x11/harness/tray_host_process.h"
#include "tests/x11/program_windows.h"

namespace ferrowyn::x11test {
namespace {

using test::Health;

struct Opened {
    const char* row;
    const char* title;
    /// Whether it says how the program is doing.
    bool tellsHealth;
};

template <typename Test>
class FaultsTest : public DeskTest<Test> {
protected:
    FaultsTest() : DeskTest<Test>("openbox") {
        // A check for updates has a mark of its own.
        this->server.home().write(".config/Ferrowyn/Ferrowyn.ini", "[updates]\nautomatic=false\n");
    }

    void loseManager() {
        this->crashManager();
        ASSERT_TRUE(this->program->process().waitForOutput("Services suspended"));
    }
    void findManager() {
        this->program->process().discardOutput();
        this->manager = std::make_unique<WindowManagerProcess>(this->server, "openbox");
        ASSERT_TRUE(this->program->waitUntilActive()) << this->program->process().output();
    }

    TrayHostProcess tray{this->server, "trayer"};
    ProgramWindows own{*this};
};

class WindowsUnderFaultsTest : public FaultsTest<testing::TestWithParam<Opened>> {};
class MenuUnderFaultsTest : public FaultsTest<testing::Test> {};

TEST_P(WindowsUnderFaultsTest, AnOpenWindowOutlivesTheWindowManagerAndFollows) {
    openWindows(2);
    startProgram();
    ASSERT_TRUE(own.choose(GetParam().row));
    const auto window = own.waitForActive(GetParam().title);
    ASSERT_TRUE(window);
    EXPECT_TRUE(!GetParam().tellsHealth || desktop.waitUntil([&] { return own.showsAllRight(*window); }));

    loseManager();
    EXPECT_EQ(own.find(GetParam().title), window) << "it stays on the screen";
    EXPECT_TRUE(!GetParam().tellsHealth || desktop.waitUntil([&] { return own.showsWarning(*window); }));

    findManager();
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.windowTitled(GetParam().title) == window; }));
    desktop.activate(*window);
    EXPECT_EQ(own.waitForActive(GetParam().title), window);
    EXPECT_TRUE(!GetParam().tellsHealth || desktop.waitUntil([&] { return own.showsAllRight(*window); }));
    input.tap(key::escape);
    EXPECT_TRUE(own.waitUntilGone(GetParam().title));
    own.expectSwitching();
}

INSTANTIATE_TEST_SUITE_P(X11, WindowsUnderFaultsTest,
                         testing::Values(Opened{"Settings…", "Ferrowyn Settings", true},
                                         Opened{"Setup Guide…", "Ferrowyn Setup", true},
                                         Opened{"About Ferrowyn", "About Ferrowyn", false}),
                         [](const auto& instance) { return std::string(instance.param.row, 5); });

TEST_F(MenuUnderFaultsTest, AnOpenMenuShowsWhatIsWrongAndThatItIsRightAgain) {
    openWindows(2);
    startProgram();
    ASSERT_TRUE(own.openMenu());
    loseManager();
    EXPECT_TRUE(own.waitForMenu(Health::accessRequired));
    findManager();
    EXPECT_TRUE(own.waitForMenu(Health::ready));
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
    own.expectSwitching();
}

TEST_F(MenuUnderFaultsTest, TheMenuLeadsToTheSetupWindowWhileThereIsNoManager) {
    openWindows(2);
    startProgram();
    loseManager();
    const auto menu = own.openMenu(Health::accessRequired);
    ASSERT_TRUE(menu);
    own.clickRow(*menu, "Grant Accessibility Access…", Health::accessRequired);
    ASSERT_TRUE(desktop.waitUntil([&] { return own.find("Ferrowyn Setup").has_value(); }));
    const auto setup = *own.find("Ferrowyn Setup");
    EXPECT_TRUE(desktop.waitUntil([&] { return own.showsWarning(setup); }));
    findManager();
    EXPECT_TRUE(desktop.waitUntil([&] { return own.showsAllRight(setup); }));
    own.expectSwitching();
}

TEST_F(MenuUnderFaultsTest, AKeyThatAnotherClientSendsIsNotTheUsers) {
    openWindows(2);
    startProgram();
    ASSERT_TRUE(own.choose("Settings…"));
    const auto window = own.waitForActive("Ferrowyn Settings");
    ASSERT_TRUE(window);
    xcb_key_press_event_t escape{};
    escape.response_type = XCB_KEY_PRESS;
    escape.detail = key::escape;
    escape.root = desktop.root();
    escape.event = *window;
    escape.same_screen = 1;
    xcb_send_event(desktop.connection(), 0, *window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&escape));
    xcb_flush(desktop.connection());
    // Handled after the key.
    own.expectSwitching();
    EXPECT_TRUE(own.find("Ferrowyn Settings"));
    desktop.activate(*window);
    ASSERT_TRUE(own.waitForActive("Ferrowyn Settings"));
    input.tap(key::escape);
    EXPECT_TRUE(own.waitUntilGone("Ferrowyn Settings"));
}

}  // namespace
}  // namespace ferrowyn::x11test
