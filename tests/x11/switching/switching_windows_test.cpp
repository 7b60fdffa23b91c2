#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

class SwitchingWindowsTest : public ManagedDeskTest {};

TEST_P(SwitchingWindowsTest, AMinimisedWindowIsRestored) {
    openWindows(3);
    startProgram();
    desktop.watchProperties(window(1));
    desktop.iconify(window(1));
    ASSERT_TRUE(desktop.waitUntil([&] { return !desktop.isViewable(window(1)); }));
    hold();
    input.tap(key::end);
    input.tap(key::enter);
    expectSwitchTo(window(1));
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.isViewable(window(1)); }));
    letGo();
}

TEST_P(SwitchingWindowsTest, AWindowOnAnotherDesktopIsReached) {
    desktop.setDesktopCount(2);
    openWindows(3);
    startProgram();
    desktop.watchProperties(window(1));
    desktop.moveToDesktop(window(1), 1);
    ASSERT_TRUE(desktop.waitUntil([&] {
        const auto on = desktop.cardinals(window(1), "_NET_WM_DESKTOP");
        return !on.empty() && on.front() == 1;
    })) << "waited for the window to be on the other desktop";
    hold();
    input.tap(key::end);
    input.tap(key::enter);
    expectSwitchTo(window(1));
    letGo();
}

TEST_P(SwitchingWindowsTest, WhatAnotherProgramActivatesRightAfterASwitchKeepsTheFocus) {
    openWindows(3);
    startProgram();
    for (int round = 0; round < 5; ++round) {
        use(window(3));
        use(window(2));
        program->process().discardOutput();
        input.chord({key::leftAlt, key::tab});
        ASSERT_TRUE(program->waitForFirst(window(3))) << "waited for the program to see it active";
        // Again, if need be: managers drop a request that comes while they still focus the window before.
        bool isChosen = false;
        for (int attempt = 0; !isChosen && attempt < 10; ++attempt) {
            desktop.activate(window(1));
            isChosen = desktop.waitForActiveWindow(window(1), milliseconds{500});
        }
        ASSERT_TRUE(isChosen);
        // A slow machine may have confirmed the switch before; what must not be is that it was tried once more.
        ASSERT_TRUE(program->process().waitUntilOutput([&] {
            const auto said = program->process().output();
            return said.find("Another window was chosen after") != std::string::npos ||
                   said.find(" active after ") != std::string::npos;
        })) << program->process().output();
        EXPECT_THAT(program->process().output(), testing::Not(testing::HasSubstr("active after 2 check(s)")));
        EXPECT_TRUE(program->waitForFirst(window(1)));
        EXPECT_EQ(desktop.activeWindow(), window(1));
    }
}

TEST_P(SwitchingWindowsTest, ThePanelStandsAboveAFullScreenWindow) {
    openWindows(2);
    startProgram();
    desktop.setState(window(2), "_NET_WM_STATE_FULLSCREEN", true);
    ASSERT_TRUE(desktop.waitUntil([&] {
        const auto place = desktop.placeOf(window(2));
        return place && place->width == 1280 && place->height == 800;
    })) << "waited for the window to fill the screen";
    const auto below = desktop.pixel(640, 300);
    hold();
    const auto panel = panelPlace();
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.pixel(panel.x + 30, panel.y + 20) != below; }));
    letGo();
    expectSwitchTo(window(1));
}

/// What a person sees of a window behind one that fills the screen.
class LeavingFullScreenTest : public ManagedDeskTest {
protected:
    void fillTheScreen(xcb_window_t window) {
        program->process().discardOutput();
        desktop.setState(window, "_NET_WM_STATE_FULLSCREEN", true);
        ASSERT_TRUE(desktop.waitUntil([&] {
            const auto place = desktop.placeOf(window);
            return place && place->width == 1280 && place->height == 800;
        })) << "waited for the window to fill the screen";
        ASSERT_TRUE(program->waitForList(windows.size(), window)) << "waited for the program to know of it";
    }
    [[nodiscard]] bool waitUntilSeen(std::uint32_t colour, xcb_window_t window) {
        return desktop.waitUntil([&] {
            const auto place = desktop.placeOf(window);
            return place && desktop.pixel(place->x + place->width / 2, place->y + place->height / 2) == colour;
        });
    }
};

TEST_P(LeavingFullScreenTest, TheChosenWindowIsSeen) {
    constexpr std::uint32_t chosenColour = 0x228833, fullColour = 0xAA3377;
    openActive({.title = "Chosen", .colour = chosenColour});
    openActive({.title = "Film", .colour = fullColour});
    startProgram();
    fillTheScreen(window(2));
    ASSERT_TRUE(waitUntilSeen(fullColour, window(1))) << "waited for the film to cover the other window";
    for (int round = 0; round < 2; ++round) {
        input.chord({key::leftAlt, key::tab});
        expectSwitchTo(window(1));
        EXPECT_TRUE(waitUntilSeen(chosenColour, window(1)))
            << "waited for the chosen window to be seen; it said: " << program->process().output();
        input.chord({key::leftAlt, key::tab});
        expectSwitchTo(window(2));
        EXPECT_TRUE(waitUntilSeen(fullColour, window(1))) << "waited for the film to be seen";
        EXPECT_TRUE(desktop.hasState(window(2), "_NET_WM_STATE_FULLSCREEN"));
    }
}

TEST_P(SwitchingWindowsTest, DialogsAreListedAndSkipTaskbarWindowsAreNot) {
    openWindows(2);
    openWindow({.title = "Save as", .type = "_NET_WM_WINDOW_TYPE_DIALOG", .transientFor = window(1)});
    ASSERT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == 3; }));
    openWindow({.title = "Helper", .states = {"_NET_WM_STATE_SKIP_TASKBAR"}});
    ASSERT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == 4; }));
    makeActive(window(2));
    startProgram(3);
    hold();
    type({key::s, key::a, key::v});
    input.tap(key::enter);
    expectSwitchTo(window(3));
    letGo();
}

TEST_P(SwitchingWindowsTest, AWindowThatKeepsChangingItsTitleKeepsNoNewWindowFromTheList) {
    openWindows(2);
    startProgram();
    std::atomic<bool> isChatty{true};
    // What a page does that shows its progress in its title.
    std::thread chatter([&] {
        for (int percent = 0; isChatty; ++percent) {
            windows[0]->setTitle("Rendering: " + std::to_string(percent));
            std::this_thread::sleep_for(milliseconds{15});
        }
    });
    TestWindow newcomer(server.display(), {.title = "Newcomer"});
    makeActive(newcomer.id());
    EXPECT_TRUE(program->waitForList(3, newcomer.id(), milliseconds{3000})) << "waited for the new window to be listed";
    isChatty = false;
    chatter.join();
}

TEST_P(SwitchingWindowsTest, AWindowClosedWhileListedKeepsItsRowAndNothingBreaks) {
    openWindows(3);
    startProgram();
    hold();
    windows[1]->destroy();
    ASSERT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == 2; }));
    letGo();
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    ASSERT_TRUE(program->waitForList(2, window(3)));
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(1));
}

TEST_P(SwitchingWindowsTest, AnApplicationThatHangsIsStillReached) {
    openWindows(2);
    const ChildProcess terminal = startClient({"xterm", "-T", "Hanging terminal"});
    ASSERT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == 3; }));
    const auto hanging = desktop.clientList().back();
    makeActive(hanging);
    startProgram(3);
    use(window(2));
    terminal.signal(SIGSTOP);
    hold();
    type({key::h, key::a, key::n, key::g});
    input.tap(key::enter);
    EXPECT_TRUE(desktop.waitForActiveWindow(hanging));
    letGo();
    expectQuiet();
    terminal.signal(SIGCONT);
}

TEST_P(SwitchingWindowsTest, OfTwoHundredWindowsEachIsListedAndAnyIsReached) {
    openWindows(200);
    // That all of them are published, the last one opened in front.
    startProgram(200);
    // Rows: 200, 199 … 1.
    hold();
    input.tap(key::end);
    letGo();
    input.tap(key::enter);
    expectSwitchTo(window(1));
    // 1 200 … 2: 150 Tabs lead to the 151st row.
    hold(150);
    letGo();
    expectSwitchTo(window(51));
    // 51 1 200 … 52 50 … 2: from the last row up to the fourth from the end.
    hold();
    input.tap(key::end);
    type({key::up, key::up, key::up, key::enter});
    expectSwitchTo(window(5));
    letGo();
    EXPECT_TRUE(program->waitForList(200, window(5)));
}

INSTANTIATE_TEST_SUITE_P(X11, SwitchingWindowsTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(X11, LeavingFullScreenTest, testing::Values("openbox", "xfwm4"), managerName);
// Not i3, which lets no window fill the screen while another one is used.
INSTANTIATE_TEST_SUITE_P(FurtherManagers, LeavingFullScreenTest,
                         testing::Values("icewm", "metacity", "kwin_x11", "mutter", "wmaker"), managerName);

/// A document in front of another window, and a modal dialog of the document that has the focus.
class ModalDialogTest : public ManagedDeskTest {
protected:
    void startWithDialog(const std::string& title, std::size_t listed) {
        openActive({.title = "Other", .className = "Elsewhere"});
        openActive({.title = "Document"});
        openActive({.title = title,
                    .type = "_NET_WM_WINDOW_TYPE_DIALOG",
                    .transientFor = window(2),
                    .states = {"_NET_WM_STATE_MODAL"}});
        FerrowynProgram::Options options;
        program = std::make_unique<FerrowynProgram>(FERROWYN_PROGRAM, server, options);
        ASSERT_TRUE(program->waitUntilActive()) << "it said: " << program->process().output();
        ASSERT_TRUE(program->waitForList(listed, listed == 3 ? dialog() : document()))
            << "it said: " << program->process().output();
    }

    /// The program has seen that its choice of this window was carried out, and does not ask for it again and again.
    void expectConfirmed(xcb_window_t window) {
        EXPECT_TRUE(program->process().waitForOutput("Window " + std::to_string(window) + " active after"))
            << "it said: " << program->process().output();
    }

    [[nodiscard]] xcb_window_t other() const { return window(1); }
    [[nodiscard]] xcb_window_t document() const { return window(2); }
    [[nodiscard]] xcb_window_t dialog() const { return window(3); }
};

TEST_P(ModalDialogTest, AQuickSwitchFromTheDialogLeavesTheApplication) {
    startWithDialog("Save as", 3);
    for (const auto expected : {other(), dialog(), other()}) {
        input.chord({key::leftAlt, key::tab});
        expectSwitchTo(expected);
    }
}

TEST_P(ModalDialogTest, ChoosingTheBlockedWindowLeadsToItsDialog) {
    startWithDialog("Save as", 3);
    use(other());
    hold();
    type({key::d, key::o, key::c, key::u});
    input.tap(key::enter);
    expectSwitchTo(dialog());
    letGo();
    expectConfirmed(document());
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(other());
}

TEST_P(ModalDialogTest, ForADialogThatIsNotListedItsWindowStands) {
    startWithDialog("", 2);
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(other());
    // It has no row: its window's leads to it.
    input.chord({key::leftAlt, key::tab});
    EXPECT_TRUE(desktop.waitForActiveWindow(dialog())) << desktop.activeWindow() << " is active";
    EXPECT_TRUE(program->waitForFirst(document())) << "it said: " << program->process().output();
    expectConfirmed(document());
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(other());
}

INSTANTIATE_TEST_SUITE_P(X11, ModalDialogTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, ModalDialogTest,
                         testing::Values("icewm", "metacity", "i3", "kwin_x11", "mutter"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
