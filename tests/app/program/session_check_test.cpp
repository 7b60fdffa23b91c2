#include "main/single_instance.h"

namespace ferrowyn {
namespace {

using testing::AllOf;
using testing::HasSubstr;

TEST(SessionCheck, AnX11SessionIsWelcome) {
    EXPECT_EQ(sessionRefusal({.display = ":0", .sessionType = "x11"}), std::nullopt);
    EXPECT_EQ(sessionRefusal({.display = ":0"}), std::nullopt);
    EXPECT_EQ(sessionRefusal({.display = ":99", .sessionType = "tty"}), std::nullopt);
}

TEST(SessionCheck, AWaylandSessionIsToldWhyAndWhatToDo) {
    const auto explanation = AllOf(HasSubstr("Wayland"), HasSubstr("X11"), HasSubstr("keys"), HasSubstr("Xorg"));
    for (const auto& environment : {SessionEnvironment{.display = ":0", .waylandDisplay = "wayland-0"},
                                    SessionEnvironment{.display = ":0", .sessionType = "wayland"},
                                    SessionEnvironment{.waylandDisplay = "wayland-0", .sessionType = "wayland"}}) {
        const auto refusal = sessionRefusal(environment);
        ASSERT_TRUE(refusal);
        EXPECT_THAT(*refusal, explanation);
    }
}

TEST(SessionCheck, AMissingDisplayIsNamed) {
    const auto refusal = sessionRefusal({});
    ASSERT_TRUE(refusal);
    EXPECT_THAT(*refusal, AllOf(HasSubstr("DISPLAY is not set"), HasSubstr("X11 desktop session")));
    EXPECT_THAT(unreachableDisplayMessage({.display = ":77"}), AllOf(HasSubstr(":77"), HasSubstr("XAUTHORITY")));
}

}  // namespace
}  // namespace ferrowyn
