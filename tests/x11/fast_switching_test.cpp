#include <gtest/gtest.h>

#include "tests/x11/desk_test.h"
#include "tests/x11/hands.h"

namespace ferrowyn::x11test {
namespace {

/// A window manager and how many switches are tried under it.
struct Trial {
    const char* manager;
    int switches;
};

void PrintTo(const Trial& trial, std::ostream* stream) {
    *stream << trial.manager;
}

class FastSwitchingTest : public DeskTest<testing::TestWithParam<Trial>> {
protected:
    FastSwitchingTest() : DeskTest(GetParam().manager) {}
};

TEST_P(FastSwitchingTest, EveryFastSwitchEndsOnTheExpectedWindow) {
    openWindows(3);
    startProgram();
    Hands hands(input);
    for (int round = 0; round < GetParam().switches; ++round) {
        const auto expected = window(round % 2 == 0 ? 2 : 3);
        hands.toggle();
        ASSERT_TRUE(desktop.waitForActiveWindow(expected, milliseconds{3000}))
            << "switch " << round << ": waited for " << expected << ", but " << desktop.activeWindow()
            << " is active; it said: " << program->process().output();
        ASSERT_TRUE(desktop.waitForPanel(false)) << "switch " << round << ": the panel stayed";
    }
}

std::string trialName(const testing::TestParamInfo<Trial>& instance) {
    return instance.param.manager;
}

INSTANTIATE_TEST_SUITE_P(X11, FastSwitchingTest, testing::Values(Trial{"openbox", 500}, Trial{"xfwm4", 500}),
                         trialName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, FastSwitchingTest,
                         testing::Values(Trial{"icewm", 100}, Trial{"metacity", 100}, Trial{"i3", 100},
                                         Trial{"kwin_x11", 100}, Trial{"mutter", 100}),
                         trialName);

}  // namespace
}  // namespace ferrowyn::x11test
