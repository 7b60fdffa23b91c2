#include <algorithm>

#include "input/switcher_controller.h"
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
    @autoreleasepool {
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
}

TEST_F(ActivationOnMacTest, WhatIsHiddenAndMinimizedIsShownFirst) {
    @autoreleasepool {
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
}

TEST_F(ActivationOnMacTest, AClickElsewhereSwitchesNowhere) {
    @autoreleasepool {
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
}

TEST_F(ActivationOnMacTest, EscapeSwitchesNowhere) {
    @autoreleasepool {
        launch();
        press(optionTab);
        static_cast<void>(accessibility.takeRequests());
        EXPECT_EQ(press({.keyCode = 53, .flags = kCGEventFlagMaskAlternate}), Outcome::swallowed);
        EXPECT_FALSE(services().switcher().isVisible());
        EXPECT_EQ(press(optionReleased), Outcome::reachedApplication);
        EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
        EXPECT_FALSE(running(mail).active);
    }
}

TEST_F(ActivationOnMacTest, AnApplicationThatHangsCostsTheSnapshotOneTimeoutAndLeavesTheOthersListed) {
    @autoreleasepool {
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
}

TEST_F(ActivationOnMacTest, AnApplicationThatHangsWhenItIsActivatedIsTriedFourTimesWithinItsTimeout) {
    @autoreleasepool {
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
        EXPECT_EQ(std::ranges::count(accessibility.takeRequests(), ofWindow("perform AXRaise")), 3)
            << "after the first";
        EXPECT_THAT(takeLog(), Contains("activation: Could not confirm activation of window 88 in Mail"));
        EXPECT_TRUE(keyboard.isTapEnabled());
    }
}

}  // namespace

}  // namespace ferrowyn::test
