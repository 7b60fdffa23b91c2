#include "inventory/window_observation_center.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "platform/accessibility_observers.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_window_model.h"
#include "tests/inventory/inventory_doubles.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// What an observer is asked for: "add" or "remove" with a window and a notification, or "detach".
using Call = std::tuple<std::string, WindowId, std::optional<AccessibilityNotification>>;

const Call detachCall{"detach", 0, std::nullopt};

/// Writes down what it is asked for.
class RecordedObservers final : public AccessibilityObservers {
public:
    [[nodiscard]] std::unique_ptr<AccessibilityObserver> create(Pid, Handler handler) override {
        deliver = std::move(handler);
        return std::make_unique<Observer>(calls);
    }

    std::vector<Call> calls;
    Handler deliver;

private:
    class Observer final : public AccessibilityObserver {
    public:
        explicit Observer(std::vector<Call>& calls) : calls_(calls) {}
        void addApplicationNotification(AccessibilityNotification) override {}
        void addWindowNotification(const AXElementRef& window, AccessibilityNotification notification) override {
            note("add", window, notification);
        }
        void removeWindowNotification(const AXElementRef& window, AccessibilityNotification notification) override {
            note("remove", window, notification);
        }
        void detachFromMainLoop() override { calls_.push_back(detachCall); }

    private:
        void note(const char* what, const AXElementRef& window, AccessibilityNotification notification) {
            calls_.emplace_back(what, SimulatedElement::idOf(window), notification);
        }

        std::vector<Call>& calls_;
    };
};

class ApplicationObserverTest : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<Call> takeCalls() { return std::exchange(observers.calls, {}); }

    RecordedObservers observers;
    std::vector<WindowChange> changes;
    std::unique_ptr<ApplicationObserver> observer =
        ApplicationObserver::create(observers, 100, [this](const WindowChange& change) { changes.push_back(change); });
};

const std::vector<Call> removalOfSeven{Call{"remove", 7, AccessibilityNotification::uiElementDestroyed},
                                       Call{"remove", 7, AccessibilityNotification::windowMiniaturized},
                                       Call{"remove", 7, AccessibilityNotification::windowDeminiaturized},
                                       Call{"remove", 7, AccessibilityNotification::titleChanged}};

TEST_F(ApplicationObserverTest, AWindowIsRegisteredWhileItIsAmongThoseObserved) {
    observer->observeWindows({SimulatedElement::reference(7)});
    EXPECT_THAT(takeCalls(), ElementsAre(Call{"add", 7, AccessibilityNotification::uiElementDestroyed},
                                         Call{"add", 7, AccessibilityNotification::windowMiniaturized},
                                         Call{"add", 7, AccessibilityNotification::windowDeminiaturized},
                                         Call{"add", 7, AccessibilityNotification::titleChanged}));
    observer->observeWindows({SimulatedElement::reference(7)});
    EXPECT_THAT(takeCalls(), IsEmpty());
    observer->observeWindows({});
    EXPECT_EQ(takeCalls(), removalOfSeven);
    observer->observeWindows({});
    EXPECT_THAT(takeCalls(), IsEmpty());
}

TEST_F(ApplicationObserverTest, InvalidatingItUnregistersItsWindowsAndThenDetaches) {
    observer->observeWindows({SimulatedElement::reference(7)});
    static_cast<void>(takeCalls());
    observer->invalidate();
    auto expected = removalOfSeven;
    expected.push_back(detachCall);
    EXPECT_EQ(takeCalls(), expected);
    observer->invalidate();
    observer->observeWindows({SimulatedElement::reference(8)});
    observer.reset();
    EXPECT_THAT(takeCalls(), IsEmpty()) << "it stays invalid, and was unregistered before";
}

TEST_F(ApplicationObserverTest, DestroyingItInvalidatesIt) {
    observer->observeWindows({SimulatedElement::reference(7)});
    static_cast<void>(takeCalls());
    observer.reset();
    auto expected = removalOfSeven;
    expected.push_back(detachCall);
    EXPECT_EQ(takeCalls(), expected);
    observers.deliver(AccessibilityNotification::titleChanged);
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(ApplicationObserverTest, OneThatIsInvalidTellsOfNothing) {
    observers.deliver(AccessibilityNotification::titleChanged);
    ASSERT_THAT(changes, SizeIs(1));
    observer->invalidate();
    observers.deliver(AccessibilityNotification::titleChanged);
    observer->handle(AccessibilityNotification::windowCreated);
    EXPECT_THAT(changes, SizeIs(1));
}

}  // namespace

/// How a failed expectation shows a change.
static void PrintTo(const WindowChange& change, std::ostream* stream) {
    static constexpr std::array names{"focus", "structural", "metadata"};
    *stream << names.at(static_cast<std::size_t>(change.kind)) << "(" << change.pid << ")";
}

namespace {

using LogLine = SimulatedDesktop::LogLine;

class WindowObservationCenterTest : public ::testing::Test {
protected:
    SimulatedDesktop desktop;
    std::unique_ptr<WindowObservationCenter> center =
        std::make_unique<WindowObservationCenter>(desktop.platform(), WindowFilter(SimulatedDesktop::ownPid));
    std::vector<WindowChange> changes;
    Subscription subscription =
        center->changes().subscribe([this](const WindowChange& change) { changes.push_back(change); });

    void SetUp() override {
        desktop.launch({.pid = 100, .bundleIdentifier = "org.example.mail", .localizedName = "Mail"}, true);
        desktop.launch({.pid = 200, .bundleIdentifier = "org.example.notes", .localizedName = "Notes"}, true);
        desktop.openWindow({.id = 1, .pid = 100}, true);
        desktop.openWindow({.id = 2, .pid = 200}, true);
    }

    [[nodiscard]] AppWindow listed(WindowId id, Pid pid) const {
        auto window = testWindow(id, 0, pid);
        window.axElement = desktop.elementOf(id);
        return window;
    }
    std::vector<WindowChange> takeChanges() { return std::exchange(changes, {}); }
};

const auto structural = WindowChange::structural();

TEST_F(WindowObservationCenterTest, RegistersTheApplicationNotificationsInOrder) {
    center->start();
    EXPECT_THAT(
        desktop.applicationNotifications(100),
        ElementsAre(AccessibilityNotification::windowCreated, AccessibilityNotification::focusedWindowChanged,
                    AccessibilityNotification::mainWindowChanged, AccessibilityNotification::applicationHidden,
                    AccessibilityNotification::applicationShown, AccessibilityNotification::applicationActivated));
    EXPECT_THAT(desktop.windowNotifications(1), IsEmpty()) << "no window list has been seen yet";
}

TEST_F(WindowObservationCenterTest, LogsStartAndStop) {
    desktop.launch({.pid = 300, .bundleIdentifier = "com.apple.dock"}, true);
    desktop.launch({.pid = SimulatedDesktop::ownPid, .localizedName = "Ferrowyn"}, true);
    center->start();
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::standard, "windows", "Observation started for 2 processes"}));
    EXPECT_EQ(desktop.liveObserverCount(), 2U);
    center->stop();
    EXPECT_THAT(desktop.takeLog(), ElementsAre(LogLine{LogLevel::standard, "windows", "Observation stopped"}));
    EXPECT_EQ(desktop.liveObserverCount(), 0U);
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
}

TEST_F(WindowObservationCenterTest, LogsAProcessThatCannotBeObserved) {
    desktop.setUnobservable(200, true);
    center->start();
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::debug, "windows", "No AX observer for pid 200"},
                            LogLine{LogLevel::standard, "windows", "Observation started for 1 processes"}));
    EXPECT_EQ(desktop.liveObserverCount(), 1U);
}

TEST_F(WindowObservationCenterTest, StartingTwiceAndStoppingTwiceIsHarmless) {
    center->start();
    center->start();
    EXPECT_EQ(desktop.liveObserverCount(), 2U);
    EXPECT_EQ(desktop.pendingTimerCount(), 1U);
    desktop.setSpaceChanged();
    EXPECT_THAT(takeChanges(), ElementsAre(structural));
    center->stop();
    desktop.takeLog();
    center->stop();
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(WindowObservationCenterTest, MapsEachNotificationToItsChange) {
    center->start();
    const std::vector<std::pair<AccessibilityNotification, WindowChange>> expected{
        {AccessibilityNotification::titleChanged, WindowChange::metadata()},
        {AccessibilityNotification::focusedWindowChanged, WindowChange::focus(200)},
        {AccessibilityNotification::mainWindowChanged, WindowChange::focus(200)},
        {AccessibilityNotification::applicationActivated, WindowChange::focus(200)},
        {AccessibilityNotification::windowCreated, structural},
        {AccessibilityNotification::applicationHidden, structural},
        {AccessibilityNotification::applicationShown, structural},
        {AccessibilityNotification::uiElementDestroyed, structural},
        {AccessibilityNotification::windowMiniaturized, structural},
        {AccessibilityNotification::windowDeminiaturized, structural},
    };
    for (const auto& [notification, change] : expected) {
        desktop.notify(200, notification);
        EXPECT_THAT(takeChanges(), ElementsAre(change)) << static_cast<int>(notification);
    }
}

TEST_F(WindowObservationCenterTest, ObservesALaunchedApplication) {
    center->start();
    desktop.launch({.pid = 300, .localizedName = "Maps"});
    EXPECT_THAT(takeChanges(), ElementsAre(structural));
    EXPECT_EQ(desktop.liveObserverCount(), 3U);
    desktop.notify(300, AccessibilityNotification::focusedWindowChanged);
    EXPECT_THAT(takeChanges(), ElementsAre(WindowChange::focus(300)));
}

TEST_F(WindowObservationCenterTest, ALaunchThatTheFilterRejectsEmitsNothing) {
    center->start();
    desktop.launch({.pid = 300, .bundleIdentifier = "com.apple.dock"});
    EXPECT_THAT(takeChanges(), IsEmpty());
    EXPECT_EQ(desktop.liveObserverCount(), 2U);
}

TEST_F(WindowObservationCenterTest, ALaunchThatCannotBeObservedIsStillAChange) {
    center->start();
    desktop.takeLog();
    desktop.launch({.pid = 300, .localizedName = "Maps"}, true);
    desktop.setUnobservable(300, true);
    desktop.launch({.pid = 300, .localizedName = "Maps"});
    EXPECT_THAT(takeChanges(), ElementsAre(structural));
    EXPECT_THAT(desktop.takeLog(), ElementsAre(LogLine{LogLevel::debug, "windows", "No AX observer for pid 300"}));
}

TEST_F(WindowObservationCenterTest, AnApplicationThatIsToldOfTwiceHasOneObserver) {
    center->start();
    desktop.launch({.pid = 100, .bundleIdentifier = "org.example.mail"});
    EXPECT_EQ(desktop.liveObserverCount(), 2U);
    takeChanges();
    desktop.notify(100, AccessibilityNotification::titleChanged);
    EXPECT_THAT(takeChanges(), ElementsAre(WindowChange::metadata()));
}

TEST_F(WindowObservationCenterTest, ATerminatedApplicationLosesItsObserver) {
    center->start();
    center->synchronize({listed(1, 100), listed(2, 200)});
    desktop.terminate(100);
    EXPECT_THAT(takeChanges(), ElementsAre(structural));
    EXPECT_EQ(desktop.liveObserverCount(), 1U);
    EXPECT_THAT(desktop.windowNotifications(1), IsEmpty());
    desktop.notifyLate(100, AccessibilityNotification::focusedWindowChanged);
    EXPECT_THAT(takeChanges(), IsEmpty());
}

TEST_F(WindowObservationCenterTest, TellsOfWorkspaceAndScreenChanges) {
    center->start();
    desktop.setHidden(100, true);
    EXPECT_THAT(takeChanges(), ElementsAre(structural, structural)) << "the workspace and the application both tell";
    desktop.setHidden(100, false);
    EXPECT_THAT(takeChanges(), ElementsAre(structural, structural));
    desktop.setSpaceChanged();
    EXPECT_THAT(takeChanges(), ElementsAre(structural));
    desktop.setScreenParametersChanged();
    EXPECT_THAT(takeChanges(), ElementsAre(structural));
}

TEST_F(WindowObservationCenterTest, AnActivationIsAFocusChange) {
    desktop.setUnobservable(200, true);
    center->start();
    desktop.focusWindow(2);
    EXPECT_THAT(takeChanges(), ElementsAre(WindowChange::focus(200))) << "the workspace alone told";
}

TEST_F(WindowObservationCenterTest, WatchesExactlyTheListedWindows) {
    center->start();
    desktop.openWindow({.id = 3, .pid = 100}, true);
    center->synchronize({listed(1, 100), listed(2, 200)});
    const auto all =
        ElementsAre(AccessibilityNotification::uiElementDestroyed, AccessibilityNotification::windowMiniaturized,
                    AccessibilityNotification::windowDeminiaturized, AccessibilityNotification::titleChanged);
    EXPECT_THAT(desktop.windowNotifications(1), all);
    EXPECT_THAT(desktop.windowNotifications(2), all);

    center->synchronize({listed(1, 100), listed(3, 100)});
    EXPECT_THAT(desktop.windowNotifications(1), all) << "registered once, however often it is listed";
    EXPECT_THAT(desktop.windowNotifications(2), IsEmpty());
    EXPECT_THAT(desktop.windowNotifications(3), all);

    desktop.setTitle(3, "New");
    EXPECT_THAT(takeChanges(), ElementsAre(WindowChange::metadata()));
    desktop.setTitle(2, "New");
    EXPECT_THAT(takeChanges(), IsEmpty());
}

TEST_F(WindowObservationCenterTest, WindowsWithoutAnElementAreNotWatched) {
    center->start();
    center->synchronize({testWindow(1, 0, 100)});
    EXPECT_THAT(desktop.windowNotifications(1), IsEmpty());
}

TEST_F(WindowObservationCenterTest, StoppingEndsEverything) {
    center->start();
    center->synchronize({listed(1, 100)});
    center->stop();
    EXPECT_THAT(desktop.windowNotifications(1), IsEmpty());
    center->synchronize({listed(1, 100)});
    EXPECT_THAT(desktop.windowNotifications(1), IsEmpty());

    desktop.notifyLate(100, AccessibilityNotification::titleChanged);
    desktop.launch({.pid = 300, .localizedName = "Maps"});
    desktop.setSpaceChanged();
    desktop.setScreenParametersChanged();
    desktop.focusWindow(2);
    desktop.setHidden(100, true);
    desktop.setTitle(1, "New");
    desktop.terminate(100);
    // A look that only remembers, and one that would find the order changed.
    desktop.advance(6s);
    desktop.restack({2, 1});
    desktop.advance(20s);
    EXPECT_THAT(changes, IsEmpty());
    EXPECT_EQ(desktop.liveObserverCount(), 0U);
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
}

TEST_F(WindowObservationCenterTest, ALateNotificationAfterTheCenterIsGoneIsHarmless) {
    center->start();
    center.reset();
    EXPECT_EQ(desktop.liveObserverCount(), 0U);
    desktop.notifyLate(100, AccessibilityNotification::titleChanged);
    desktop.advance(20s);
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(WindowObservationCenterTest, ASubscriberMayStopTheObservationFromWithinAChange) {
    const auto stopper = center->changes().subscribe([this](const WindowChange&) { center->stop(); });
    center->start();
    desktop.notify(100, AccessibilityNotification::titleChanged);
    EXPECT_THAT(takeChanges(), ElementsAre(WindowChange::metadata()));
    EXPECT_EQ(desktop.liveObserverCount(), 0U);
}

TEST_F(WindowObservationCenterTest, RevalidatesEveryFiveSeconds) {
    EXPECT_EQ(WindowObservationCenter::revalidationInterval, 5s);
    center->start();
    desktop.restack({1, 2});
    desktop.advance(5s);
    EXPECT_THAT(takeChanges(), IsEmpty()) << "the first look only remembers";
    desktop.advance(10s);
    EXPECT_THAT(takeChanges(), IsEmpty()) << "nothing changed";
    desktop.restack({2, 1});
    desktop.advance(4.9s);
    EXPECT_THAT(takeChanges(), IsEmpty());
    desktop.advance(0.1s);
    EXPECT_THAT(takeChanges(), ElementsAre(structural)) << "two windows swapped places";
    desktop.openWindow({.id = 3, .pid = 100}, true);
    desktop.advance(5s);
    EXPECT_THAT(takeChanges(), ElementsAre(structural));
}

TEST_F(WindowObservationCenterTest, ASilentWindowServerHasAFingerprintToo) {
    center->start();
    desktop.advance(5s);
    desktop.setWindowServerAnswers(false);
    desktop.advance(5s);
    EXPECT_THAT(takeChanges(), ElementsAre(structural));
    desktop.advance(5s);
    EXPECT_THAT(takeChanges(), IsEmpty());
    desktop.setWindowServerAnswers(true);
    desktop.advance(5s);
    EXPECT_THAT(takeChanges(), ElementsAre(structural));
}

TEST_F(WindowObservationCenterTest, TheFirstLookAfterARestartOnlyRemembers) {
    center->start();
    desktop.advance(5s);
    center->stop();
    desktop.openWindow({.id = 3, .pid = 100}, true);
    center->start();
    desktop.advance(5s);
    EXPECT_THAT(takeChanges(), IsEmpty());
}

TEST(WindowFingerprintTest, DependsOnWindowsAndOrder) {
    using Order = std::vector<std::optional<WindowId>>;
    const auto fingerprint = WindowFingerprint::of(Order{1, 2, 3});
    EXPECT_EQ(fingerprint.count, 3);
    EXPECT_EQ(fingerprint, WindowFingerprint::of(Order{1, 2, 3}));
    EXPECT_NE(fingerprint, WindowFingerprint::of(Order{2, 1, 3}));
    EXPECT_NE(fingerprint, WindowFingerprint::of(Order{1, 2}));
    EXPECT_EQ(WindowFingerprint::of(Order{std::nullopt, 2}), WindowFingerprint::of(Order{0, 2}));
    EXPECT_EQ(WindowFingerprint::of(std::nullopt), (WindowFingerprint{0, 0}));
}

}  // namespace
}  // namespace ferrowyn
