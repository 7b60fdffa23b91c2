// The program's windows, its menu and its icon while the window manager, the session's bus or the tray ends and starts
// again.

#include <algorithm>
#include <csignal>

#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/switching/switching_desk.h"
#include "tests/x11/windows/program_windows.h"

namespace ferrowyn::x11test {
namespace {

using test::Health;

struct Opened {
    const char* row;
    const char* title;
    /// Whether it says how the program is doing.
    bool tellsHealth;
};

void PrintTo(const Opened& opened, std::ostream* stream) {
    *stream << opened.title;
}

template <typename Test>
class FaultsTest : public DeskTest<Test> {
protected:
    FaultsTest() : DeskTest<Test>("openbox") {
        // A check for updates shows a mark too.
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
    EXPECT_EQ(findWindow(GetParam().title), window) << "it stays on the screen";
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
    ASSERT_TRUE(desktop.waitUntil([&] { return findWindow("Ferrowyn Setup").has_value(); }));
    const auto setup = *findWindow("Ferrowyn Setup");
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
    EXPECT_TRUE(findWindow("Ferrowyn Settings"));
    desktop.activate(*window);
    ASSERT_TRUE(own.waitForActive("Ferrowyn Settings"));
    input.tap(key::escape);
    EXPECT_TRUE(own.waitUntilGone("Ferrowyn Settings"));
}

// The program where the session's bus is missing or ends.

constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";

class SessionBusFaultsTest : public DeskTest<testing::Test> {
protected:
    SessionBusFaultsTest() : DeskTest("openbox") {}

    void useBusAt(const std::string& address) { programOptions.environment[busVariable] = address; }

    /// Everything that does not need a bus.
    void expectAllToWork() {
        own.expectSwitching();
        const auto settings = ask({"--settings"});
        EXPECT_EQ(settings.status, 0) << settings.output;
        EXPECT_TRUE(own.waitForActive("Ferrowyn Settings"));
        input.tap(key::escape);
        EXPECT_TRUE(own.waitUntilGone("Ferrowyn Settings"));
        const auto show = ask({"--show"});
        EXPECT_EQ(show.status, 0) << show.output;
        EXPECT_TRUE(desktop.waitUntil([this] { return desktop.visiblePanel() && !desktop.keyboardIsFree(); }));
        input.tap(key::escape);
        EXPECT_TRUE(desktop.waitForPanel(false));
    }
    void expectToQuitWhenAsked() {
        expectQuiet();
        const auto quit = ask({"--quit"});
        EXPECT_EQ(quit.status, 0) << quit.output;
        EXPECT_EQ(program->process().waitForExit(), 0) << program->process().output();
    }

    ProgramWindows own{*this};
};

TEST_F(SessionBusFaultsTest, WithoutABusAtItsAddressAllElseWorks) {
    useBusAt("unix:path=" + server.home().path() + "/no-such-bus");
    openWindows(2);
    startProgram();
    expectAllToWork();
    expectToQuitWhenAsked();
}

TEST_F(SessionBusFaultsTest, WithAnAddressThatIsNoneAllElseWorks) {
    useBusAt("nonsense");
    openWindows(2);
    startProgram();
    expectAllToWork();
    expectToQuitWhenAsked();
}

TEST_F(SessionBusFaultsTest, FromWhereThereIsNeitherDisplayNorBusItIsSaidThatItCannotBeReached) {
    useBusAt("unix:path=" + server.home().path() + "/no-such-bus");
    programOptions.environment["DISPLAY"] = "";
    const auto answer = ask({"--show"});
    EXPECT_EQ(answer.status, 1);
    EXPECT_THAT(answer.output, testing::HasSubstr("DISPLAY is not set"));
}

TEST_F(SessionBusFaultsTest, TheBusEndsWhileItRuns) {
    PrivateBus bus(server);
    useBusAt(bus.address());
    openWindows(2);
    startProgram();
    own.expectSwitching();
    bus.kill();
    expectAllToWork();
    expectToQuitWhenAsked();
}

TEST_F(SessionBusFaultsTest, TheBusEndsWhileTheMenuOfItsTrayIsOpen) {
    PrivateBus bus(server);
    useBusAt(bus.address());
    const TrayHostProcess tray(server, bus, "trayer");
    openWindows(2);
    startProgram();
    ASSERT_TRUE(own.openMenu());
    bus.kill();
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
    EXPECT_TRUE(own.choose("Settings…")) << "the icon is where it was";
    EXPECT_TRUE(own.waitForActive("Ferrowyn Settings"));
    own.expectSwitching();
}

// The program's icon while the tray that shows it ends and starts again.

constexpr TestDesktop::Place upperEdge{0, 0, 1280, 32};

class TrayRestartsTest : public DeskTest<testing::Test> {
protected:
    TrayRestartsTest() : DeskTest("openbox") {}

    using Pixels = std::vector<std::uint32_t>;

    /// Waits until this holds of the screen's upper edge, and the edge has not changed for a while.
    [[nodiscard]] std::optional<Pixels> waitForEdge(const std::function<bool(const Pixels&)>& isWanted) {
        constexpr int looks = 5;
        constexpr milliseconds betweenLooks{50};
        int timesSeen = 0;
        Pixels last;
        const Deadline deadline(2 * patience);
        while (timesSeen < looks && !deadline.hasPassed()) {
            const auto now = desktop.pixels(upperEdge);
            timesSeen = isWanted(now) && now == last ? timesSeen + 1 : 0;
            last = now;
            static_cast<void>(desktop.waitUntil([] { return false; }, betweenLooks));
        }
        return timesSeen == looks ? std::optional(last) : std::nullopt;
    }
    /// Around all pixels in which the two pictures of the upper edge differ.
    [[nodiscard]] static TestDesktop::Place difference(const Pixels& one, const Pixels& other) {
        int left = upperEdge.width, right = 0, top = upperEdge.height, bottom = 0;
        for (int index = 0; index < static_cast<int>(one.size()); ++index) {
            if (one[static_cast<std::size_t>(index)] != other[static_cast<std::size_t>(index)]) {
                left = std::min(left, index % upperEdge.width);
                right = std::max(right, index % upperEdge.width);
                top = std::min(top, index / upperEdge.width);
                bottom = std::max(bottom, index / upperEdge.width);
            }
        }
        return {left, top, right - left + 1, bottom - top + 1};
    }
    /// Where the pointer is over nothing that could follow it.
    void parkPointer() { input.movePointer(640, 600); }

    ProgramWindows own{*this};
};

TEST_F(TrayRestartsTest, AHostOfStatusNotifiersShowsTheIconAgain) {
    const PrivateBus bus(server);
    programOptions.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    auto host = std::make_unique<TrayHostProcess>(server, bus, "lxqt-panel");
    parkPointer();
    ASSERT_TRUE(desktop.waitUntil([&] { return !desktop.clientList().empty(); })) << host->process().output();
    const auto empty = waitForEdge([](const auto&) { return true; });
    ASSERT_TRUE(empty) << "waited for the panel to be drawn";
    openWindows(2);
    startProgram();
    const auto shown = waitForEdge([&](const auto& now) { return now != *empty; });
    ASSERT_TRUE(shown) << "waited for the icon; it said: " << program->process().output();
    const auto icon = difference(*empty, *shown);
    EXPECT_LE(icon.width, upperEdge.height) << "one icon";
    ASSERT_TRUE(own.openMenuAt(icon));

    host->process().signal(SIGKILL);
    ASSERT_TRUE(host->process().waitForExit());
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
    own.expectSwitching();

    host = std::make_unique<TrayHostProcess>(server, bus, "lxqt-panel");
    parkPointer();
    ASSERT_TRUE(waitForEdge([&](const auto& now) { return now == *shown; })) << "waited for the icon to be back";
    const auto menu = own.openMenuAt(icon);
    ASSERT_TRUE(menu);
    own.clickRow(*menu, "Settings…");
    EXPECT_TRUE(own.waitForActive("Ferrowyn Settings"));
}

TEST_F(TrayRestartsTest, ATrayThatEmbedsWindowsShowsTheIconAgain) {
    auto tray = std::make_unique<TrayHostProcess>(server, "trayer");
    openWindows(2);
    startProgram();
    ASSERT_TRUE(own.openMenu());
    tray->process().signal(SIGKILL);
    ASSERT_TRUE(tray->process().waitForExit());
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
    own.expectSwitching();
    tray = std::make_unique<TrayHostProcess>(server, "trayer");
    EXPECT_TRUE(own.choose("Settings…"));
    EXPECT_TRUE(own.waitForActive("Ferrowyn Settings"));
}

}  // namespace
}  // namespace ferrowyn::x11test
