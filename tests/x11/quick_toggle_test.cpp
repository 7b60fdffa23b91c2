#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/desk_test.h"

namespace ferrowyn::x11test {
namespace {

class QuickToggleTest : public ManagedDeskTest {};

TEST_P(QuickToggleTest, AQuickTapTogglesBetweenTheTwoLatestWindows) {
    openWindows(3);
    startProgram();
    for (int round = 0; round < 4; ++round) {
        input.chord({key::leftAlt, key::tab});
        expectSwitchTo(window(round % 2 == 0 ? 2 : 3));
    }
}

TEST_P(QuickToggleTest, HoldingCyclesForwardBackwardAndAround) {
    openWindows(4);
    startProgram();
    // Recency: 4 3 2 1. Two Tabs: the third row.
    hold(2);
    letGo();
    expectSwitchTo(window(2));
    // 2 4 3 1. Four Tabs go around to the first row: nothing changes.
    hold(4);
    letGo();
    expectSwitchTo(window(2));
    // Backward opens on the last row.
    holdBackward();
    letGo();
    expectSwitchTo(window(1));
    // 1 2 4 3. Backward once, then forward twice: around to the second row.
    holdBackward();
    input.tap(key::tab);
    input.tap(key::tab);
    letGo();
    expectSwitchTo(window(2));
}

INSTANTIATE_TEST_SUITE_P(X11, QuickToggleTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, QuickToggleTest,
                         testing::Values("icewm", "metacity", "i3", "kwin_x11", "mutter", "wmaker"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
