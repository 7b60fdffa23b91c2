#include "tests/x11/inventory_fixture.h"

namespace ferrowyn::x11test {
namespace {

/// The manager's own verdict on what the adapter asks of it.
class ActivationTest : public testing::TestWithParam<const char*> {
protected:
    ActivationTest()
        : manager(server, GetParam()),
          desktop(server.display()),
          first(server.display(), {.title = "First"}),
          second(server.display(), {.title = "Second", .x = 300}),
          parts(server.display()) {}

    void SetUp() override {
        ASSERT_TRUE(parts.runUntilKnown(first.id()));
        ASSERT_TRUE(parts.runUntilKnown(second.id()));
        activate(second.id());
        ASSERT_TRUE(desktop.waitForActiveWindow(second.id()));
    }

    /// As the logic asks.
    void activate(xcb_window_t window) {
        const auto element = X11Element::make(window);
        const auto pid = parts.monitor.model().find(window)->pid;
        parts.control.raise(element);
        parts.control.setMain(element);
        parts.control.setFocused(element);
        parts.control.setFocusedWindow(pid, element);
        parts.control.activate(pid);
        parts.control.setFrontmost(pid);
    }

    PrivateXServer server;
    WindowManagerProcess manager;
    TestDesktop desktop;
    TestWindow first;
    TestWindow second;
    AdapterParts parts;
};

TEST_P(ActivationTest, FocusesAndRaisesAWindow) {
    activate(first.id());
    EXPECT_TRUE(desktop.waitForActiveWindow(first.id()));
    const auto element = X11Element::make(first.id());
    EXPECT_TRUE(parts.runUntil([&] { return parts.control.isFocused(element) == true; }));
    EXPECT_EQ(parts.control.isMain(element), true);
    EXPECT_TRUE(parts.runUntil([&] { return parts.inventory.windowOrder()->front() == first.id(); }));
}

TEST_P(ActivationTest, RestoresAMinimisedWindow) {
    desktop.iconify(first.id());
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(first.id())->isHidden; }));
    activate(first.id());
    EXPECT_TRUE(desktop.waitForActiveWindow(first.id()));
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.isViewable(first.id()); }));
}

TEST_P(ActivationTest, TakesTheUserToAWindowOnAnotherDesktop) {
    desktop.setDesktopCount(2);
    desktop.moveToDesktop(first.id(), 1);
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(first.id())->desktop == 1U; }));
    activate(first.id());
    EXPECT_TRUE(desktop.waitForActiveWindow(first.id()));
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.currentDesktop() == 1U; }));
    EXPECT_EQ(parts.listedWindow(first.id())->isOnScreen, true);
}

INSTANTIATE_TEST_SUITE_P(Managers, ActivationTest, testing::Values("openbox", "xfwm4"),
                         [](const auto& instance) { return std::string(instance.param); });

}  // namespace
}  // namespace ferrowyn::x11test
