#include "platform/simulated/simulated_desktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/accessibility_observers.h"
#include "platform/icon_source.h"
#include "platform/main_loop.h"
#include "platform/panel.h"
#include "platform/window_control.h"
#include "platform/window_inventory.h"
#include "platform/workspace.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// 1 and 3 of application 100, 2 of application 200; 3 in front of 2 in front of 1.
class SimulatedDesktopTest : public ::testing::Test {
protected:
    SimulatedDesktop desktop;
    const Platform& platform = desktop.platform();
    std::vector<std::string> events;
    std::vector<AccessibilityNotification> notifications;

    void SetUp() override {
        desktop.launch({.pid = 100, .localizedName = "Mail"}, true);
        desktop.launch({.pid = 200, .localizedName = "Notes"}, true);
        desktop.openWindow({.id = 1, .pid = 100}, true);
        desktop.openWindow({.id = 2, .pid = 200}, true);
        desktop.openWindow({.id = 3, .pid = 100}, true);
    }

    [[nodiscard]] std::unique_ptr<AccessibilityObserver> observe(Pid pid) {
        auto observer = platform.accessibilityObservers.create(
            pid, [this](AccessibilityNotification notification) { notifications.push_back(notification); });
        for (const auto notification :
             {AccessibilityNotification::windowCreated, AccessibilityNotification::focusedWindowChanged,
              AccessibilityNotification::applicationActivated}) {
            observer->addApplicationNotification(notification);
        }
        return observer;
    }
    [[nodiscard]] std::vector<std::optional<WindowId>> order() const {
        return platform.windowInventory.windowOrder().value();
    }
};

TEST_F(SimulatedDesktopTest, BackgroundWorkRunsInOrderWhenTheLoopSettles) {
    platform.backgroundWork.run([this] {
        EXPECT_FALSE(platform.mainLoop.isMainThread());
        platform.backgroundWork.concurrentPerform(
            3, [this](std::size_t index) { events.push_back(std::to_string(index)); });
    });
    platform.backgroundWork.run([this] { events.emplace_back("second"); });
    platform.mainLoop.post([this] { events.emplace_back("posted"); });
    EXPECT_THAT(events, IsEmpty());
    desktop.settle();
    EXPECT_THAT(events, ElementsAre("posted", "0", "1", "2", "second"));
}

TEST_F(SimulatedDesktopTest, HeldBackgroundWorkWaits) {
    desktop.holdBackgroundWork(true);
    platform.backgroundWork.run([this] { events.emplace_back("work"); });
    desktop.advance(10s);
    EXPECT_EQ(desktop.heldBackgroundWorkCount(), 1U);
    EXPECT_THAT(events, IsEmpty());
    desktop.holdBackgroundWork(false);
    desktop.settle();
    EXPECT_THAT(events, ElementsAre("work"));
    EXPECT_EQ(desktop.heldBackgroundWorkCount(), 0U);
}

TEST_F(SimulatedDesktopTest, WindowsOpenInFrontAndCanBeRestacked) {
    EXPECT_THAT(order(), ElementsAre(3, 2, 1));
    desktop.restack({1, 3, 2});
    EXPECT_THAT(order(), ElementsAre(1, 3, 2));
    desktop.setWindowServerAnswers(false);
    EXPECT_EQ(platform.windowInventory.windowOrder(), std::nullopt);
}

TEST_F(SimulatedDesktopTest, AReadingIsOneMoment) {
    const auto reading = platform.windowInventory.beginReading();
    desktop.closeWindow(2);
    desktop.setHung(100, true);
    EXPECT_EQ(reading->windowList()->size(), 3U);
    EXPECT_EQ(reading->windowsOf(100, Seconds(1))->windows.size(), 2U);
    EXPECT_EQ(platform.windowInventory.beginReading()->windowsOf(100, Seconds(1)), std::nullopt);
}

TEST_F(SimulatedDesktopTest, AUserWhoClicksAWindowActivatesItsApplication) {
    std::vector<WorkspaceEvent::Kind> kinds;
    const auto subscription =
        platform.workspace.observe([&](const WorkspaceEvent& event) { kinds.push_back(event.kind); });
    const auto observer = observe(100);
    desktop.setHidden(100, true);
    desktop.changeWindow(1, [](auto& state) { state.isMinimized = true; });
    desktop.focusWindow(1);
    EXPECT_THAT(order(), ElementsAre(1, 3, 2));
    EXPECT_FALSE(desktop.isHidden(100));
    EXPECT_FALSE(desktop.window(1)->isMinimized);
    EXPECT_EQ(desktop.frontmostPid(), 100);
    EXPECT_EQ(desktop.focusedWindow(100), 1U);
    EXPECT_THAT(kinds, ElementsAre(WorkspaceEvent::Kind::didHide, WorkspaceEvent::Kind::didUnhide,
                                   WorkspaceEvent::Kind::didActivate));
    EXPECT_THAT(notifications, ElementsAre(AccessibilityNotification::focusedWindowChanged,
                                           AccessibilityNotification::applicationActivated));
}

TEST_F(SimulatedDesktopTest, OnlyRegisteredNotificationsComeUnlessATestSendsThem) {
    const auto observer = observe(100);
    desktop.openWindow({.id = 4, .pid = 200});
    desktop.setTitle(1, "New");
    EXPECT_THAT(notifications, IsEmpty());
    desktop.notify(100, AccessibilityNotification::applicationHidden);
    EXPECT_THAT(notifications, ElementsAre(AccessibilityNotification::applicationHidden));
}

TEST_F(SimulatedDesktopTest, ALateNotificationComesOnceAndOnlyAfterTheObserverWent) {
    auto observer = observe(100);
    desktop.notifyLate(100, AccessibilityNotification::windowCreated);
    EXPECT_THAT(notifications, IsEmpty());
    observer.reset();
    desktop.notify(100, AccessibilityNotification::windowCreated);
    EXPECT_THAT(notifications, IsEmpty());
    desktop.notifyLate(100, AccessibilityNotification::windowCreated);
    desktop.notifyLate(100, AccessibilityNotification::windowCreated);
    EXPECT_THAT(notifications, ElementsAre(AccessibilityNotification::windowCreated));
}

TEST_F(SimulatedDesktopTest, WindowControlIsWrittenDownAndCarriedOut) {
    auto& control = platform.windowControl;
    const auto observer = observe(100);
    desktop.changeWindow(1, [](auto& state) { state.isMinimized = true; });
    const auto element = desktop.elementOf(1);
    control.raiseAndFocus({.pid = 100, .window = element, .isMinimized = true});
    EXPECT_EQ(control.stateOf(100, element), ActivationState::active);
    EXPECT_EQ(control.stateOf(100, desktop.elementOf(3)), ActivationState::notActive);
    EXPECT_FALSE(desktop.window(1)->isMinimized);
    EXPECT_THAT(order(), ElementsAre(1, 3, 2));
    EXPECT_THAT(notifications, IsEmpty()) << "no notification overtakes the request";
    desktop.settle();
    EXPECT_THAT(notifications, ElementsAre(AccessibilityNotification::focusedWindowChanged,
                                           AccessibilityNotification::applicationActivated));
    control.raiseAndFocus({.pid = 200, .window = desktop.elementOf(2), .blockedWindow = element, .isRetry = true});
    EXPECT_THAT(order(), ElementsAre(2, 1, 3));
    control.activateApplication(100);
    EXPECT_THAT(order(), ElementsAre(1, 2, 3));
    EXPECT_TRUE(platform.workspace.open("scheme:page"));
    EXPECT_THAT(desktop.takeControlCalls(),
                ElementsAre("raise 1 restoring it", "raise 2 above 1 again", "activate 100", "open scheme:page"));
}

TEST_F(SimulatedDesktopTest, AnApplicationThatPlaysDeadOrIsHungDoesNothing) {
    auto& control = platform.windowControl;
    const auto element = desktop.elementOf(1);
    desktop.setIgnoresActivation(100, true);
    control.raiseAndFocus({.pid = 100, .window = element});
    control.activateApplication(100);
    EXPECT_EQ(control.stateOf(100, element), ActivationState::notActive);
    EXPECT_EQ(desktop.frontmostPid(), std::nullopt);
    EXPECT_THAT(order(), ElementsAre(3, 2, 1));
    desktop.setHung(100, true);
    EXPECT_EQ(control.stateOf(100, element), ActivationState::unreadable);
    EXPECT_FALSE(control.findWindow(100, 1));
    EXPECT_EQ(desktop.takeControlCalls().size(), 2U);
}

TEST_F(SimulatedDesktopTest, TerminatingTakesTheWindowsAlong) {
    desktop.setFrontmost(100);
    desktop.terminate(100);
    EXPECT_THAT(order(), ElementsAre(2));
    EXPECT_EQ(desktop.frontmostPid(), std::nullopt);
    EXPECT_EQ(platform.workspace.runningApplication(100), std::nullopt);
    EXPECT_EQ(platform.workspace.runningApplications().size(), 1U);
}

TEST_F(SimulatedDesktopTest, ThePanelRemembersEveryCall) {
    platform.panel.setFrame({1, 2.5, 640, 480});
    platform.panel.layOutContent();
    platform.panel.orderFrontRegardless();
    EXPECT_TRUE(desktop.panel().isVisible);
    platform.panel.orderOut();
    EXPECT_FALSE(desktop.panel().isVisible);
    EXPECT_EQ(desktop.panel().frame, (Rect{1, 2.5, 640, 480}));
    EXPECT_THAT(desktop.panel().calls,
                ElementsAre("setFrame 1 2.5 640 480", "layOutContent", "orderFrontRegardless", "orderOut"));
}

TEST_F(SimulatedDesktopTest, DefaultsAnswerWithWhatIsStoredElseRegistered) {
    platform.userDefaults.registerDefaults({{"rows", std::int64_t{9}}, {"hints", true}});
    EXPECT_EQ(platform.userDefaults.integer("rows"), 9);
    EXPECT_THAT(desktop.storedValues(), IsEmpty()) << "a registered value is never stored";
    platform.userDefaults.set("rows", std::string("12"));
    EXPECT_EQ(platform.userDefaults.integer("rows"), 12);
    EXPECT_TRUE(platform.userDefaults.boolean("hints"));
    EXPECT_EQ(platform.userDefaults.string("hints"), std::nullopt);
    EXPECT_EQ(platform.userDefaults.value("none"), std::nullopt);
    EXPECT_EQ(desktop.storedValues().size(), 1U);
}

TEST_F(SimulatedDesktopTest, AStoreThatCannotBeWrittenRemembersUntilTheProgramEnds) {
    auto& store = platform.userDefaults;
    store.set("rows", std::int64_t{4});
    desktop.setStoreWritesFail(true);
    store.set("rows", std::int64_t{5});
    EXPECT_EQ(store.integer("rows"), 5);
    desktop.forgetUnwrittenValues();
    EXPECT_EQ(store.integer("rows"), 4);
    store.set("rows", std::int64_t{6});
    desktop.setStoreWritesFail(false);
    store.set("hints", true);
    desktop.forgetUnwrittenValues();
    EXPECT_EQ(store.integer("rows"), 6) << "the next write writes everything";
}

TEST_F(SimulatedDesktopTest, WhoFollowsTheDesktopIsSeen) {
    EXPECT_FALSE(desktop.isObserved());
    auto following = platform.workspace.observe([](const WorkspaceEvent&) {});
    EXPECT_TRUE(desktop.isObserved());
    following.reset();
    EXPECT_FALSE(desktop.isObserved());
    const auto clicks = platform.pointer.observeClicksElsewhere([] {});
    EXPECT_TRUE(desktop.isObserved());
}

TEST_F(SimulatedDesktopTest, IconsAreThereUntilATestTakesThemAway) {
    desktop.setFileHasIcon("/a", false);
    desktop.setProcessHasIcon(1, false);
    EXPECT_EQ(platform.icons.iconForFile("/a"), nullptr);
    EXPECT_NE(platform.icons.iconForFile("/b"), nullptr);
    EXPECT_EQ(platform.icons.iconForProcess(1), nullptr);
    const auto pixels = platform.icons.genericApplicationIcon("Mail")->render(4);
    EXPECT_EQ(pixels.pixels.size(), 16U);
    EXPECT_EQ(pixels.pixels.front() >> 24U, 0xFFU);
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("file /a", "file /b", "process 1", "generic Mail"));
}

}  // namespace
}  // namespace ferrowyn
