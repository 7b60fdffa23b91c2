#include "input/tap_state.h"

#include "tests/input/tap_doubles.h"

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TapStateTest : public ::testing::Test {
protected:
    TapState state;
    std::shared_ptr<RecordingEventTap> tap = std::make_shared<RecordingEventTap>(state);
};

TEST_F(TapStateTest, StartsHiddenWithTheCommandMask) {
    EXPECT_EQ(state.snapshot(), (TapState::Snapshot{0x100000, false, false}));
    EXPECT_FALSE(state.keepRunning());
    EXPECT_FALSE(state.reenableRequested());
}

TEST_F(TapStateTest, KnowsTheMaskOfEveryModifier) {
    state.setModifier(SwitcherModifier::option);
    EXPECT_EQ(state.snapshot().modifierFlag, 0x80000U);
    state.setModifier(SwitcherModifier::command);
    EXPECT_EQ(state.snapshot().modifierFlag, 0x100000U);
    state.setModifier(SwitcherModifier::control);
    EXPECT_EQ(state.snapshot().modifierFlag, 0x40000U);
}

TEST_F(TapStateTest, TellsTheTapItsTriggerOnceTheMaskIsSet) {
    state.setTapPort(tap);
    state.setModifier(SwitcherModifier::control);
    EXPECT_THAT(tap->triggers, ElementsAre(SwitcherModifier::control));
    EXPECT_THAT(tap->flagsAtTrigger, ElementsAre(0x40000U));
}

TEST_F(TapStateTest, TellsTheTapOfASessionOnlyWhenItIsPassedOn) {
    state.setTapPort(tap);
    state.setSwitcherVisible(true);
    state.setHoldModeActive(true);
    EXPECT_THAT(tap->sessions, IsEmpty());
    state.passSessionOn();
    EXPECT_THAT(tap->sessions, ElementsAre(RecordingEventTap::SessionCall{true, true, true}));
}

TEST_F(TapStateTest, TellsNobodyWithoutATap) {
    state.setTapPort(tap);
    state.setTapPort(nullptr);
    state.setModifier(SwitcherModifier::control);
    state.passSessionOn();
    EXPECT_THAT(tap->calls, IsEmpty());
    EXPECT_THAT(tap->triggers, IsEmpty());
}

TEST_F(TapStateTest, ADisabledTapForgetsTheSessionButKeepsTheTriggerAndTheThread) {
    state.setModifier(SwitcherModifier::control);
    state.setSwitcherVisible(true);
    state.setHoldModeActive(true);
    state.setKeepRunning(true);
    state.noteTapDisabled();
    EXPECT_EQ(state.snapshot(), (TapState::Snapshot{0x40000, false, false}));
    EXPECT_TRUE(state.reenableRequested());
    EXPECT_TRUE(state.keepRunning());
}

TEST_F(TapStateTest, AStopForgetsTheSessionAndEndsTheThread) {
    state.setSwitcherVisible(true);
    state.setHoldModeActive(true);
    state.setKeepRunning(true);
    state.noteStop();
    EXPECT_EQ(state.snapshot(), (TapState::Snapshot{0x100000, false, false}));
    EXPECT_FALSE(state.keepRunning());
    EXPECT_FALSE(state.reenableRequested());
}

}  // namespace
}  // namespace ferrowyn
