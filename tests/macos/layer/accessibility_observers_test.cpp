#include "platform/macos/mac_accessibility_observers.h"

#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Pid notes = 501;

class AccessibilityObserversTest : public MacFixture {
protected:
    std::unique_ptr<AccessibilityObserver> create(Pid pid = notes) {
        return observers.create(pid, [this](std::string_view notification) { heard.emplace_back(notification); });
    }
    /// In a turn of its own.
    std::unique_ptr<AccessibilityObserver> observe() {
        auto observer = create();
        desktop.settle();
        return observer;
    }

    fake::ElementId app = accessibility.addApplication(notes);
    fake::ElementId window = accessibility.addWindow(notes, {});
    std::vector<std::string> heard;
    MacAccessibilityObservers observers{mainLoop, log};
};

TEST_F(AccessibilityObserversTest, RegisteredNotificationsAreHeardByName) {
    const auto observer = observe();
    ASSERT_NE(observer, nullptr);
    observer->addApplicationNotification("AXWindowCreated");
    observer->addWindowNotification(handleOf(window), "AXTitleChanged");
    accessibility.post(app, "AXWindowCreated");
    accessibility.post(window, "AXTitleChanged");
    accessibility.post(app, "AXApplicationHidden");
    accessibility.post(window, "AXUIElementDestroyed");
    runMainLoop();
    EXPECT_THAT(heard, ElementsAre("AXWindowCreated", "AXTitleChanged")) << "and nothing that was not asked for";
    EXPECT_THAT(accessibility.takeRequests(),
                ElementsAre("add AXWindowCreated of 1 within 0.5", "add AXTitleChanged of 2 within 0.5"));
}

TEST_F(AccessibilityObserversTest, AnApplicationThatTheSystemGivesNoHandleOfIsNotObserved) {
    accessibility.refusesHandles = true;
    EXPECT_EQ(observe(), nullptr);
}

TEST_F(AccessibilityObserversTest, TheyAreHeardWhileAMenuIsTracked) {
    const auto observer = observe();
    observer->addApplicationNotification("AXFocusedWindowChanged");
    accessibility.post(app, "AXFocusedWindowChanged");
    runMainLoop("NSEventTrackingRunLoopMode");
    EXPECT_THAT(heard, ElementsAre("AXFocusedWindowChanged"));
}

TEST_F(AccessibilityObserversTest, TheSourceIsOnTheMainLoopInTheCommonModesUntilTheObserverDetaches) {
    const auto observer = observe();
    EXPECT_THAT(fake::RunLoop::takeJournal(),
                ElementsAre("add the observer of 501 to the main loop in kCFRunLoopCommonModes"));
    observer->detachFromMainLoop();
    EXPECT_THAT(fake::RunLoop::takeJournal(),
                ElementsAre("remove the observer of 501 from the main loop in kCFRunLoopCommonModes"));
    observer->detachFromMainLoop();
    EXPECT_THAT(fake::RunLoop::takeJournal(), IsEmpty()) << "once is enough";
}

TEST_F(AccessibilityObserversTest, TheSourceFollowsWhatIsRegisteredFirstAndNothingIsLostInBetween) {
    const auto observer = create();
    observer->addApplicationNotification("AXWindowCreated");
    EXPECT_FALSE(fake::RunLoop::main().hasSources());
    accessibility.post(app, "AXWindowCreated");
    desktop.settle();
    EXPECT_TRUE(fake::RunLoop::main().hasSources());
    runMainLoop();
    EXPECT_THAT(heard, ElementsAre("AXWindowCreated"));
}

TEST_F(AccessibilityObserversTest, AnObserverThatDetachesInItsFirstTurnNeverGetsASource) {
    const auto observer = create();
    observer->detachFromMainLoop();
    desktop.settle();
    static_cast<void>(create());
    desktop.settle();
    EXPECT_THAT(fake::RunLoop::takeJournal(), IsEmpty());
}

TEST_F(AccessibilityObserversTest, ADetachedObserverHearsNothing) {
    const auto observer = observe();
    observer->addApplicationNotification("AXWindowCreated");
    accessibility.post(app, "AXWindowCreated");
    observer->detachFromMainLoop();
    runMainLoop();
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(AccessibilityObserversTest, DestroyingAnObserverTakesItsSourceAlong) {
    auto observer = observe();
    observer->addApplicationNotification("AXWindowCreated");
    accessibility.post(app, "AXWindowCreated");
    observer.reset();
    EXPECT_FALSE(fake::RunLoop::main().hasSources());
    runMainLoop();
    EXPECT_THAT(heard, IsEmpty());
    desktop.settle();
    EXPECT_EQ(fake::Objects::shared().liveCount(), 0U) << fake::Objects::shared().describeLive();
}

TEST_F(AccessibilityObserversTest, ARemovedWindowNotificationIsNotHeard) {
    const auto observer = observe();
    observer->addWindowNotification(handleOf(window), "AXTitleChanged");
    observer->addWindowNotification(handleOf(window), "AXUIElementDestroyed");
    observer->removeWindowNotification(handleOf(window), "AXTitleChanged");
    accessibility.post(window, "AXTitleChanged");
    accessibility.post(window, "AXUIElementDestroyed");
    runMainLoop();
    EXPECT_THAT(heard, ElementsAre("AXUIElementDestroyed"));
}

TEST_F(AccessibilityObserversTest, AHandlerMayDestroyItsObserverWithMoreOnTheWay) {
    std::unique_ptr<AccessibilityObserver> observer;
    observer = observers.create(notes, [&](std::string_view notification) {
        heard.emplace_back(notification);
        observer.reset();
    });
    desktop.settle();
    observer->addApplicationNotification("AXWindowCreated");
    observer->addApplicationNotification("AXMainWindowChanged");
    accessibility.post(app, "AXWindowCreated");
    accessibility.post(app, "AXMainWindowChanged");
    runMainLoop();
    EXPECT_THAT(heard, ElementsAre("AXWindowCreated")) << "the second came in the same delivery, too late";
    EXPECT_EQ(observer, nullptr);
}

TEST_F(AccessibilityObserversTest, AProcessThatCannotBeObservedHasNoObserver) {
    accessibility.application(notes).canBeObserved = false;
    EXPECT_EQ(create(), nullptr);
    EXPECT_EQ(create(9999), nullptr);
    desktop.settle();
    EXPECT_THAT(fake::RunLoop::takeJournal(), IsEmpty());
}

TEST_F(AccessibilityObserversTest, ARefusedNotificationIsLoggedAndTheOthersGoOn) {
    accessibility.element(app).refusals["AXApplicationShown"] = kAXErrorNotificationUnsupported;
    const auto observer = observe();
    observer->addApplicationNotification("AXApplicationShown");
    observer->addApplicationNotification("AXApplicationHidden");
    accessibility.post(app, "AXApplicationHidden");
    runMainLoop();
    EXPECT_THAT(heard, ElementsAre("AXApplicationHidden"));
    EXPECT_THAT(takeLog(), ElementsAre("AXApplicationShown: error -25207 for pid 501"));
}

TEST_F(AccessibilityObserversTest, UnregisteringFromAWindowThatHasGoneIsNoNews) {
    const auto observer = observe();
    observer->addWindowNotification(handleOf(window), "AXTitleChanged");
    observer->removeWindowNotification(handleOf(window), "AXTitleChanged");
    observer->removeWindowNotification(handleOf(window), "AXTitleChanged");
    accessibility.element(window).isGone = true;
    observer->removeWindowNotification(handleOf(window), "AXTitleChanged");
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(AccessibilityObserversTest, ElementsOfAnotherDesktopAreLeftAlone) {
    desktop.launch({.pid = 7});
    desktop.openWindow({.id = 70, .pid = 7});
    const auto observer = observe();
    observer->addWindowNotification(desktop.elementOf(70), "AXTitleChanged");
    observer->removeWindowNotification(desktop.elementOf(70), "AXTitleChanged");
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
}

}  // namespace
}  // namespace ferrowyn
