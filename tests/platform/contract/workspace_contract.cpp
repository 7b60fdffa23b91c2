#include "tests/platform/contract/workspace_contract.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace ferrowyn::contract {

Subscription WorkspaceContract::observe(std::vector<Event>& events) {
    return driver->workspace().observe([&events](const WorkspaceEvent& event) {
        events.push_back({event.kind, event.application ? std::optional(event.application->pid) : std::nullopt});
    });
}

bool WorkspaceContract::runUntilSeen(const std::vector<Event>& events, const Event& event) {
    return driver->runUntil([&] { return std::ranges::find(events, event) != events.end(); });
}

TEST_P(WorkspaceContract, AnApplicationIsListedWhileItRuns) {
    std::vector<Event> events;
    const auto subscription = observe(events);
    const Pid pid = driver->launch("Notes");
    ASSERT_TRUE(runUntilSeen(events, {Kind::didLaunch, pid}));
    const auto found = driver->workspace().runningApplication(pid);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->pid, pid);
    EXPECT_FALSE(found->isTerminated);
    EXPECT_EQ(found->activationPolicy, ActivationPolicy::regular);
    EXPECT_EQ(std::ranges::count(driver->workspace().runningApplications(), pid, &RunningApplication::pid), 1);
    driver->quit(pid);
    ASSERT_TRUE(runUntilSeen(events, {Kind::didTerminate, pid}));
    EXPECT_FALSE(driver->workspace().runningApplication(pid));
    EXPECT_EQ(std::ranges::count(driver->workspace().runningApplications(), pid, &RunningApplication::pid), 0);
}

TEST_P(WorkspaceContract, TheApplicationInFrontIsToldAndKnown) {
    std::vector<Event> events;
    const auto subscription = observe(events);
    const Pid first = driver->launch("First");
    ASSERT_TRUE(runUntilSeen(events, {Kind::didLaunch, first}));
    const Pid second = driver->launch("Second");
    ASSERT_TRUE(runUntilSeen(events, {Kind::didLaunch, second}));
    for (const Pid pid : {first, second, first}) {
        driver->activate(pid);
        EXPECT_TRUE(driver->runUntil([&] { return driver->workspace().frontmostPid() == pid; }));
        EXPECT_TRUE(runUntilSeen(events, {Kind::didActivate, pid}));
    }
}

TEST_P(WorkspaceContract, WhoeverDropsTheTokenIsToldNothing) {
    std::vector<Event> dropped;
    std::vector<Event> events;
    auto subscription = observe(dropped);
    const auto other = observe(events);
    subscription.reset();
    const Pid pid = driver->launch("Notes");
    ASSERT_TRUE(runUntilSeen(events, {Kind::didLaunch, pid}));
    EXPECT_TRUE(dropped.empty());
}

TEST_P(WorkspaceContract, AnObserverMayLeaveWhileItIsTold) {
    int count = 0;
    std::vector<Event> events;
    Subscription subscription;
    subscription = driver->workspace().observe([&](const WorkspaceEvent&) {
        ++count;
        subscription.reset();
    });
    const auto other = observe(events);
    const Pid pid = driver->launch("Notes");
    ASSERT_TRUE(runUntilSeen(events, {Kind::didLaunch, pid}));
    driver->quit(pid);
    ASSERT_TRUE(runUntilSeen(events, {Kind::didTerminate, pid}));
    EXPECT_EQ(count, 1);
}

TEST_P(WorkspaceContract, WhatIsNotThereIsNothing) {
    EXPECT_FALSE(driver->workspace().runningApplication(nobody));
    EXPECT_FALSE(driver->workspace().installedApplicationName("com.example.not-installed"));
    EXPECT_FALSE(driver->workspace().installedApplicationPath("com.example.not-installed"));
}

}  // namespace ferrowyn::contract
