#include "platform/user_defaults.h"

#include <cstdint>
#include <limits>

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

double realOf(const std::string& text) {
    SimulatedDesktop desktop;
    desktop.userDefaults().set("key", text);
    return desktop.userDefaults().real("key");
}

TEST(UserDefaultsTest, ANumberThatIsStoredAsTextIsReadWhole) {
    EXPECT_EQ(realOf("1.5"), 1.5);
    EXPECT_EQ(realOf("-2e3"), -2000);
    EXPECT_EQ(realOf("1767225600.25"), 1767225600.25);
    EXPECT_EQ(realOf("0.1"), 0.1);
}

TEST(UserDefaultsTest, TextThatIsNoNumberIsZero) {
    for (const auto* text : {"", " 1.5", "1.5 ", "1.5x", "1,5", "x", "1e999"}) {
        EXPECT_EQ(realOf(text), 0) << '"' << text << '"';
    }
}

std::int64_t integerOf(const DefaultsValue& value) {
    SimulatedDesktop desktop;
    desktop.userDefaults().set("key", value);
    return desktop.userDefaults().integer("key");
}

bool booleanOf(const DefaultsValue& value) {
    SimulatedDesktop desktop;
    desktop.userDefaults().set("key", value);
    return desktop.userDefaults().boolean("key");
}

constexpr auto leastInteger = std::numeric_limits<std::int64_t>::min();
constexpr auto mostInteger = std::numeric_limits<std::int64_t>::max();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(UserDefaultsTest, ARealIsReadAsTheIntegerTowardsZero) {
    EXPECT_EQ(integerOf(12.9), 12);
    EXPECT_EQ(integerOf(-12.9), -12);
    EXPECT_EQ(integerOf(-0.0), 0);
    EXPECT_EQ(integerOf(-0x1p63), leastInteger);
    EXPECT_EQ(integerOf(0x1.fffffffffffffp62), 9223372036854774784);
}

TEST(UserDefaultsTest, ANumberBeyondTheIntegersIsReadAsTheLastOfThem) {
    for (const double huge : {0x1p63, 1e19, 1e300, infinite}) {
        EXPECT_EQ(integerOf(huge), mostInteger) << huge;
        EXPECT_EQ(integerOf(-huge * 2), leastInteger) << -huge * 2;
    }
    EXPECT_EQ(integerOf(notANumber), 0);
    EXPECT_EQ(integerOf("9223372036854775807"), mostInteger);
    EXPECT_EQ(integerOf("9223372036854775808"), mostInteger);
    EXPECT_EQ(integerOf("-99999999999999999999"), leastInteger);
}

TEST(UserDefaultsTest, TextThatIsNoWholeNumberIsTheIntegerZero) {
    for (const char* const text : {"", "nine", "9 ", " 9", "9.5", "9x", "1e3", "99999999999999999999x", "--9"}) {
        EXPECT_EQ(integerOf(std::string(text)), 0) << '"' << text << '"';
    }
}

TEST(UserDefaultsTest, EveryNumberButZeroIsTrue) {
    for (const double real : {1.0, 0.5, -1.0, 1e-300, 1e300, infinite, -infinite}) {
        EXPECT_TRUE(booleanOf(real)) << real;
    }
    EXPECT_FALSE(booleanOf(0.0));
    EXPECT_FALSE(booleanOf(-0.0));
    EXPECT_FALSE(booleanOf(notANumber));
    EXPECT_TRUE(booleanOf(std::int64_t{-1}));
    EXPECT_FALSE(booleanOf(std::int64_t{0}));
}

}  // namespace
}  // namespace ferrowyn
