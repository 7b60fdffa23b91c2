#import "tests/macos/objc/fakes/foundation.h"

#include "input/switcher_controller.h"
#include "tests/macos/program/mac_program_test.h"

namespace ferrowyn::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ShortcutHealthOnMacTest : public MacProgramTest {
protected:
    void announceTrust() {
        [[NSDistributedNotificationCenter defaultCenter] post:@"com.apple.accessibility.api" userInfo:nil];
    }
};

TEST_F(ShortcutHealthOnMacTest, AfterTheFifthTimeoutTheTapIsGivenUpUntilTheUserAsksForIt) {
    @autoreleasepool {
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
}

TEST_F(ShortcutHealthOnMacTest, SecureInputThatDisablesTheTapEndsTheSessionAndTheTapComesBackAtOnce) {
    @autoreleasepool {
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
}

TEST_F(ShortcutHealthOnMacTest, SecureInputIsShownForAsLongAsItLasts) {
    @autoreleasepool {
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
}

TEST_F(ShortcutHealthOnMacTest, TrustThatIsRevokedSuspendsAndTrustThatReturnsActivates) {
    @autoreleasepool {
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
}

TEST_F(ShortcutHealthOnMacTest, TrustThatIsRevokedInSilenceIsNoticed) {
    @autoreleasepool {
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
}

TEST_F(ShortcutHealthOnMacTest, ATapThatIsRefusedDespiteTrustIsTriedOnceMore) {
    @autoreleasepool {
        keyboard.refusesTaps = true;
        launch();
        EXPECT_THAT(takeLog(),
                    ElementsAre("windows: Observation started for 2 processes", "input: CGEvent.tapCreate failed",
                                "input: Event tap refused despite trust; retrying", "permissions: Services active"));
        keyboard.refusesTaps = false;
        advance(Seconds(1));
        EXPECT_TRUE(keyboard.isTapEnabled());
    }
}

}  // namespace

}  // namespace ferrowyn::test
