#include "input/tap_state.h"

#include "tests/input/tap_doubles.h"

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using SessionCall = RecordingTap::SessionCall;

class TapStateTest : public ::testing::Test {
protected:
    TapState state;
    RecordingTap recorder{state};
    RecordingTap* const tap = &recorder;
};

TEST_F(TapStateTest, StartsHiddenWithTheCommandMask) {
    EXPECT_EQ(state.snapshot(), (TapState::Snapshot{0x100000, false, false}));
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

TEST_F(TapStateTest, TellsTheTapOfASessionOnceBothFlagsAreSet) {
    state.setTapPort(tap);
    state.openSession(true);
    state.closeSession();
    ASSERT_EQ(tap->sessions.size(), 2U);
    const auto session = tap->sessions[0].session;
    EXPECT_EQ(tap->sessions[0], (SessionCall{true, true, true, session}));
    EXPECT_EQ(tap->sessions[1], (SessionCall{false, false, false, session}));
    state.closeSession();
    EXPECT_THAT(tap->calls, ElementsAre("open", "closed")) << "none is open";
}

TEST_F(TapStateTest, NoTwoSessionsHaveTheSameNumber) {
    state.setTapPort(tap);
    const auto requested = state.requestSession();
    state.openSession(true);
    state.closeSession();
    state.openSession(true);
    EXPECT_NE(tap->sessions[0].session, requested);
    EXPECT_NE(tap->sessions[2].session, requested);
    EXPECT_NE(tap->sessions[2].session, tap->sessions[0].session);
}

TEST_F(TapStateTest, ASessionThatOpensForARequestHasItsNumber) {
    state.setTapPort(tap);
    const auto requested = state.requestSession();
    EXPECT_TRUE(state.beginRequest(requested));
    state.openSession(true);
    state.endRequest();
    EXPECT_THAT(tap->sessions, ElementsAre(SessionCall{true, true, true, requested}));
    state.closeSession();
    state.openSession(true);
    EXPECT_NE(tap->sessions.back().session, requested) << "the request has been answered";
}

TEST_F(TapStateTest, RefusesARequestThatNoSessionWasOpenedFor) {
    state.setTapPort(tap);
    const auto requested = state.requestSession();
    EXPECT_TRUE(state.beginRequest(requested));
    state.endRequest();
    EXPECT_THAT(tap->sessions, ElementsAre(SessionCall{false, false, false, requested}));
    state.openSession(true);
    EXPECT_NE(tap->sessions.back().session, requested);
}

TEST_F(TapStateTest, ARequestThatTheTapHasGivenUpIsAnsweredAtOnceAndOpensNoSession) {
    state.setTapPort(tap);
    const auto requested = state.requestSession();
    tap->givenUp = requested;
    EXPECT_FALSE(state.beginRequest(requested));
    EXPECT_THAT(tap->sessions, ElementsAre(SessionCall{false, false, false, requested}));
    state.openSession(true);
    EXPECT_NE(tap->sessions.back().session, requested);
}

TEST_F(TapStateTest, ASessionThatIsOpenGoesOnWhenItIsOpenedAgain) {
    state.setTapPort(tap);
    state.openSession(true);
    EXPECT_TRUE(state.beginRequest(state.requestSession()));
    state.openSession(false);
    state.tellTapOfSession();
    EXPECT_THAT(tap->calls, ElementsAre("open", "open", "open"));
    EXPECT_EQ(tap->sessions[1], (SessionCall{true, true, false, tap->sessions[0].session}));
    EXPECT_EQ(tap->sessions[2], tap->sessions[1]);
}

TEST_F(TapStateTest, TellsNobodyWithoutATap) {
    state.setTapPort(tap);
    state.setTapPort(nullptr);
    state.setModifier(SwitcherModifier::control);
    state.openSession(true);
    state.tellTapOfSession();
    state.closeSession();
    EXPECT_TRUE(state.beginRequest(state.requestSession()));
    state.endRequest();
    EXPECT_THAT(tap->calls, IsEmpty());
    EXPECT_THAT(tap->triggers, IsEmpty());
}

TEST_F(TapStateTest, ADisabledTapForgetsTheSessionButKeepsTheTrigger) {
    state.setModifier(SwitcherModifier::control);
    state.openSession(true);
    state.noteTapDisabled();
    EXPECT_EQ(state.snapshot(), (TapState::Snapshot{0x40000, false, false}));
    EXPECT_TRUE(state.reenableRequested());
}

}  // namespace
}  // namespace ferrowyn
