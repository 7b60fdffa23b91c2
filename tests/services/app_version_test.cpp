#include "services/update_checker.h"

#include <cstdint>
#include <limits>

namespace ferrowyn {
namespace {

using testing::ElementsAre;

AppVersion version(const char* text) {
    return AppVersion(text);
}

TEST(AppVersionTest, ComparesNumbersAndNotTexts) {
    EXPECT_LT(version("1.9"), version("1.10"));
    EXPECT_FALSE(version("1.10") < version("1.9"));
    EXPECT_LT(version("1.99.99"), version("2"));
    EXPECT_LT(version("0.9"), version("1"));
}

TEST(AppVersionTest, MissingComponentsCountAsZero) {
    EXPECT_FALSE(version("1.2") < version("1.2.0"));
    EXPECT_FALSE(version("1.2.0") < version("1.2"));
    EXPECT_EQ(version("1.2"), version("1.2.0"));
    EXPECT_LT(version("1.2"), version("1.2.0.1"));
}

TEST(AppVersionTest, WhatFollowsTheFirstDashDoesNotCount) {
    EXPECT_EQ(version("1.3-beta"), version("1.3"));
    EXPECT_EQ(version("1.3-beta.9-2"), version("1.3"));
    EXPECT_THAT(version("1.3-beta.9").components(), ElementsAre(1, 3));
    EXPECT_LT(version("1.2.9-rc1"), version("1.3-alpha"));
}

TEST(AppVersionTest, KeepsTheTextAsItWasGiven) {
    EXPECT_EQ(version("v1.3-beta").original(), "v1.3-beta");
    EXPECT_EQ(version("").original(), "");
}

TEST(AppVersionTest, OnlyTheDigitsOfAPieceCount) {
    EXPECT_THAT(version("v1.b2x3").components(), ElementsAre(1, 23));
    EXPECT_THAT(version(" 4 . 5 ").components(), ElementsAre(4, 5));
    // Digits of other scripts are no decimal integers here.
    EXPECT_THAT(version("1.٣").components(), ElementsAre(1, 0));
}

TEST(AppVersionTest, APieceWithoutADigitReadsAsZero) {
    EXPECT_THAT(version("1..2").components(), ElementsAre(1, 0, 2));
    EXPECT_THAT(version("1.").components(), ElementsAre(1, 0));
    EXPECT_THAT(version("").components(), ElementsAre(0));
    EXPECT_THAT(version("-1.2").components(), ElementsAre(0));
    EXPECT_EQ(version(""), version("0.0"));
}

TEST(AppVersionTest, ANumberBeyondAllBoundsIsTheLargestOne) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_THAT(version("9223372036854775806").components(), ElementsAre(largest - 1));
    EXPECT_THAT(version("9223372036854775807").components(), ElementsAre(largest));
    EXPECT_THAT(version("9223372036854775808").components(), ElementsAre(largest));
    EXPECT_THAT(version("99999999999999999999999.1").components(), ElementsAre(largest, 1));
}

}  // namespace
}  // namespace ferrowyn
