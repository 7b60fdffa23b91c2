#include "main/doctor.h"

namespace ferrowyn {
namespace {

using Verdict = DoctorFinding::Verdict;

TEST(DoctorReportTest, OnlyWhatIsBadKeepsSwitchingFromWorking) {
    EXPECT_TRUE(switchingCanWork({}));
    EXPECT_TRUE(switchingCanWork({{Verdict::good, "a", "", ""}, {Verdict::notice, "b", "", ""}}));
    EXPECT_FALSE(switchingCanWork({{Verdict::good, "a", "", ""}, {Verdict::bad, "b", "", ""}}));
}

TEST(DoctorReportTest, SaysTheOutcomeFirstAndTheAdviceBelowItsFinding) {
    EXPECT_EQ(formatted({{Verdict::good, "display", ":0", ""}, {Verdict::notice, "tray", "none", "Do this."}}),
              "Switching windows can work here.\n"
              "\n"
              "[ ok ] display  :0\n"
              "[note] tray     none\n"
              "                -> Do this.\n");
    EXPECT_EQ(formatted({{Verdict::bad, "x", "none", ""}}),
              "Switching windows cannot work here yet.\n"
              "\n"
              "[FAIL] x  none\n");
}

}  // namespace
}  // namespace ferrowyn
