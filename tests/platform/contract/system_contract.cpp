#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

#include "tests/platform/contract/contracts.h"

namespace ferrowyn::contract {

using testing::ElementsAre;
using testing::Optional;

TEST_P(LoginItemContract, ItIsRegisteredAndUnregistered) {
    auto& item = driver->item();
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_FALSE(item.registerProgram());
    EXPECT_EQ(item.status(), Status::enabled);
    EXPECT_FALSE(item.unregisterProgram());
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_FALSE(item.registerProgram());
    EXPECT_EQ(item.status(), Status::enabled) << "as the first time";
}

TEST_P(LoginItemContract, ARefusalComesInWordsAndChangesNothing) {
    auto& item = driver->item();
    driver->refuse();
    const auto error = item.registerProgram();
    ASSERT_TRUE(error);
    EXPECT_FALSE(error->domain.empty());
    EXPECT_NE(error->code, 0);
    EXPECT_FALSE(error->localizedDescription.empty());
    EXPECT_NE(item.status(), Status::enabled);
    EXPECT_NE(item.status(), Status::requiresApproval);
}

TEST_P(ScreensContract, TheOnlyScreenIsTheMainOneAndBeginsAtTheOrigin) {
    const auto all = driver->screens().all();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].frame.x, 0);
    EXPECT_EQ(all[0].frame.y, 0);
    EXPECT_GT(all[0].frame.width, 0);
    EXPECT_GT(all[0].frame.height, 0);
    EXPECT_EQ(driver->screens().main(), all[0]);
}

TEST_P(ScreensContract, ADockAtTheUpperEdgeLeavesTheLowerPartInCoordinatesThatGrowUpward) {
    int count = 0;
    const auto subscription = driver->screens().observe([&] { ++count; });
    const Rect frame = driver->screens().main().value().frame;
    driver->showDock(40);
    const Rect visible{0, 0, frame.width, frame.height - 40};
    ASSERT_TRUE(driver->runUntil([&] { return driver->screens().main()->visibleFrame == visible; }));
    EXPECT_TRUE(driver->runUntil([&] { return count > 0; }));
    EXPECT_EQ(driver->screens().main()->frame, frame);
    driver->removeDock();
    EXPECT_TRUE(driver->runUntil([&] { return driver->screens().main()->visibleFrame == frame; }));
}

TEST_P(ScreensContract, WhoeverIsToldReadsWhatIsNewAndWhoeverLeavesIsToldNothing) {
    int dropped = 0;
    std::optional<Screen> read;
    auto subscription = driver->screens().observe([&] { ++dropped; });
    const auto other = driver->screens().observe([&] { read = driver->screens().main(); });
    subscription.reset();
    driver->showDock(40);
    EXPECT_TRUE(driver->runUntil([&] { return read && read->visibleFrame.height == read->frame.height - 40; }));
    EXPECT_EQ(dropped, 0);
}

TEST_P(UserDefaultsContract, WhatWasNeverSetIsNothingOrTheTypesZero) {
    const auto& defaults = driver->defaults();
    EXPECT_EQ(defaults.value("none"), std::nullopt);
    EXPECT_EQ(defaults.string("none"), std::nullopt);
    EXPECT_EQ(defaults.stringArray("none"), std::nullopt);
    EXPECT_FALSE(defaults.boolean("none"));
    EXPECT_EQ(defaults.integer("none"), 0);
    EXPECT_EQ(defaults.real("none"), 0);
}

TEST_P(UserDefaultsContract, WhatIsRegisteredAnswersAndIsNotStored) {
    auto& defaults = driver->defaults();
    defaults.registerDefaults({{"switcher.layout", std::string("list")}, {"switcher.rows", std::int64_t{12}}});
    EXPECT_EQ(defaults.string("switcher.layout"), "list");
    EXPECT_EQ(defaults.integer("switcher.rows"), 12);
    EXPECT_FALSE(driver->isStored("switcher.layout"));
    defaults.set("switcher.layout", std::string("grid"));
    EXPECT_EQ(defaults.string("switcher.layout"), "grid");
    EXPECT_TRUE(driver->isStored("switcher.layout"));
    EXPECT_FALSE(driver->isStored("switcher.rows"));
    defaults.registerDefaults({{"switcher.layout", std::string("list")}});
    EXPECT_EQ(defaults.string("switcher.layout"), "grid") << "what is stored stands before what is registered";
}

TEST_P(UserDefaultsContract, EveryTypeComesBackAsItWas) {
    auto& defaults = driver->defaults();
    const std::map<std::string, DefaultsValue> values{
        {"true", true},
        {"false", false},
        {"one", std::int64_t{1}},
        {"least", std::numeric_limits<std::int64_t>::min()},
        {"most", std::numeric_limits<std::int64_t>::max()},
        {"real", 0.12},
        {"text", std::string("Große Post — \"東京\"\n= 🦀 ")},
        {"empty text", std::string()},
        {"list", std::vector<std::string>{"com.example.one", "", "two, three"}},
        {"empty list", std::vector<std::string>{}},
    };
    for (const auto& [key, value] : values) {
        defaults.set("types." + key, value);
    }
    for (const auto& [key, value] : values) {
        EXPECT_EQ(defaults.value("types." + key), value) << key;
        EXPECT_TRUE(driver->isStored("types." + key)) << key;
    }
    EXPECT_THAT(defaults.stringArray("types.list"), Optional(ElementsAre("com.example.one", "", "two, three")));
    EXPECT_EQ(defaults.real("types.real"), 0.12);
    EXPECT_TRUE(defaults.boolean("types.true"));
}

TEST_P(UserDefaultsContract, TheLastValueCountsWhateverItsType) {
    auto& defaults = driver->defaults();
    defaults.set("key", true);
    defaults.set("key", std::int64_t{7});
    defaults.set("key", std::string("seven"));
    EXPECT_EQ(defaults.value("key"), DefaultsValue(std::string("seven")));
    EXPECT_FALSE(defaults.boolean("key"));
    EXPECT_EQ(defaults.stringArray("key"), std::nullopt);
}

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
