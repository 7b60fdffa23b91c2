#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {
namespace {

/// Tests the window managers that other tests use, so that a manager that does not start is reported here by name.
class ManagerTest : public testing::TestWithParam<const char*> {};

TEST_P(ManagerTest, StartsManagesWindowsAndActivatesOnRequest) {
    const PrivateXServer server;
    const WindowManagerProcess manager(server, GetParam());
    TestDesktop desktop(server.display());
    const TestWindow first(server.display(), {.title = "First"});
    ASSERT_TRUE(desktop.waitForActiveWindow(first.id())) << "waited for the first window to become active";
    const TestWindow second(server.display(), {.title = "Second", .x = 300});
    ASSERT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == 2; })) << "waited for both to be listed";
    desktop.activate(second.id());
    ASSERT_TRUE(desktop.waitForActiveWindow(second.id())) << "waited for the second window to become active";
    desktop.activate(first.id());
    EXPECT_TRUE(desktop.waitForActiveWindow(first.id())) << "waited for the first window to become active again";
}

std::string managerName(const testing::TestParamInfo<const char*>& instance) {
    return instance.param;
}

INSTANTIATE_TEST_SUITE_P(Managers, ManagerTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, ManagerTest, testing::Values("icewm", "metacity", "i3", "kwin_x11", "mutter"),
                         managerName);

}  // namespace
}  // namespace ferrowyn::x11test
