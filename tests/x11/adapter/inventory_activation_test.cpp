#include <optional>
#include <string>
#include <vector>

#include "tests/x11/adapter/inventory_fixture.h"
#include "tests/x11/harness/desktop_processes.h"

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
          other(server.display(), {.title = "Other", .x = 500}),
          parts(server.display()) {}

    void SetUp() override {
        ASSERT_TRUE(parts.runUntilKnown(first.id()));
        ASSERT_TRUE(parts.runUntilKnown(second.id()));
        ASSERT_TRUE(parts.runUntilKnown(other.id()));
        activate(second.id());
        ASSERT_TRUE(desktop.waitForActiveWindow(second.id()));
    }

    /// As the logic asks.
    void activate(xcb_window_t window) {
        parts.control.raiseAndFocus({.pid = pidOf(window), .window = X11Element::make(window)});
    }

    Pid pidOf(xcb_window_t window) { return parts.monitor.model().find(window)->pid; }
    ActivationState stateOf(xcb_window_t window) {
        return parts.control.stateOf(pidOf(window), X11Element::make(window));
    }

    /// The first window and the other one are on a desktop that is not shown; the first has just been reached
    /// there.
    void reachAnotherDesktop() {
        desktop.setDesktopCount(2);
        for (const auto window : {first.id(), other.id()}) {
            desktop.moveToDesktop(window, 1);
            ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(window)->desktop == 1U; }));
        }
        activate(first.id());
        ASSERT_TRUE(isSeenActive(first.id()));
    }

    bool isSeenActive(xcb_window_t window) {
        return parts.runUntil([&] { return parts.monitor.model().activeWindow() == window; });
    }

    /// As an application answers the offer of the focus that a manager made it: late, perhaps.
    static void takeFocus(TestWindow& window) {
        xcb_set_input_focus(window.connection(), XCB_INPUT_FOCUS_PARENT, window.id(), XCB_CURRENT_TIME);
        xcb_flush(window.connection());
    }

    PrivateXServer server;
    WindowManagerProcess manager;
    TestDesktop desktop;
    TestWindow first;
    TestWindow second;
    TestWindow other;
    AdapterParts parts;
};

TEST_P(ActivationTest, FocusesAndRaisesAWindow) {
    activate(first.id());
    EXPECT_TRUE(desktop.waitForActiveWindow(first.id()));
    EXPECT_TRUE(parts.runUntil([&] { return stateOf(first.id()) == ActivationState::active; }));
    EXPECT_EQ(stateOf(second.id()), ActivationState::notActive);
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

TEST_P(ActivationTest, TakesTheFocusBackThatAnotherWindowTakesLateOnTheNewDesktop) {
    // A theft is one for a moment only: on a busy machine the manager may need another try.
    bool isStolen = false;
    const auto watch = parts.monitor.model().focusThefts().subscribe([&](xcb_window_t) { isStolen = true; });
    for (int attempt = 0; !isStolen && attempt < 20; ++attempt) {
        activate(second.id());
        ASSERT_TRUE(isSeenActive(second.id()));
        reachAnotherDesktop();
        takeFocus(other);
        ASSERT_TRUE(parts.runUntil([&] { return isStolen || parts.monitor.model().activeWindow() == other.id(); }));
    }
    ASSERT_TRUE(isStolen);
    EXPECT_TRUE(isSeenActive(first.id()));
    EXPECT_TRUE(desktop.waitForActiveWindow(first.id()));
}

TEST_P(ActivationTest, LeavesTheFocusWithAWindowThatTheUserClickedOnTheNewDesktop) {
    reachAnotherDesktop();
    std::vector<Pid> announced;
    const auto watch = parts.monitor.model().notifications().subscribe([&](const X11AccessibilityNotification& told) {
        if (told.kind == AccessibilityNotification::focusedWindowChanged) {
            announced.push_back(told.pid);
        }
    });
    parts.context.noteUserTime(parts.monitor.latestServerTime() + 1);
    takeFocus(other);
    ASSERT_TRUE(isSeenActive(other.id()));
    EXPECT_THAT(announced, testing::ElementsAre(parts.monitor.model().find(other.id())->pid));
}

TEST_P(ActivationTest, IsOvertakenByWhatBecomesActiveAfterItsWindow) {
    activate(first.id());
    EXPECT_NE(stateOf(first.id()), ActivationState::overtaken) << "not active yet";
    ASSERT_TRUE(isSeenActive(first.id()));
    EXPECT_EQ(stateOf(first.id()), ActivationState::active);
    // Again, if need be: managers drop a request that comes while they still focus the window before.
    bool isSeen = false;
    for (int attempt = 0; !isSeen && attempt < 10; ++attempt) {
        desktop.activate(other.id());
        isSeen = parts.runUntil([&] { return parts.monitor.model().activeWindow() == other.id(); }, milliseconds{1000});
    }
    ASSERT_TRUE(isSeen);
    EXPECT_EQ(stateOf(first.id()), ActivationState::overtaken);
    activate(first.id());
    EXPECT_EQ(stateOf(first.id()), ActivationState::notActive) << "asked for again";
}

/// What is listed when the last window has gone, which some managers say by deleting their list.
class LastWindowTest : public testing::TestWithParam<const char*> {};

TEST_P(LastWindowTest, LeavesNoGhostAndItsNumberToTheNextOne) {
    const PrivateXServer server;
    const WindowManagerProcess manager(server, GetParam());
    AdapterParts parts(server.display());
    std::optional<ApplicationProcess> first(std::in_place, server, "First", std::vector<std::string>{"Old"});
    const auto window = first->windows().front();
    ASSERT_TRUE(parts.runUntil([&] { return parts.listedWindow(window).has_value(); }));
    ASSERT_TRUE(parts.runUntilKnown(window));
    first.reset();
    EXPECT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(window) == nullptr; }));
    EXPECT_FALSE(parts.listedWindow(window).has_value());
    // The server gives the place of a client that has gone, and with it the numbers, to the next one.
    const ApplicationProcess second(server, "Second", {"New"});
    ASSERT_EQ(second.windows().front(), window);
    ASSERT_TRUE(parts.runUntilKnown(window));
    EXPECT_EQ(parts.monitor.model().find(window)->pid, second.pid());
    EXPECT_EQ(parts.listedWindow(window)->ownerPid, second.pid());
}

TEST_P(LastWindowTest, IsNotListedAnyMoreOnceItIsWithdrawn) {
    const PrivateXServer server;
    const WindowManagerProcess manager(server, GetParam());
    TestDesktop desktop(server.display());
    AdapterParts parts(server.display());
    TestWindow only(server.display(), {.title = "Only"});
    ASSERT_TRUE(desktop.waitForActiveWindow(only.id()));
    ASSERT_TRUE(parts.runUntilKnown(only.id()));
    only.unmap();
    EXPECT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(only.id()) == nullptr; }));
    EXPECT_FALSE(parts.listedWindow(only.id()).has_value());
}

INSTANTIATE_TEST_SUITE_P(Managers, LastWindowTest, testing::Values("openbox", "xfwm4"),
                         [](const auto& instance) { return std::string(instance.param); });

INSTANTIATE_TEST_SUITE_P(Managers, ActivationTest, testing::Values("openbox", "xfwm4"),
                         [](const auto& instance) { return std::string(instance.param); });

}  // namespace
}  // namespace ferrowyn::x11test
