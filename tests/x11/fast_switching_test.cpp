#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <thread>

#include "tests/x11/switching_fixture.h"

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

class FastSwitchingTest : public testing::TestWithParam<Trial> {};

/// The pauses of fast hands: this is the stimulus, not a wait for something.
class Hands {
public:
    explicit Hands(TestInput& input) : input_(input) {}

    void toggle() {
        input_.press(key::leftAlt);
        pause();
        input_.press(key::tab);
        pause();
        // Either key may go up first.
        const bool tabFirst = random_() % 2 == 0;
        input_.release(tabFirst ? key::tab : key::leftAlt);
        pause();
        input_.release(tabFirst ? key::leftAlt : key::tab);
    }

private:
    void pause() {
        std::uniform_real_distribution<double> milliseconds(0.3, 30);
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(milliseconds(random_)));
    }

    TestInput& input_;
    std::mt19937 random_{20240817};
};

TEST_P(FastSwitchingTest, EveryFastSwitchEndsOnTheExpectedWindow) {
    SwitchingFixture desk(GetParam().manager);
    desk.openWindows(3);
    desk.startProgram();
    Hands hands(desk.input);
    for (int round = 0; round < GetParam().switches; ++round) {
        const auto expected = desk.window(round % 2 == 0 ? 2 : 3);
        hands.toggle();
        ASSERT_TRUE(desk.desktop.waitForActiveWindow(expected, milliseconds{3000}))
            << "switch " << round << ": waited for " << expected << ", but " << desk.desktop.activeWindow()
            << " is active; it said: " << desk.program->process().output();
        ASSERT_TRUE(desk.desktop.waitForPanel(false)) << "switch " << round << ": the panel stayed";
    }
    desk.expectQuiet();
}

TEST_P(FastSwitchingTest, TheManagersOwnBindingIsPreEmpted) {
    SwitchingFixture desk(GetParam().manager);
    desk.openWindows(3);
    desk.startProgram();
    desk.hold(2);
    desk.letGo();
    desk.expectSwitchTo(desk.window(1));
    desk.holdBackward();
    desk.letGo();
    desk.expectSwitchTo(desk.window(2));
    desk.expectQuiet();
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
