#include "platform/main_loop.h"
#include "tests/macos/program/mac_program_test.h"

namespace ferrowyn::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class LaunchOnMacTest : public MacProgramTest {};

TEST_F(LaunchOnMacTest, WithTrustTheProgramWorksWithoutShowingAnyWindow) {
    launch();
    EXPECT_EQ(NSApplication.sharedApplication.activationPolicy, NSApplicationActivationPolicyAccessory);
    EXPECT_THAT(interface().takeSteps(), IsEmpty());
    EXPECT_EQ(system.promptCount, 0);
    EXPECT_TRUE(keyboard.isTapEnabled());
    EXPECT_THAT(keyboard.tapRequest(),
                testing::Optional(fake::Keyboard::TapRequest{kCGSessionEventTap, kCGHeadInsertEventTap,
                                                             kCGEventTapOptionDefault, 0x1C00}));
    EXPECT_THAT(listedWindows(), ElementsAre(77U, 88U));
    EXPECT_EQ(buttonSymbol(), "macwindow.on.rectangle");
    EXPECT_THAT(takeLog(), ElementsAre("windows: Observation started for 2 processes", "input: Event tap installed",
                                       "permissions: Services active"));
}

TEST_F(LaunchOnMacTest, TheSystemDoesNotSlowTheProgramWhileItRuns) {
    EXPECT_EQ(fake_mac::activities().size(), 1U);
    program.reset();
    EXPECT_THAT(fake_mac::activities(), IsEmpty());
}

TEST_F(LaunchOnMacTest, WhatAWorkerDoesForTheProgramLeavesNothingBehind) {
    NSObject* __weak left = nil;
    bool wasThere = false;
    bool isLeft = true;
    program->adapter.platform().backgroundWork.run([&] {
        NSObject* __autoreleasing const autoreleased = [[NSObject alloc] init];
        left = autoreleased;
        wasThere = left != nil;
    });
    program->adapter.platform().backgroundWork.run([&] { isLeft = left != nil; });
    settle();
    EXPECT_TRUE(wasThere);
    EXPECT_FALSE(isLeft);
}

TEST_F(LaunchOnMacTest, WithoutTrustTheSystemAsksOnceAndTheSetupWindowIsShown) {
    system.isTrusted = false;
    launch();
    EXPECT_EQ(system.promptCount, 1);
    EXPECT_THAT(interface().takeSteps(), ElementsAre("show setup"));
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_THAT(listedWindows(), IsEmpty());
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
    advance(Seconds(10));
    EXPECT_EQ(system.promptCount, 1);
    EXPECT_THAT(takeLog(), IsEmpty()) << "what never was active is not suspended";
}

TEST_F(LaunchOnMacTest, TheSystemMaySayTwiceThatTheLaunchIsOver) {
    launch();
    launch();
    EXPECT_EQ([NSStatusBar itemCount], 1U);
    EXPECT_THAT(takeLog(), ElementsAre("windows: Observation started for 2 processes", "input: Event tap installed",
                                       "permissions: Services active"));
}

TEST_F(LaunchOnMacTest, OpeningTheProgramAgainShowsTheSetupWindow) {
    EXPECT_TRUE([NSApplication.sharedApplication reopenWithVisibleWindows:NO]) << "before it was launched";
    launch();
    EXPECT_TRUE([NSApplication.sharedApplication reopenWithVisibleWindows:NO]);
    EXPECT_THAT(interface().takeSteps(), ElementsAre("show setup"));
}

TEST_F(LaunchOnMacTest, TheApplicationsMenuOpensTheSettings) {
    launch();
    NSMenuItem* const settings = applicationMenu().itemArray.firstObject;
    EXPECT_EQ(text(settings.title), "Settings…");
    EXPECT_TRUE([applicationMenu() choose:settings]);
    EXPECT_THAT(interface().takeSteps(), ElementsAre("show settings"));
    program->told = nullptr;
    EXPECT_TRUE([applicationMenu() choose:settings]);
    EXPECT_THAT(interface().takeSteps(), IsEmpty());
}

TEST_F(LaunchOnMacTest, SettingsThatAreAskedForBeforeTheLaunchShowProgressUntilThen) {
    EXPECT_TRUE([applicationMenu() choose:applicationMenu().itemArray.firstObject]);
    EXPECT_THAT(interface().takeSteps(), ElementsAre("show progress"));
    launch();
    EXPECT_THAT(interface().takeSteps(), ElementsAre("show settings", "close progress"));
}

TEST_F(LaunchOnMacTest, TheEndGivesTheKeyboardBackHoweverOftenItIsTold) {
    launch();
    static_cast<void>(takeLog());
    [NSApplication.sharedApplication willTerminate];
    EXPECT_FALSE(keyboard.hasTap());
    [NSApplication.sharedApplication willTerminate];
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);
    EXPECT_THAT(takeLog(), ElementsAre("input: Event tap removed", "windows: Observation stopped"));
}

TEST_F(LaunchOnMacTest, AfterTheProgramsEndTheSystemTellsNobody) {
    launch();
    program->told = nullptr;
    [NSApplication.sharedApplication finishLaunching];
    [NSApplication.sharedApplication willTerminate];
    EXPECT_TRUE([NSApplication.sharedApplication reopenWithVisibleWindows:NO]);
    EXPECT_THAT(interface().takeSteps(), IsEmpty());
    EXPECT_TRUE(keyboard.hasTap());
}

}  // namespace

}  // namespace ferrowyn::test
