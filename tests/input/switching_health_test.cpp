#include "input/switching_health.h"

#include "platform/simulated/simulated_desktop.h"
#include "tests/input/print_log_line.h"

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Problem = SwitchingHealth::Problem;
using LogLine = SimulatedDesktop::LogLine;

constexpr Pid oneApplication = 100, anotherApplication = 200, thirdApplication = 300;

class SwitchingHealthTest : public ::testing::Test {
protected:
    [[nodiscard]] std::optional<Problem> problem() const { return health.problem().get(); }

    SimulatedDesktop desktop;
    SwitchingHealth health{desktop.platform().log};
};

TEST_F(SwitchingHealthTest, TwoApplicationsInARowThatDoNotComeAreAProblemUntilOneDoes) {
    health.noteActivation(false, oneApplication);
    EXPECT_EQ(problem(), std::nullopt);
    health.noteActivation(false, anotherApplication);
    EXPECT_EQ(problem(), Problem::activationsUnconfirmed);
    health.noteActivation(true, oneApplication);
    EXPECT_EQ(problem(), std::nullopt);
}

TEST_F(SwitchingHealthTest, AnApplicationThatHangsIsNoProblemOfTheDesktopHoweverOftenItIsTried) {
    for (int round = 0; round < 5; ++round) {
        health.noteActivation(false, oneApplication);
    }
    EXPECT_EQ(problem(), std::nullopt);
    health.noteActivation(true, anotherApplication);
    health.noteActivation(false, thirdApplication);
    EXPECT_EQ(problem(), std::nullopt) << "a window has come to the front since";
    health.noteActivation(false, oneApplication);
    EXPECT_EQ(problem(), Problem::activationsUnconfirmed);
}

TEST_F(SwitchingHealthTest, UnconfirmedActivationsBetweenConfirmedOnesAreNone) {
    for (int round = 0; round < 3; ++round) {
        health.noteActivation(false, round);
        health.noteActivation(true, round);
    }
    EXPECT_EQ(problem(), std::nullopt);
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(SwitchingHealthTest, TwoLostTriggersInARowAreAProblemUntilOneComes) {
    health.noteTriggerAnsweredElsewhere();
    EXPECT_EQ(problem(), std::nullopt);
    health.noteTrigger();
    health.noteTriggerAnsweredElsewhere();
    EXPECT_EQ(problem(), std::nullopt) << "not in a row";
    health.noteTriggerAnsweredElsewhere();
    EXPECT_EQ(problem(), Problem::triggerAnsweredElsewhere);
    health.noteTrigger();
    EXPECT_EQ(problem(), std::nullopt);
}

TEST_F(SwitchingHealthTest, ALostTriggerComesBeforeUnconfirmedActivations) {
    for (int round = 0; round < 2; ++round) {
        health.noteActivation(false, round);
        health.noteTriggerAnsweredElsewhere();
    }
    EXPECT_EQ(problem(), Problem::triggerAnsweredElsewhere);
    health.forgetTriggers();
    EXPECT_EQ(problem(), Problem::activationsUnconfirmed);
    health.forgetAll();
    EXPECT_EQ(problem(), std::nullopt);
}

TEST_F(SwitchingHealthTest, LogsEachChangeOnce) {
    for (int round = 0; round < 4; ++round) {
        health.noteActivation(false, round);
    }
    health.noteActivation(true, oneApplication);
    health.noteActivation(true, anotherApplication);
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::standard, "input", "The chosen windows do not come to the front"},
                            LogLine{LogLevel::standard, "input", "Switching works again"}));
}

}  // namespace
}  // namespace ferrowyn
