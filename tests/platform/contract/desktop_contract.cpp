#include <gmock/gmock.h>

#include <algorithm>
#include <future>
#include <stdexcept>
#include <thread>

#include "tests/platform/contract/contracts.h"

namespace ferrowyn::contract {

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr Seconds timeout{1};

}  // namespace

std::vector<WindowId> WindowInventoryContract::listed() {
    std::vector<WindowId> ids;
    const auto list = driver->read()->windowList().value();
    for (const auto& each : list) {
        ids.push_back(each.id.value());
    }
    return ids;
}

std::optional<WindowServerEntry> WindowInventoryContract::entry(WindowId window) {
    const auto list = driver->read()->windowList().value();
    const auto found = std::ranges::find(list, std::optional(window), &WindowServerEntry::id);
    return found == list.end() ? std::nullopt : std::optional(*found);
}

std::optional<AccessibleWindow> WindowInventoryContract::described(const std::string& title) {
    const auto windows = driver->read()->windowsOf(driver->application(), timeout);
    if (!windows) {
        return std::nullopt;
    }
    const auto found = std::ranges::find(windows->windows, std::optional(title), &AccessibleWindow::title);
    return found == windows->windows.end() ? std::nullopt : std::optional(*found);
}

TEST_P(WindowInventoryContract, TheFrontMostWindowIsListedFirst) {
    const auto first = driver->open("First");
    const auto second = driver->open("Second");
    EXPECT_THAT(listed(), ElementsAre(second, first));
    EXPECT_THAT(driver->inventory().windowOrder().value(), ElementsAre(second, first));
    driver->focus(first);
    EXPECT_THAT(listed(), ElementsAre(first, second));
    EXPECT_THAT(driver->inventory().windowOrder().value(), ElementsAre(first, second));
}

TEST_P(WindowInventoryContract, WhatIsAbsentHasItsDefault) {
    const auto window = driver->open("Plain");
    const auto plain = entry(window).value();
    // Without an owner a window belongs to no application.
    EXPECT_EQ(plain.ownerPid, driver->application());
    const auto onScreen = driver->read()->onScreenWindowIds();
    EXPECT_TRUE(plain.isOnScreen.value_or(onScreen.contains(window)));
    EXPECT_EQ(plain.alpha.value_or(1), 1);
    EXPECT_EQ(plain.layer.value_or(0), 0);
    const auto described = this->described("Plain").value();
    EXPECT_FALSE(described.isMinimized.value_or(false));
    EXPECT_FALSE(described.isFullScreen.value_or(false));
    EXPECT_EQ(described.subrole.value_or("AXStandardWindow"), "AXStandardWindow");
}

TEST_P(WindowInventoryContract, TheServerAndTheApplicationTellTheSamePlace) {
    const auto window = driver->open("Somewhere");
    const auto listed = entry(window).value();
    const auto described = this->described("Somewhere").value();
    // By place and size windows are told apart where there are no numbers.
    ASSERT_TRUE(listed.bounds && described.position && described.size);
    EXPECT_EQ(*listed.bounds,
              (Rect{described.position->x, described.position->y, described.size->width, described.size->height}));
    EXPECT_GT(listed.bounds->width, 0);
    EXPECT_GT(listed.bounds->height, 0);
}

TEST_P(WindowInventoryContract, TitlesAreReadAsTheyAreNow) {
    const auto window = driver->open("Große Post — 東京 🦀");
    EXPECT_TRUE(described("Große Post — 東京 🦀"));
    driver->setTitle(window, "Kleine Post");
    EXPECT_TRUE(described("Kleine Post"));
    EXPECT_FALSE(described("Große Post — 東京 🦀"));
}

TEST_P(WindowInventoryContract, AMinimizedWindowIsStillItsApplications) {
    driver->open("Kept");
    const auto window = driver->open("Put away");
    driver->minimize(window);
    EXPECT_EQ(described("Put away").value().isMinimized, true);
    EXPECT_FALSE(described("Kept").value().isMinimized.value_or(false));
}

TEST_P(WindowInventoryContract, AClosedWindowIsNowhere) {
    const auto kept = driver->open("Kept");
    const auto window = driver->open("Closed");
    EXPECT_THAT(driver->read()->onScreenWindowIds(), Contains(window));
    driver->close(window);
    EXPECT_THAT(listed(), ElementsAre(kept));
    EXPECT_THAT(driver->inventory().windowOrder().value(), ElementsAre(kept));
    EXPECT_THAT(driver->read()->onScreenWindowIds(), ElementsAre(kept));
    EXPECT_FALSE(described("Closed"));
    EXPECT_FALSE(driver->control().findWindow(driver->application(), window));
}

TEST_P(WindowInventoryContract, TheFocusedWindowIsOneOfTheWindows) {
    const auto first = driver->open("First");
    driver->open("Second");
    driver->focus(first);
    const auto reading = driver->read();
    const auto windows = reading->windowsOf(driver->application(), timeout).value();
    ASSERT_TRUE(windows.focusedWindow);
    const auto focused = std::ranges::find(windows.windows, *windows.focusedWindow, &AccessibleWindow::element);
    ASSERT_NE(focused, windows.windows.end());
    EXPECT_EQ(focused->title, "First");
    const auto number = driver->inventory().focusedWindowNumber(driver->application(), timeout);
    EXPECT_EQ(number, reading->hasWindowNumberLookup() ? std::optional(first) : std::nullopt);
}

TEST_P(WindowInventoryContract, AProcessThatIsNotThereHasNoWindows) {
    const auto window = driver->open("Someone's");
    EXPECT_FALSE(driver->read()->windowsOf(nobody, timeout));
    EXPECT_FALSE(driver->inventory().focusedWindowNumber(nobody, timeout));
    EXPECT_FALSE(driver->control().findWindow(nobody, window)) << "which is another application's";
}

TEST_P(WindowInventoryContract, ElementsAreEqualAcrossReadingsAndDifferBetweenWindows) {
    driver->open("First");
    driver->open("Second");
    const auto first = described("First").value().element;
    const auto again = described("First").value().element;
    const auto second = described("Second").value().element;
    EXPECT_TRUE(first == again);
    EXPECT_EQ(first.hash(), again.hash());
    EXPECT_FALSE(first == second);
}

TEST_P(WindowInventoryContract, AnElementOutlivesItsWindowAndAnswersNothing) {
    const auto window = driver->open("Short-lived");
    const auto element = described("Short-lived").value().element;
    const auto hash = element.hash();
    driver->close(window);
    EXPECT_EQ(element.hash(), hash);
    EXPECT_TRUE(element == AXElementRef(element));
    EXPECT_EQ(driver->control().stateOf(driver->application(), element), ActivationState::unreadable);
    // The window is gone: the request reaches nothing and does no harm.
    driver->control().raiseAndFocus({.pid = driver->application(), .window = element});
}

TEST_P(WindowInventoryContract, ElementsLeadToWindowNumbersWhereThereIsALookup) {
    const auto window = driver->open("Numbered");
    const auto described = this->described("Numbered").value();
    const auto expected = driver->read()->hasWindowNumberLookup() ? std::optional(window) : std::nullopt;
    EXPECT_EQ(described.windowNumber, expected);
    const auto found = driver->control().findWindow(driver->application(), window);
    ASSERT_EQ(found.has_value(), expected.has_value());
    EXPECT_TRUE(!found || *found == described.element) << "the activation finds the window that the reading found";
}

TEST_P(WindowInventoryContract, AReadingIsAskedByManyThreadsAtOnce) {
    driver->open("First");
    driver->open("Second");
    const auto application = driver->application();
    const auto reading = driver->read();
    std::vector<std::future<std::size_t>> counts;
    for (int thread = 0; thread < 4; ++thread) {
        counts.push_back(std::async(std::launch::async, [&] {
            const auto windows = reading->windowsOf(application, timeout);
            return windows ? windows->windows.size() : 0;
        }));
    }
    for (auto& count : counts) {
        EXPECT_EQ(count.get(), 2U);
    }
}

TEST_P(WindowInventoryContract, ARaisedWindowIsShownAndHasTheKeyboard) {
    const auto window = driver->open("Wanted");
    driver->open("Other");
    driver->minimize(window);
    const auto element = described("Wanted").value().element;
    const Pid application = driver->application();
    auto& control = driver->control();
    EXPECT_EQ(control.stateOf(application, element), ActivationState::notActive);
    control.raiseAndFocus({.pid = application, .window = element, .isMinimized = true});
    EXPECT_TRUE(driver->runUntil([&] { return control.stateOf(application, element) == ActivationState::active; }));
    EXPECT_TRUE(driver->runUntil([&] { return described("Wanted").value().isMinimized == false; }));
    const auto windows = driver->read()->windowsOf(application, timeout).value();
    EXPECT_TRUE(windows.focusedWindow == element);
}

TEST_P(WindowInventoryContract, OneWindowIsTheActiveOneAndAnotherIsNot) {
    const auto first = driver->open("First");
    driver->open("Second");
    const auto firstElement = described("First").value().element;
    const auto secondElement = described("Second").value().element;
    const auto stateOf = [&](const AXElementRef& element) {
        return driver->control().stateOf(driver->application(), element);
    };
    driver->focus(first);
    EXPECT_EQ(stateOf(firstElement), ActivationState::active);
    EXPECT_EQ(stateOf(secondElement), ActivationState::notActive);
}

TEST_P(WindowInventoryContract, AWindowThatTheUserLeavesIsNotActiveAnyMore) {
    driver->open("Wanted");
    const auto other = driver->open("Other");
    const auto element = described("Wanted").value().element;
    const Pid application = driver->application();
    auto& control = driver->control();
    control.raiseAndFocus({.pid = application, .window = element});
    ASSERT_TRUE(driver->runUntil([&] { return control.stateOf(application, element) == ActivationState::active; }));
    driver->focus(other);
    EXPECT_THAT(control.stateOf(application, element),
                testing::AnyOf(ActivationState::notActive, ActivationState::overtaken));
    control.raiseAndFocus({.pid = application, .window = element});
    EXPECT_NE(control.stateOf(application, element), ActivationState::overtaken) << "asked for again";
    EXPECT_TRUE(driver->runUntil([&] { return control.stateOf(application, element) == ActivationState::active; }));
}

TEST_P(WindowInventoryContract, AnActivatedApplicationChoosesTheWindowThatItLastHadInFront) {
    const auto first = driver->open("First");
    driver->open("Second");
    driver->focus(first);
    const auto element = described("First").value().element;
    const Pid application = driver->application();
    auto& control = driver->control();
    driver->focusAnotherApplication();
    EXPECT_EQ(control.stateOf(application, element), ActivationState::notActive);
    control.activateApplication(application);
    EXPECT_TRUE(driver->runUntil([&] { return control.stateOf(application, element) == ActivationState::active; }));
}

namespace {

constexpr auto created = AccessibilityNotification::windowCreated;
constexpr auto titleChanged = AccessibilityNotification::titleChanged;
constexpr auto destroyed = AccessibilityNotification::uiElementDestroyed;

}  // namespace

AXElementRef AccessibilityObserverContract::element(WindowId window) {
    if (const auto found = driver->control().findWindow(driver->application(), window)) {
        return *found;
    }
    throw std::runtime_error("the application does not list the window");
}

std::unique_ptr<AccessibilityObserver> AccessibilityObserverContract::observe(
    std::vector<AccessibilityNotification>& heard) {
    return driver->observers().create(
        driver->application(), [&heard](AccessibilityNotification notification) { heard.push_back(notification); });
}

bool AccessibilityObserverContract::runUntilHeard(const std::vector<AccessibilityNotification>& heard,
                                                  AccessibilityNotification notification) {
    return driver->runUntil([&] { return std::ranges::find(heard, notification) != heard.end(); });
}

TEST_P(AccessibilityObserverContract, WhatIsRegisteredIsToldAndNothingElse) {
    const auto window = driver->open("First");
    std::vector<AccessibilityNotification> heard;
    const auto observer = observe(heard);
    ASSERT_NE(observer, nullptr);
    observer->addApplicationNotification(created);
    observer->addWindowNotification(element(window), destroyed);
    driver->setTitle(window, "Nobody asked");
    driver->open("Second");
    EXPECT_TRUE(runUntilHeard(heard, created));
    driver->close(window);
    EXPECT_TRUE(runUntilHeard(heard, destroyed));
    EXPECT_THAT(heard, Not(Contains(titleChanged)));
}

TEST_P(AccessibilityObserverContract, ANotificationOfOneWindowIsNotThatOfAnother) {
    const auto window = driver->open("Watched");
    const auto other = driver->open("Other");
    std::vector<AccessibilityNotification> heard;
    const auto observer = observe(heard);
    observer->addWindowNotification(element(window), titleChanged);
    observer->addWindowNotification(element(other), destroyed);
    driver->setTitle(other, "Changed");
    driver->close(other);
    ASSERT_TRUE(runUntilHeard(heard, destroyed));
    EXPECT_THAT(heard, Each(destroyed));
    driver->setTitle(window, "Changed");
    EXPECT_TRUE(runUntilHeard(heard, titleChanged));
}

TEST_P(AccessibilityObserverContract, WhatIsRemovedIsNotTold) {
    const auto window = driver->open("Watched");
    std::vector<AccessibilityNotification> heard;
    const auto observer = observe(heard);
    const auto watched = element(window);
    observer->addWindowNotification(watched, titleChanged);
    observer->addWindowNotification(watched, destroyed);
    observer->removeWindowNotification(watched, titleChanged);
    driver->setTitle(window, "Changed");
    driver->close(window);
    ASSERT_TRUE(runUntilHeard(heard, destroyed));
    EXPECT_THAT(heard, Each(destroyed));
    // A window that has gone took its registrations along.
    observer->removeWindowNotification(watched, destroyed);
}

TEST_P(AccessibilityObserverContract, ADetachedObserverHearsNothingAndTheOthersGoOn) {
    std::vector<AccessibilityNotification> detached;
    std::vector<AccessibilityNotification> heard;
    driver->open("First");
    const auto observer = observe(detached);
    const auto other = observe(heard);
    observer->addApplicationNotification(created);
    other->addApplicationNotification(created);
    observer->detachFromMainLoop();
    driver->open("Second");
    ASSERT_TRUE(runUntilHeard(heard, created));
    EXPECT_THAT(detached, IsEmpty());
    observer->detachFromMainLoop();
}

TEST_P(AccessibilityObserverContract, ADestroyedObserverHearsNothingAndTheOthersGoOn) {
    std::vector<AccessibilityNotification> destroyedHeard;
    std::vector<AccessibilityNotification> heard;
    driver->open("First");
    auto observer = observe(destroyedHeard);
    const auto other = observe(heard);
    observer->addApplicationNotification(created);
    other->addApplicationNotification(created);
    observer.reset();
    driver->open("Second");
    ASSERT_TRUE(runUntilHeard(heard, created));
    EXPECT_THAT(destroyedHeard, IsEmpty());
}

TEST_P(AccessibilityObserverContract, AHandlerMayEndItsObserver) {
    driver->open("First");
    int count = 0;
    std::unique_ptr<AccessibilityObserver> observer;
    observer = driver->observers().create(driver->application(), [&](AccessibilityNotification) {
        ++count;
        observer.reset();
    });
    std::vector<AccessibilityNotification> heard;
    const auto other = observe(heard);
    observer->addApplicationNotification(created);
    other->addApplicationNotification(created);
    driver->open("Second");
    driver->open("Third");
    ASSERT_TRUE(driver->runUntil([&] { return std::ranges::count(heard, created) == 2; }));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(observer, nullptr);
}

TEST_P(AccessibilityObserverContract, AProcessThatIsNotThereCannotBeObserved) {
    driver->open("Someone's");
    EXPECT_EQ(driver->observers().create(nobody, [](AccessibilityNotification) {}), nullptr);
}

}  // namespace ferrowyn::contract
