#include <algorithm>

#include "input/switcher_controller.h"
#import "tests/macos/objc/fakes/foundation.h"
#include "tests/macos/program/mac_program_test.h"

namespace ferrowyn::test {

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::IsSupersetOf;

class ActivationOnMacTest : public MacProgramTest {
protected:
    /// "perform AXRaise" of Mail's window, and so on.
    [[nodiscard]] std::string ofWindow(const std::string& request) const {
        return request + " of " + std::to_string(mailWindow.number) + " within 0.5";
    }
    [[nodiscard]] std::string ofApplication(const std::string& request) const {
        return request + " of " + std::to_string(mailElement.number) + " within 0.5";
    }
    /// What raising Mail's window asks of Mail, in its order.
    [[nodiscard]] std::vector<std::string> raising() const {
        return {ofWindow("perform AXRaise"), ofWindow("set AXMain to true"), ofWindow("set AXFocused to true"),
                ofApplication("set AXFocusedWindow to " + std::to_string(mailWindow.number)),
                ofApplication("set AXFrontmost to true")};
    }
};

TEST_F(ActivationOnMacTest, AKeyPressAndItsReleaseRaiseTheWindowBehind) {
    launch();
    EXPECT_EQ(press(optionTab), Outcome::swallowed);
    EXPECT_TRUE(services().switcher().isVisible());
    EXPECT_THAT([panel() calls], Contains("orderFrontRegardless"));
    static_cast<void>(accessibility.takeRequests());

    EXPECT_EQ(press(optionReleased), Outcome::reachedApplication);
    EXPECT_FALSE(services().switcher().isVisible());
    EXPECT_EQ([panel() calls].back(), "orderOut");
    EXPECT_EQ(accessibility.takeRequests(), raising());
    EXPECT_TRUE(running(mail).active);

    advance(Seconds(0.5));
    EXPECT_THAT(accessibility.takeRequests(), IsSupersetOf({ofWindow("copy AXMain"), ofWindow("copy AXFocused")}));
    EXPECT_THAT(listedWindows(), ElementsAre(88U, 77U));
    EXPECT_THAT(takeLog(), testing::Not(Contains(testing::StartsWith("activation: ")))) << "all went as it should";
}

TEST_F(ActivationOnMacTest, WhatIsHiddenAndMinimizedIsShownFirst) {
    accessibility.element(mailWindow).attributes["AXMinimized"] = true;
    running(mail).hidden = YES;
    launch();
    press(optionTab);
    static_cast<void>(accessibility.takeRequests());
    press(optionReleased);
    auto expected = raising();
    expected.insert(expected.begin(), ofWindow("set AXMinimized to false"));
    EXPECT_EQ(accessibility.takeRequests(), expected);
    EXPECT_FALSE(running(mail).hidden);
}

TEST_F(ActivationOnMacTest, AClickElsewhereSwitchesNowhere) {
    launch();
    press(optionTab);
    static_cast<void>(accessibility.takeRequests());
    [NSEvent pressElsewhere:NSEventTypeLeftMouseDown];
    settle();
    EXPECT_FALSE(services().switcher().isVisible());
    EXPECT_EQ([panel() calls].back(), "orderOut");
    EXPECT_EQ(press(optionReleased), Outcome::reachedApplication);
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
}

TEST_F(ActivationOnMacTest, EscapeSwitchesNowhere) {
    launch();
    press(optionTab);
    static_cast<void>(accessibility.takeRequests());
    EXPECT_EQ(press({.keyCode = 53, .flags = kCGEventFlagMaskAlternate}), Outcome::swallowed);
    EXPECT_FALSE(services().switcher().isVisible());
    EXPECT_EQ(press(optionReleased), Outcome::reachedApplication);
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
    EXPECT_FALSE(running(mail).active);
}

TEST_F(ActivationOnMacTest, AnApplicationThatHangsCostsTheSnapshotOneTimeoutAndLeavesTheOthersListed) {
    accessibility.application(mail).hangs = true;
    launch();
    EXPECT_NEAR(accessibility.secondsWaited(), 0.5 + 0.35, 1e-6) << "one registration, and one snapshot";
    EXPECT_THAT(listedWindows(), ElementsAre(77U));
    const auto requests = accessibility.takeRequests();
    const auto ofMail = " of " + std::to_string(mailElement.number) + " within 0.35";
    EXPECT_THAT(requests, Contains("copy AXWindows" + ofMail));
    EXPECT_THAT(requests, testing::Not(Contains("copy AXFocusedWindow" + ofMail))) << "it would wait once more";
    accessibility.application(mail).hangs = false;
    [NSWorkspace.sharedWorkspace post:NSWorkspaceDidActivateApplicationNotification application:running(notes)];
    advance(Seconds(0.2));
    EXPECT_THAT(listedWindows(), ElementsAre(77U, 88U));
}

TEST_F(ActivationOnMacTest, AnApplicationThatHangsWhenItIsActivatedIsTriedFourTimesWithinItsTimeout) {
    launch();
    press(optionTab);
    static_cast<void>(accessibility.takeRequests());
    static_cast<void>(takeLog());
    accessibility.application(mail).hangs = true;
    const double before = accessibility.secondsWaited();
    press(optionReleased);
    EXPECT_EQ(accessibility.takeRequests(), raising());
    EXPECT_NEAR(accessibility.secondsWaited() - before, 2.5, 1e-6) << "half a second for each of five requests";
    advance(Seconds(4));
    EXPECT_EQ(std::ranges::count(accessibility.takeRequests(), ofWindow("perform AXRaise")), 3) << "after the first";
    EXPECT_THAT(takeLog(), Contains("activation: Could not confirm activation of window 88 in Mail"));
    EXPECT_TRUE(keyboard.isTapEnabled());
}

class ShortcutHealthOnMacTest : public MacProgramTest {
protected:
    void announceTrust() {
        [[NSDistributedNotificationCenter defaultCenter] post:@"com.apple.accessibility.api" userInfo:nil];
    }
};

TEST_F(ShortcutHealthOnMacTest, AfterTheFifthTimeoutTheTapIsGivenUpUntilTheUserAsksForIt) {
    launch();
    static_cast<void>(takeLog());
    press(optionTab);
    for (const Seconds delay : {Seconds(0.25), Seconds(0.5), Seconds(1), Seconds(2)}) {
        timeOutTapFor(delay);
        EXPECT_TRUE(keyboard.isTapEnabled()) << "after " << delay.count() << " s";
        EXPECT_FALSE(services().switcher().isVisible()) << "a session without a keyboard cannot be ended by it";
    }
    timeOutTapFor(Seconds(0));
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_THAT(takeLog(), Contains("input: Global shortcut disabled after repeated tap timeouts"));
    EXPECT_EQ(buttonTooltip(), "Ferrowyn — shortcut disabled by the system");
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);

    EXPECT_TRUE(choose("Re-enable Shortcut"));
    EXPECT_TRUE(keyboard.isTapEnabled());
    EXPECT_EQ(buttonTooltip(), "Ferrowyn");
    EXPECT_EQ(press(optionTab), Outcome::swallowed);
}

TEST_F(ShortcutHealthOnMacTest, SecureInputThatDisablesTheTapEndsTheSessionAndTheTapComesBackAtOnce) {
    launch();
    press(optionTab);
    ASSERT_TRUE(services().switcher().isVisible());
    static_cast<void>(takeLog());
    system.isSecureInputEnabled = true;
    keyboard.disableTap(kCGEventTapDisabledByUserInput);
    EXPECT_FALSE(keyboard.isTapEnabled());
    settle();
    EXPECT_TRUE(keyboard.isTapEnabled());
    EXPECT_FALSE(services().switcher().isVisible()) << "a session without a keyboard cannot be ended by it";
    EXPECT_THAT(takeLog(), Contains("input: Re-enabling event tap (user-input transition)"));
    EXPECT_EQ(press({.keyCode = 0}), Outcome::reachedApplication);
    EXPECT_EQ(press(optionTab), Outcome::swallowed) << "and the next session is one";
    EXPECT_TRUE(services().switcher().isVisible());
}

TEST_F(ShortcutHealthOnMacTest, SecureInputIsShownForAsLongAsItLasts) {
    launch();
    static_cast<void>(takeLog());
    system.isSecureInputEnabled = true;
    advance(Seconds(2));
    EXPECT_EQ(buttonSymbol(), "keyboard.badge.ellipsis");
    EXPECT_EQ(buttonTooltip(), "Ferrowyn — secure input is active, shortcut paused");
    system.isSecureInputEnabled = false;
    advance(Seconds(2));
    EXPECT_EQ(buttonSymbol(), "macwindow.on.rectangle");
    EXPECT_THAT(takeLog(),
                ElementsAre("permissions: Secure input active: true", "permissions: Secure input active: false"));
    EXPECT_TRUE(keyboard.isTapEnabled());
}

TEST_F(ShortcutHealthOnMacTest, TrustThatIsRevokedSuspendsAndTrustThatReturnsActivates) {
    launch();
    press(optionTab);
    static_cast<void>(takeLog());
    system.isTrusted = false;
    announceTrust();
    advance(Seconds(0.25));
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_FALSE(services().switcher().isVisible());
    EXPECT_THAT(listedWindows(), IsEmpty());
    EXPECT_EQ(buttonTooltip(), "Ferrowyn — Accessibility access required");
    EXPECT_THAT(takeLog(), Contains("permissions: Services suspended — Accessibility trust missing"));
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);
    EXPECT_EQ(system.promptCount, 0) << "the user has just taken it away";

    system.isTrusted = true;
    announceTrust();
    advance(Seconds(0.25));
    settle();
    EXPECT_TRUE(keyboard.isTapEnabled());
    EXPECT_THAT(listedWindows(), ElementsAre(77U, 88U));
    EXPECT_EQ(buttonTooltip(), "Ferrowyn");
    EXPECT_THAT(takeLog(), Contains("permissions: Services active"));
    EXPECT_EQ(press(optionTab), Outcome::swallowed);
}

TEST_F(ShortcutHealthOnMacTest, TrustThatIsRevokedInSilenceIsNoticed) {
    launch();
    system.isTrusted = false;
    advance(Seconds(3));
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_FALSE(services().isActive());
    system.isTrusted = true;
    advance(Seconds(1));
    EXPECT_TRUE(services().isActive());
    EXPECT_TRUE(keyboard.isTapEnabled());
}

TEST_F(ShortcutHealthOnMacTest, ATapThatIsRefusedDespiteTrustIsTriedOnceMore) {
    keyboard.refusesTaps = true;
    launch();
    EXPECT_THAT(takeLog(),
                ElementsAre("windows: Observation started for 2 processes", "input: CGEvent.tapCreate failed",
                            "input: Event tap refused despite trust; retrying", "permissions: Services active"));
    keyboard.refusesTaps = false;
    advance(Seconds(1));
    EXPECT_TRUE(keyboard.isTapEnabled());
}

}  // namespace

}  // namespace ferrowyn::test
