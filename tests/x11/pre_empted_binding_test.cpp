#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/x11/desk_test.h"

namespace ferrowyn::x11test {
namespace {

/// When a manager's own switching can be seen.
enum class Shows { aPopup, theSwitchAtOnce, theSwitchOnRelease };

struct OwnBinding {
    const char* manager;
    Shows shows;
};

void PrintTo(const OwnBinding& binding, std::ostream* stream) {
    *stream << binding.manager;
}

class PreEmptedBindingTest : public DeskTest<testing::TestWithParam<OwnBinding>> {
protected:
    PreEmptedBindingTest() : DeskTest(GetParam().manager) {}

    /// Alt+Tab without the program: the manager itself must switch away from the active window.
    void expectTheManagerSwitches() {
        const auto active = desktop.activeWindow();
        const auto shown = desktop.shownTopLevels();
        const auto hasSwitched = [&] {
            const auto now = desktop.activeWindow();
            return now != active && now != XCB_WINDOW_NONE;
        };
        input.press(key::leftAlt);
        input.tap(key::tab);
        // Some managers miss the release of Alt while they are still about to take the keyboard for their popup.
        if (GetParam().shows == Shows::aPopup) {
            EXPECT_TRUE(desktop.waitUntil([&] { return desktop.shownTopLevels() != shown; }))
                << "waited for the manager's popup";
        } else if (GetParam().shows == Shows::theSwitchAtOnce) {
            EXPECT_TRUE(desktop.waitUntil(hasSwitched)) << "waited for the manager to switch";
        }
        input.release(key::leftAlt);
        EXPECT_TRUE(desktop.waitUntil(hasSwitched)) << "waited for the manager to switch on the release";
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

std::string bindingName(const testing::TestParamInfo<OwnBinding>& instance) {
    return instance.param.manager;
}

INSTANTIATE_TEST_SUITE_P(X11, PreEmptedBindingTest,
                         testing::Values(OwnBinding{"openbox", Shows::aPopup}, OwnBinding{"xfwm4", Shows::aPopup}),
                         bindingName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, PreEmptedBindingTest,
                         testing::Values(OwnBinding{"icewm", Shows::aPopup}, OwnBinding{"metacity", Shows::aPopup},
                                         OwnBinding{"i3", Shows::theSwitchAtOnce},
                                         OwnBinding{"kwin_x11", Shows::theSwitchOnRelease},
                                         OwnBinding{"mutter", Shows::theSwitchAtOnce}),
                         bindingName);

}  // namespace
}  // namespace ferrowyn::x11test
