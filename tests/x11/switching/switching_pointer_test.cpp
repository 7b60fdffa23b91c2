#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

class SwitchingPointerTest : public ManagedDeskTest {
protected:
    /// Below the search line and the inset; rows of 52 with 1 between, counted from 1.
    static int middleOfRow(const TestDesktop::Place& panel, int row) { return panel.y + 56 + 8 + (row - 1) * 53 + 26; }
};

TEST_P(SwitchingPointerTest, ClickingARowSwitchesToIt) {
    openWindows(4);
    startProgram();
    hold();
    const auto panel = panelPlace();
    input.click(panel.x + 200, middleOfRow(panel, 3));
    expectSwitchTo(window(2));
    letGo();
}

TEST_P(SwitchingPointerTest, ClickingElsewhereClosesAndStillReachesTheWindowBelow) {
    openWindows(2);
    startProgram();
    const auto place = desktop.placeOf(window(2));
    ASSERT_TRUE(place);
    hold();
    // Pinned and let go of: with Alt held the click would be the manager's, to move the window.
    input.tap(key::down);
    letGo();
    input.click(place->x + 20, place->y + place->height - 10);
    EXPECT_TRUE(windows[1]->waitForButtonPress()) << "the click must reach the window below";
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go; it said: " << program->process().output();
    EXPECT_EQ(desktop.activeWindow(), window(2));
}

TEST_P(SwitchingPointerTest, ClickingElsewhereWithTheTriggerHeldClosesWhateverTheManagerDoesWithTheClick) {
    openWindows(2);
    startProgram();
    const auto place = desktop.placeOf(window(2));
    ASSERT_TRUE(place);
    hold();
    input.click(place->x + 20, place->y + place->height - 10);
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    letGo();
    EXPECT_EQ(desktop.activeWindow(), window(2));
}

TEST_P(SwitchingPointerTest, APointerThatRestsOnTheRowsDoesNotStealTheSelection) {
    openWindows(5);
    startProgram();
    hold();
    const auto panel = panelPlace();
    input.tap(key::escape);
    letGo();
    EXPECT_TRUE(desktop.waitForPanel(false));
    const int rowFour = middleOfRow(panel, 4);
    input.movePointer(panel.x + 300, rowFour);
    hold();
    input.movePointer(panel.x + 301, rowFour + 1);
    letGo();
    expectSwitchTo(window(4));
    // More than three points away, the pointer chooses. Rows: 4 5 3 2 1.
    hold();
    const auto edgeOfRow = [&](int row) { return desktop.pixel(panel.x + 16, middleOfRow(panel, row)); };
    ASSERT_TRUE(desktop.waitUntil([&] { return edgeOfRow(2) != edgeOfRow(4); })) << "waited for the selection";
    const auto selection = edgeOfRow(2);
    input.movePointer(panel.x + 310, rowFour + 5);
    EXPECT_TRUE(desktop.waitUntil([&] { return edgeOfRow(4) == selection; }))
        << "waited for the selection to be drawn under the pointer";
    input.tap(key::enter);
    expectSwitchTo(window(2));
    letGo();
}

INSTANTIATE_TEST_SUITE_P(X11, SwitchingPointerTest, testing::Values("openbox", "xfwm4"), managerName);

class TwoScreensTest : public ManagedDeskTest {
protected:
    TwoScreensTest()
        : ManagedDeskTest({.screens = {"2304x800x24"},
                           .monitors = {"1280/339x800/212+0+0", "1024/271x768/203+1280+0"},
                           .program = {}}) {}
};

TEST_P(TwoScreensTest, ThePanelOpensOnTheScreenWithThePointer) {
    openWindows(2);
    startProgram();
    for (const auto& [pointer, left, right] : {std::tuple{600, 0, 1280}, std::tuple{1800, 1280, 2304}}) {
        input.movePointer(pointer, 400);
        hold();
        const auto panel = panelPlace();
        EXPECT_GE(panel.x, left);
        EXPECT_LE(panel.x + panel.width, right);
        input.tap(key::escape);
        letGo();
        EXPECT_TRUE(desktop.waitForPanel(false));
    }
}

INSTANTIATE_TEST_SUITE_P(X11, TwoScreensTest, testing::Values("openbox", "xfwm4"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
