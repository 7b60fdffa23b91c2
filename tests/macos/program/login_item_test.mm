#include "core/texts.h"
#include "services/launch_at_login_service.h"
#include "tests/macos/objc/fakes/services.h"
#include "tests/macos/program/mac_program_test.h"

namespace ferrowyn::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Eq;
using testing::Optional;

class LoginItemOnMacTest : public MacProgramTest {
protected:
    static SMAppService* service() { return SMAppService.mainAppService; }
    static NSError* error(NSString* domain, NSInteger code, NSString* words) {
        return [[NSError alloc] initWithDomain:domain code:code text:words];
    }
    /// The row after the next time that the menu is made.
    NSMenuItem* freshRow() {
        services().preferences().layout.set(services().preferences().layout.get() == SwitcherLayout::list
                                                ? SwitcherLayout::grid
                                                : SwitcherLayout::list);
        settle();
        return row("Launch at Login");
    }
    void expectRefusal(NSError* refusal, const std::string& message) {
        service().nextError = refusal;
        launch();
        static_cast<void>(takeLog());
        EXPECT_TRUE(choose("Launch at Login"));
        EXPECT_THAT([service() calls], ElementsAre("register"));
        EXPECT_THAT(services().launchAtLogin().lastError().get(), Optional(Eq(message)));
        EXPECT_THAT(takeLog(),
                    Contains("permissions: Launch at login toggle failed: " + text(refusal.localizedDescription)));
        NSMenuItem* const shown = freshRow();
        EXPECT_EQ(text(shown.toolTip), message);
        EXPECT_EQ(shown.state, NSControlStateValueOff);
        EXPECT_TRUE(shown.enabled) << "the user may try again";
    }
};

TEST_F(LoginItemOnMacTest, IsRegisteredAndUnregisteredFromTheMenu) {
    @autoreleasepool {
        launch();
        service().status = SMAppServiceStatusNotRegistered;
        EXPECT_TRUE(choose("Launch at Login"));
        service().status = SMAppServiceStatusEnabled;
        services().launchAtLogin().refresh();
        EXPECT_EQ(freshRow().state, NSControlStateValueOn);
        EXPECT_TRUE(choose("Launch at Login"));
        EXPECT_THAT([service() calls], ElementsAre("register", "unregister"));
        EXPECT_THAT(takeLog(), Contains("permissions: Launch at login set to false"));
    }
}

TEST_F(LoginItemOnMacTest, ARefusalOfTheServiceIsExplained) {
    @autoreleasepool {
        expectRefusal(error(@"SMAppServiceErrorDomain", 111, @"Invalid signature"),
                      std::string(macTexts().loginItemRefused));
    }
}

TEST_F(LoginItemOnMacTest, ARefusalToUnregisterLeavesItRegisteredAndIsExplained) {
    @autoreleasepool {
        service().status = SMAppServiceStatusEnabled;
        service().nextError = error(@"SMAppServiceErrorDomain", 111, @"Invalid signature");
        launch();
        static_cast<void>(takeLog());
        EXPECT_TRUE(choose("Launch at Login"));
        EXPECT_THAT([service() calls], ElementsAre("unregister"));
        EXPECT_THAT(takeLog(), Contains("permissions: Launch at login toggle failed: Invalid signature"));
        NSMenuItem* const shown = freshRow();
        EXPECT_EQ(text(shown.toolTip), macTexts().loginItemRefused);
        EXPECT_EQ(shown.state, NSControlStateValueOn);
        EXPECT_TRUE(shown.enabled) << "the user may try again";
    }
}

TEST_F(LoginItemOnMacTest, AnOperationThatIsNotPermittedIsExplainedWhateverItsDomain) {
    @autoreleasepool {
        expectRefusal(error(@"NSPOSIXErrorDomain", 1, @"Operation not permitted"),
                      std::string(macTexts().loginItemRefused));
    }
}

TEST_F(LoginItemOnMacTest, AnyOtherErrorSpeaksForItself) {
    @autoreleasepool {
        expectRefusal(error(@"NSCocoaErrorDomain", 4, @"The file does not exist."), "The file does not exist.");
    }
}

TEST_F(LoginItemOnMacTest, ApprovalThatIsMissingIsSaidInTheMenu) {
    @autoreleasepool {
        service().status = SMAppServiceStatusRequiresApproval;
        launch();
        EXPECT_EQ(row("Launch at Login").state, NSControlStateValueOn);
        EXPECT_EQ(text(row("Launch at Login").toolTip), macTexts().loginItemApproval);
    }
}

TEST_F(LoginItemOnMacTest, AProgramThatCannotBeFoundCannotBeRegistered) {
    @autoreleasepool {
        service().status = SMAppServiceStatusNotFound;
        launch();
        EXPECT_EQ(text(row("Launch at Login").toolTip), macTexts().loginItemUnavailable);
        EXPECT_FALSE(choose("Launch at Login"));
        EXPECT_TRUE([service() calls].empty());
    }
}

}  // namespace

}  // namespace ferrowyn::test
