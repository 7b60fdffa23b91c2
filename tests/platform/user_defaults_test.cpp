#include "platform/user_defaults.h"

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

}  // namespace
}  // namespace ferrowyn
