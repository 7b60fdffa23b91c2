#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/desk_test.h"

namespace ferrowyn::x11test {
namespace {

class PreEmptedBindingTest : public ManagedDeskTest {
protected:
    /// Alt+Tab without the program: the manager itself must switch away from the active window.
    void expectTheManagerSwitches() {
        constexpr milliseconds perPress{2000};
        const Deadline deadline(patience);
        const auto active = desktop.activeWindow();
        const auto shown = desktop.shownTopLevels();
        const auto hasSwitched = [&] {
            const auto now = desktop.activeWindow();
            return now != active && now != XCB_WINDOW_NONE;
        };
        // Pressed until it answers: some listen for their keys only a while after they manage windows.
        while (!hasSwitched() && !deadline.hasPassed()) {
            input.press(key::leftAlt);
            input.tap(key::tab);
            // Those with a popup miss the release of Alt while they are still about to take the keyboard for it; those
            // without one switch now, or on the release.
            (void)desktop.waitUntil([&] { return desktop.shownTopLevels() != shown || hasSwitched(); }, perPress);
            input.release(key::leftAlt);
            (void)desktop.waitUntil(hasSwitched, perPress);
        }
        EXPECT_TRUE(hasSwitched()) << "waited for the manager to switch";
        EXPECT_TRUE(desktop.waitUntil([&] { return desktop.shownTopLevels() == shown; }))
            << "waited for the manager's popup to go";
    }

    /// In a session that is on the screen: nothing but the panel was added, and nothing has been switched yet.
    void expectOnlyThePanel(const std::set<xcb_window_t>& shownBefore, xcb_window_t active) {
        auto expected = shownBefore;
        expected.insert(desktop.visiblePanel().value_or(XCB_WINDOW_NONE));
        EXPECT_EQ(desktop.shownTopLevels(), expected) << "the manager shows something of its own";
        EXPECT_EQ(desktop.activeWindow(), active) << "the manager switched by itself";
    }
};

TEST_P(PreEmptedBindingTest, TheKeyIsTheManagersUntilTheProgramRuns) {
    openWindows(3);
    expectTheManagerSwitches();
    for (std::size_t ordinal = 1; ordinal <= 3; ++ordinal) {
        makeActive(window(ordinal));
    }
    startProgram();
    const auto shown = desktop.shownTopLevels();

    hold(2);
    expectOnlyThePanel(shown, window(3));
    letGo();
    expectSwitchTo(window(1));
    holdBackward();
    expectOnlyThePanel(shown, window(1));
    letGo();
    expectSwitchTo(window(2));
    EXPECT_EQ(desktop.shownTopLevels(), shown);
}

INSTANTIATE_TEST_SUITE_P(X11, PreEmptedBindingTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, PreEmptedBindingTest,
                         testing::Values("icewm", "metacity", "i3", "kwin_x11", "mutter"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
