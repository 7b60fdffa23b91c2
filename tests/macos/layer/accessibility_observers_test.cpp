#include "inventory/window_observation_center.h"
#include "platform/macos/mac_accessibility_observers.h"
#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr Pid notes = 501;

class AccessibilityObserversTest : public MacFixture {
protected:
    std::unique_ptr<AccessibilityObserver> create(Pid pid = notes) {
        return observers.create(pid, [this](AccessibilityNotification notification) { heard.push_back(notification); });
    }
    /// Made in one turn, with its source added in the next.
    std::unique_ptr<AccessibilityObserver> observe() {
        auto observer = create();
        desktop.settle();
        return observer;
    }

    fake::ElementId app = accessibility.addApplication(notes);
    fake::ElementId window = accessibility.addWindow(notes, {});
    std::vector<AccessibilityNotification> heard;
    MacAccessibilityObservers observers{mainLoop, log};
};

TEST_F(AccessibilityObserversTest, OnlyWhatIsRegisteredIsHeardOfTheApplicationAndItsWindows) {
    const auto observer = observe();
    ASSERT_NE(observer, nullptr);
    observer->addApplicationNotification(AccessibilityNotification::windowCreated);
    observer->addWindowNotification(handleOf(window), AccessibilityNotification::titleChanged);
    accessibility.post(app, "AXWindowCreated");
    accessibility.post(window, "AXTitleChanged");
    accessibility.post(app, "AXApplicationHidden");
    accessibility.post(window, "AXUIElementDestroyed");
    runMainLoop();
    EXPECT_THAT(heard, ElementsAre(AccessibilityNotification::windowCreated, AccessibilityNotification::titleChanged));
    EXPECT_THAT(accessibility.takeRequests(),
                ElementsAre("add AXWindowCreated of 1 within 0.5", "add AXTitleChanged of 2 within 0.5"));
}

TEST_F(AccessibilityObserversTest, EachNotificationIsRegisteredAndHeardByTheSystemsNameEvenWhileAMenuIsTracked) {
    const auto observer = observe();
    const std::vector<std::pair<AccessibilityNotification, std::string>> names{
        {AccessibilityNotification::windowCreated, "AXWindowCreated"},
        {AccessibilityNotification::focusedWindowChanged, "AXFocusedWindowChanged"},
        {AccessibilityNotification::mainWindowChanged, "AXMainWindowChanged"},
        {AccessibilityNotification::applicationHidden, "AXApplicationHidden"},
        {AccessibilityNotification::applicationShown, "AXApplicationShown"},
        {AccessibilityNotification::applicationActivated, "AXApplicationActivated"},
        {AccessibilityNotification::uiElementDestroyed, "AXUIElementDestroyed"},
        {AccessibilityNotification::windowMiniaturized, "AXWindowMiniaturized"},
        {AccessibilityNotification::windowDeminiaturized, "AXWindowDeminiaturized"},
        {AccessibilityNotification::titleChanged, "AXTitleChanged"},
    };
    for (const auto& [notification, name] : names) {
        heard.clear();
        observer->addApplicationNotification(notification);
        EXPECT_THAT(accessibility.takeRequests(), ElementsAre("add " + name + " of 1 within 0.5"));
        accessibility.post(app, name);
        runMainLoop("NSEventTrackingRunLoopMode");
        EXPECT_THAT(heard, ElementsAre(notification)) << name;
    }
}

TEST_F(AccessibilityObserversTest, AProcessThatCannotBeObservedHasNoObserver) {
    EXPECT_EQ(create(9999), nullptr);
    accessibility.application(notes).canBeObserved = false;
    EXPECT_EQ(create(), nullptr);
    accessibility.application(notes).canBeObserved = true;
    accessibility.refusesHandles = true;
    EXPECT_EQ(create(), nullptr);
    desktop.settle();
    EXPECT_THAT(fake::RunLoop::takeJournal(), IsEmpty());
}

TEST_F(AccessibilityObserversTest, TheSourceIsOnTheMainLoopInTheCommonModesUntilTheObserverDetaches) {
    const auto observer = observe();
    EXPECT_THAT(fake::RunLoop::takeJournal(),
                ElementsAre("add the observer of 501 to the main loop in kCFRunLoopCommonModes"));
    observer->addApplicationNotification(AccessibilityNotification::windowCreated);
    accessibility.post(app, "AXWindowCreated");
    observer->detachFromMainLoop();
    EXPECT_THAT(fake::RunLoop::takeJournal(),
                ElementsAre("remove the observer of 501 from the main loop in kCFRunLoopCommonModes"));
    observer->detachFromMainLoop();
    EXPECT_THAT(fake::RunLoop::takeJournal(), IsEmpty()) << "once is enough";
    runMainLoop();
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(AccessibilityObserversTest, TheSourceFollowsWhatIsRegisteredFirstAndNothingIsLostInBetween) {
    const auto observer = create();
    observer->addApplicationNotification(AccessibilityNotification::windowCreated);
    EXPECT_FALSE(fake::RunLoop::main().hasSources());
    accessibility.post(app, "AXWindowCreated");
    desktop.settle();
    EXPECT_TRUE(fake::RunLoop::main().hasSources());
    runMainLoop();
    EXPECT_THAT(heard, ElementsAre(AccessibilityNotification::windowCreated));
}

TEST_F(AccessibilityObserversTest, AnObserverThatDetachesInItsFirstTurnNeverGetsASource) {
    const auto observer = create();
    observer->detachFromMainLoop();
    desktop.settle();
    static_cast<void>(create());
    desktop.settle();
    EXPECT_THAT(fake::RunLoop::takeJournal(), IsEmpty());
}

TEST_F(AccessibilityObserversTest, DestroyingAnObserverTakesItsSourceAlong) {
    auto observer = observe();
    observer->addApplicationNotification(AccessibilityNotification::windowCreated);
    accessibility.post(app, "AXWindowCreated");
    observer.reset();
    EXPECT_FALSE(fake::RunLoop::main().hasSources());
    runMainLoop();
    EXPECT_THAT(heard, IsEmpty());
    desktop.settle();
    EXPECT_EQ(fake::Objects::shared().liveCount(), 0U) << fake::Objects::shared().describeLive();
}

TEST_F(AccessibilityObserversTest, AHandlerMayDestroyItsObserverWithMoreOnTheWay) {
    std::unique_ptr<AccessibilityObserver> observer;
    observer = observers.create(notes, [&](AccessibilityNotification notification) {
        heard.push_back(notification);
        observer.reset();
    });
    desktop.settle();
    observer->addApplicationNotification(AccessibilityNotification::windowCreated);
    observer->addApplicationNotification(AccessibilityNotification::mainWindowChanged);
    accessibility.post(app, "AXWindowCreated");
    accessibility.post(app, "AXMainWindowChanged");
    runMainLoop();
    EXPECT_THAT(heard, ElementsAre(AccessibilityNotification::windowCreated))
        << "the second came in the same delivery, too late";
    EXPECT_EQ(observer, nullptr);
}

TEST_F(AccessibilityObserversTest, ARefusedNotificationIsLoggedAndTheOthersGoOn) {
    accessibility.element(app).refusals["AXApplicationShown"] = kAXErrorNotificationUnsupported;
    const auto observer = observe();
    observer->addApplicationNotification(AccessibilityNotification::applicationShown);
    observer->addApplicationNotification(AccessibilityNotification::applicationHidden);
    accessibility.post(app, "AXApplicationHidden");
    runMainLoop();
    EXPECT_THAT(heard, ElementsAre(AccessibilityNotification::applicationHidden));
    EXPECT_THAT(takeLog(), ElementsAre("AXApplicationShown: error -25207 for pid 501"));
}

TEST_F(AccessibilityObserversTest, UnregisteringFromAWindowThatHasGoneIsNoNews) {
    const auto observer = observe();
    observer->addWindowNotification(handleOf(window), AccessibilityNotification::titleChanged);
    observer->removeWindowNotification(handleOf(window), AccessibilityNotification::titleChanged);
    observer->removeWindowNotification(handleOf(window), AccessibilityNotification::titleChanged);
    accessibility.element(window).isGone = true;
    observer->removeWindowNotification(handleOf(window), AccessibilityNotification::titleChanged);
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(AccessibilityObserversTest, ElementsOfAnotherDesktopAreLeftAlone) {
    desktop.launch({.pid = 7});
    desktop.openWindow({.id = 70, .pid = 7});
    const auto observer = observe();
    observer->addWindowNotification(desktop.elementOf(70), AccessibilityNotification::titleChanged);
    observer->removeWindowNotification(desktop.elementOf(70), AccessibilityNotification::titleChanged);
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
}

/// An observer of an application that sometimes does not answer.
class NotificationRegistrationsTest : public AccessibilityObserversTest {
protected:
    /// Registers what the program does for an application.
    void registerApplication() {
        for (const auto notification : ApplicationObserver::applicationNotifications) {
            observer->addApplicationNotification(notification);
        }
    }
    void addWindow(fake::ElementId id) {
        for (const auto notification : ApplicationObserver::windowNotifications) {
            observer->addWindowNotification(handleOf(id), notification);
        }
    }
    void removeWindow(fake::ElementId id) {
        for (const auto notification : ApplicationObserver::windowNotifications) {
            observer->removeWindowNotification(handleOf(id), notification);
        }
    }
    void setHangs(bool hangs) { accessibility.application(notes).hangs = hangs; }
    /// Expects that the main thread waits so long for the application while the test does this.
    void expectWait(double seconds, const std::function<void()>& work) {
        const double before = accessibility.secondsWaited();
        work();
        EXPECT_NEAR(accessibility.secondsWaited() - before, seconds, 1e-6);
    }
    /// Heard exactly once, and nothing else with it.
    bool isHeard(fake::ElementId from, AccessibilityNotification notification) {
        heard.clear();
        accessibility.post(from, std::string(systemName(notification)));
        runMainLoop();
        return heard == std::vector{notification};
    }
    void expectApplicationIsHeard() {
        for (const auto notification : ApplicationObserver::applicationNotifications) {
            EXPECT_TRUE(isHeard(app, notification)) << systemName(notification);
        }
    }

    std::unique_ptr<AccessibilityObserver> observer = observe();
};

TEST_F(NotificationRegistrationsTest, AnApplicationThatHangsIsWaitedForOnceHoweverMuchIsRegistered) {
    setHangs(true);
    expectWait(0.5, [&] {
        registerApplication();
        addWindow(window);
    });
    EXPECT_THAT(accessibility.takeRequests(), ElementsAre("add AXWindowCreated of 1 within 0.5"));
    EXPECT_THAT(takeLog(), ElementsAre("AXWindowCreated: error -25204 for pid 501"));
}

TEST_F(NotificationRegistrationsTest, WhatAnApplicationWasNotToldItIsToldWhenItAnswersAgain) {
    setHangs(true);
    registerApplication();
    addWindow(window);
    setHangs(false);
    static_cast<void>(accessibility.takeRequests());
    desktop.advance(Seconds(0.9));
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
    desktop.advance(Seconds(0.2));
    EXPECT_THAT(accessibility.takeRequests(), SizeIs(10));
    expectApplicationIsHeard();
    for (const auto notification : ApplicationObserver::windowNotifications) {
        EXPECT_TRUE(isHeard(window, notification)) << systemName(notification);
    }
    desktop.advance(Seconds(600));
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty()) << "each once";
    const auto second = accessibility.addWindow(notes, {});
    addWindow(second);
    EXPECT_TRUE(isHeard(second, AccessibilityNotification::titleChanged)) << "and what comes later is told at once";
}

TEST_F(NotificationRegistrationsTest, AnApplicationThatHangsMidwayIsToldTheRest) {
    accessibility.application(notes).requestsUntilItHangs = 2;
    registerApplication();
    accessibility.application(notes).requestsUntilItHangs.reset();
    setHangs(false);
    desktop.advance(Seconds(1.1));
    expectApplicationIsHeard();
}

TEST_F(NotificationRegistrationsTest, ThePausesGrowAndComeToAnEnd) {
    setHangs(true);
    expectWait(0.5, [&] { registerApplication(); });
    for (const double pause : {1.0, 2.0, 4.0, 8.0, 16.0, 32.0, 64.0, 128.0}) {
        SCOPED_TRACE(pause);
        expectWait(0, [&] { desktop.advance(Seconds(pause - 0.01)); });
        expectWait(0.5, [&] { desktop.advance(Seconds(0.01)); });
    }
    expectWait(0, [&] { desktop.advance(Seconds(100000)); });
}

TEST_F(NotificationRegistrationsTest, ANewWindowShowsThatAnApplicationThatWasGivenUpAnswersAgain) {
    setHangs(true);
    registerApplication();
    desktop.advance(Seconds(1000));
    setHangs(false);
    expectWait(0, [&] { addWindow(window); });
    desktop.advance(Seconds(1));
    EXPECT_TRUE(isHeard(app, AccessibilityNotification::windowCreated));
    EXPECT_TRUE(isHeard(window, AccessibilityNotification::titleChanged));
}

TEST_F(NotificationRegistrationsTest, OneRequestThatIsNeverAnsweredLeavesTheOthersTheirTurn) {
    accessibility.element(window).refusals["AXWindowMiniaturized"] = kAXErrorCannotComplete;
    addWindow(window);
    desktop.advance(Seconds(3));
    EXPECT_TRUE(isHeard(window, AccessibilityNotification::uiElementDestroyed));
    EXPECT_TRUE(isHeard(window, AccessibilityNotification::titleChanged));
    EXPECT_FALSE(isHeard(window, AccessibilityNotification::windowMiniaturized));
}

TEST_F(NotificationRegistrationsTest, ARegistrationThatWasMadeAfterAllIsNoNews) {
    addWindow(window);
    addWindow(window);
    EXPECT_TRUE(isHeard(window, AccessibilityNotification::titleChanged));
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(NotificationRegistrationsTest, AWindowThatIsNoLongerListedIsNeverRegistered) {
    setHangs(true);
    registerApplication();
    addWindow(window);
    removeWindow(window);
    setHangs(false);
    static_cast<void>(accessibility.takeRequests());
    desktop.advance(Seconds(1));
    EXPECT_THAT(accessibility.takeRequests(), SizeIs(6));
    EXPECT_TRUE(isHeard(app, AccessibilityNotification::windowCreated));
    EXPECT_FALSE(isHeard(window, AccessibilityNotification::titleChanged));
}

TEST_F(NotificationRegistrationsTest, RemovalsAreHeldBackAsRegistrationsAre) {
    const auto second = accessibility.addWindow(notes, {});
    addWindow(window);
    addWindow(second);
    setHangs(true);
    expectWait(0.5, [&] {
        removeWindow(window);
        removeWindow(second);
    });
    // It is listed again before the application answers.
    addWindow(second);
    setHangs(false);
    desktop.advance(Seconds(1));
    EXPECT_FALSE(isHeard(window, AccessibilityNotification::titleChanged));
    EXPECT_TRUE(isHeard(second, AccessibilityNotification::titleChanged));
}

TEST_F(NotificationRegistrationsTest, EndingTheObserverOfAnApplicationThatHangsSendsNothing) {
    for (const bool isDetachedBefore : {true, false}) {
        setHangs(false);
        observer = observe();
        addWindow(window);
        setHangs(true);
        registerApplication();
        static_cast<void>(accessibility.takeRequests());
        removeWindow(window);
        if (isDetachedBefore) {
            observer->detachFromMainLoop();
        }
        observer.reset();
        desktop.advance(Seconds(600));
        EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
        EXPECT_FALSE(fake::RunLoop::main().hasSources());
    }
}

TEST_F(NotificationRegistrationsTest, QuittingWhileAnApplicationHangsWaitsForItOnce) {
    ApplicationObserver::ChangeHandler nobody = [](const WindowChange&) {};
    auto application = ApplicationObserver::create(observers, notes, nobody);
    application->observeWindows({handleOf(window), handleOf(accessibility.addWindow(notes, {}))});
    desktop.settle();
    static_cast<void>(accessibility.takeRequests());
    setHangs(true);
    expectWait(0.5, [&] {
        application.reset();
        desktop.advance(Seconds(600));
    });
    EXPECT_THAT(accessibility.takeRequests(), SizeIs(1));
}

}  // namespace
}  // namespace ferrowyn
