#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "tests/x11/desk_test.h"

namespace ferrowyn::x11test {
namespace {

/// A key that the user holds in an application, as one walks in a game, while the switcher is used.
class HeldKeysTest : public ManagedDeskTest {
protected:
    /// Time for a dozen repeats.
    static constexpr milliseconds manyRepeats{400};

    void SetUp() override {
        run({"xset", "r", "rate", "200", "30"});
        openActive({.title = "Walnut"});
        openActive({.title = "Pear"});
        openActive({.title = "Game"});
        startProgram();
    }

    /// Holds W in the active window until it repeats there.
    void holdWalkingKey() {
        input.press(key::w);
        for (int repeat = 0; repeat < 3; ++repeat) {
            ASSERT_TRUE(windows.back()->waitForKeyPress(key::w)) << "waited for W to repeat";
        }
    }
    /// How long fingers stay where they are, not a wait for something: nothing is to happen meanwhile.
    void stayFor(milliseconds duration) {
        (void)desktop.waitUntil([] { return false; }, duration);
    }
    void expectNoWalkingKey(std::size_t ordinal) {
        stayFor(manyRepeats);
        EXPECT_THAT(windows.at(ordinal - 1)->takeInput().keyPresses, testing::Not(testing::Contains(key::w)))
            << "W typed into window " << ordinal;
    }
};

TEST_P(HeldKeysTest, AKeyHeldSinceBeforeTheTriggerNeitherTypesNorPins) {
    holdWalkingKey();
    hold();
    stayFor(manyRepeats);
    letGo();
    expectSwitchTo(window(2));
    expectNoWalkingKey(2);
    input.release(key::w);
    expectQuiet();
}

TEST_P(HeldKeysTest, AKeyHeldForAMomentOnlyDoesNotBeginToRepeatAfterTheSwitch) {
    input.press(key::w);
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(2));
    expectNoWalkingKey(2);
    input.release(key::w);
    expectQuiet();
}

TEST_P(HeldKeysTest, AHeldKeyTypesOnceItWasReleasedAndPressedAgain) {
    holdWalkingKey();
    hold();
    stayFor(manyRepeats);
    input.release(key::w);
    type({key::w, key::a});
    // Typing pins: letting go does not switch.
    letGo();
    input.tap(key::enter);
    expectSwitchTo(window(1));
    expectQuiet();
}

INSTANTIATE_TEST_SUITE_P(X11, HeldKeysTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, HeldKeysTest, testing::Values("mutter"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
