#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>

#include "tests/platform/contract/desktop_contract.h"

namespace ferrowyn::contract {

using testing::Contains;
using testing::Each;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr auto* created = "AXWindowCreated";
constexpr auto* titleChanged = "AXTitleChanged";
constexpr auto* destroyed = "AXUIElementDestroyed";

}  // namespace

AXElementRef AccessibilityObserverContract::element(WindowId window) {
    for (const auto& each : driver->control().windowElements(driver->application())) {
        if (driver->control().windowNumber(each) == window) {
            return each;
        }
    }
    throw std::runtime_error("the application does not list the window");
}

std::unique_ptr<AccessibilityObserver> AccessibilityObserverContract::observe(std::vector<std::string>& heard) {
    return driver->observers().create(driver->application(),
                                      [&heard](std::string_view notification) { heard.emplace_back(notification); });
}

bool AccessibilityObserverContract::runUntilHeard(const std::vector<std::string>& heard,
                                                  const std::string& notification) {
    return driver->runUntil([&] { return std::ranges::find(heard, notification) != heard.end(); });
}

TEST_P(AccessibilityObserverContract, WhatIsRegisteredIsToldAndNothingElse) {
    const auto window = driver->open("First");
    std::vector<std::string> heard;
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
    std::vector<std::string> heard;
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
    std::vector<std::string> heard;
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
    std::vector<std::string> detached;
    std::vector<std::string> heard;
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
    std::vector<std::string> destroyedHeard;
    std::vector<std::string> heard;
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
    observer = driver->observers().create(driver->application(), [&](std::string_view) {
        ++count;
        observer.reset();
    });
    std::vector<std::string> heard;
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
    EXPECT_EQ(driver->observers().create(nobody, [](std::string_view) {}), nullptr);
}

}  // namespace ferrowyn::contract
