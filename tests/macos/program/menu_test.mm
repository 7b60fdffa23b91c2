#include "core/texts.h"
#include "services/launch_at_login_service.h"
#include "tests/macos/objc/fakes/services.h"
#include "tests/macos/program/mac_program_test.h"

namespace ferrowyn::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Eq;
using testing::IsEmpty;
using testing::Optional;

/// What every menu ends with, after the number of windows.
const std::vector<std::string> rest{"-", "LAYOUT",          "List",      "Grouped",      "Grid",
                                    "-", "Launch at Login", "Settings…", "Setup Guide…", "About Ferrowyn",
                                    "-", "Quit Ferrowyn"};

std::vector<std::string> rowsWithRepair(const std::string& repair, const std::string& count = "2 windows tracked") {
    std::vector<std::string> all{"header", "-", repair, "-", "Open Switcher", count};
    all.insert(all.end(), rest.begin(), rest.end());
    return all;
}

class MenuOnMacTest : public MacProgramTest {
protected:
    struct Health {
        std::string symbol;
        std::string tooltip;
        std::string subtitle;
        friend bool operator==(const Health&, const Health&) = default;
    };
    [[nodiscard]] static Health health() { return {buttonSymbol(), buttonTooltip(), headerSubtitle()}; }

    void SetUp() override {
        MacProgramTest::SetUp();
        launch();
    }
    void giveTapUp() {
        for (const Seconds delay : {Seconds(0.25), Seconds(0.5), Seconds(1), Seconds(2), Seconds(0)}) {
            timeOutTapFor(delay);
        }
        // The number of windows waits for the next time that the menu is made.
        settle();
    }
};

TEST_F(MenuOnMacTest, ReadyItOffersNothingToRepair) {
    // Made anew, now that the windows are known.
    EXPECT_TRUE(choose("Grouped"));
    std::vector<std::string> expected{"header", "-", "Open Switcher", "2 windows tracked"};
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_THAT(rows(), ElementsAreArray(expected));
    EXPECT_EQ(health(), (Health{"macwindow.on.rectangle", "Ferrowyn", "Ready"}));
    EXPECT_EQ(row("Grouped").state, NSControlStateValueOn);
    EXPECT_EQ(row("List").state, NSControlStateValueOff);
    EXPECT_EQ(text([NSUserDefaults.standardUserDefaults objectForKey:@"switcher.layout"]), "grouped");
    EXPECT_EQ(text(row("Open Switcher").attributedTitle.string), "Open Switcher   ⌥⇥");
}

TEST_F(MenuOnMacTest, WithoutAccessItOffersToGrantIt) {
    system.isTrusted = false;
    advance(Seconds(3));
    EXPECT_THAT(rows(), ElementsAreArray(rowsWithRepair("Grant Accessibility Access…", "0 windows tracked")));
    EXPECT_EQ(health(), (Health{"exclamationmark.triangle", "Ferrowyn — Accessibility access required",
                                "Accessibility access required"}));
    EXPECT_FALSE(choose("Open Switcher"));
    EXPECT_TRUE(choose("Grant Accessibility Access…"));
    EXPECT_THAT(interface().takeSteps(), ElementsAre("show setup"));
}

TEST_F(MenuOnMacTest, AfterRepeatedTimeoutsItOffersToReEnableTheShortcut) {
    giveTapUp();
    EXPECT_THAT(rows(), ElementsAreArray(rowsWithRepair("Re-enable Shortcut")));
    EXPECT_EQ(health(), (Health{"exclamationmark.triangle", "Ferrowyn — shortcut disabled by the system",
                                "Shortcut disabled by the system"}));
    EXPECT_TRUE(choose("Re-enable Shortcut"));
    EXPECT_TRUE(keyboard.isTapEnabled());
}

TEST_F(MenuOnMacTest, AShortcutThatIsRefusedAgainCountsAsRevoked) {
    giveTapUp();
    keyboard.refusesTaps = true;
    EXPECT_TRUE(choose("Re-enable Shortcut"));
    EXPECT_THAT(rows(), ElementsAreArray(rowsWithRepair("Re-enable Shortcut")));
    EXPECT_EQ(health(), (Health{"exclamationmark.triangle", "Ferrowyn — Accessibility access was revoked",
                                "Accessibility access was revoked"}));
    keyboard.refusesTaps = false;
    EXPECT_TRUE(choose("Re-enable Shortcut"));
    EXPECT_EQ(health(), (Health{"macwindow.on.rectangle", "Ferrowyn", "Ready"}));
}

TEST_F(MenuOnMacTest, DuringSecureInputItSaysThatItWaits) {
    system.isSecureInputEnabled = true;
    advance(Seconds(2));
    EXPECT_THAT(rows(), ElementsAreArray(rowsWithRepair("Waiting for the other app to release it")));
    EXPECT_FALSE(choose("Waiting for the other app to release it"));
    EXPECT_EQ(health(), (Health{"keyboard.badge.ellipsis", "Ferrowyn — secure input is active, shortcut paused",
                                "Secure input active — shortcut paused"}));
}

TEST_F(MenuOnMacTest, EachRowDoesWhatItSays) {
    EXPECT_TRUE(choose("Settings…"));
    EXPECT_TRUE(choose("Setup Guide…"));
    EXPECT_TRUE(choose("About Ferrowyn"));
    EXPECT_THAT(interface().takeSteps(), ElementsAre("show settings", "show setup", "show About Ferrowyn"));
    EXPECT_TRUE(choose("Open Switcher"));
    EXPECT_THAT([panel() calls], Contains("orderFrontRegardless"));
    EXPECT_TRUE(choose("Quit Ferrowyn"));
    EXPECT_THAT([NSApplication.sharedApplication calls], Contains("terminate"));
}

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

TEST_F(LoginItemOnMacTest, ARefusalOfTheServiceIsExplained) {
    expectRefusal(error(@"SMAppServiceErrorDomain", 111, @"Invalid signature"),
                  std::string(macTexts().loginItemRefused));
}

TEST_F(LoginItemOnMacTest, ARefusalToUnregisterLeavesItRegisteredAndIsExplained) {
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

TEST_F(LoginItemOnMacTest, AnOperationThatIsNotPermittedIsExplainedWhateverItsDomain) {
    expectRefusal(error(@"NSPOSIXErrorDomain", 1, @"Operation not permitted"),
                  std::string(macTexts().loginItemRefused));
}

TEST_F(LoginItemOnMacTest, AnyOtherErrorSpeaksForItself) {
    expectRefusal(error(@"NSCocoaErrorDomain", 4, @"The file does not exist."), "The file does not exist.");
}

TEST_F(LoginItemOnMacTest, ApprovalThatIsMissingIsSaidInTheMenu) {
    service().status = SMAppServiceStatusRequiresApproval;
    launch();
    EXPECT_EQ(row("Launch at Login").state, NSControlStateValueOn);
    EXPECT_EQ(text(row("Launch at Login").toolTip), macTexts().loginItemApproval);
}

TEST_F(LoginItemOnMacTest, AProgramThatCannotBeFoundCannotBeRegistered) {
    service().status = SMAppServiceStatusNotFound;
    launch();
    EXPECT_EQ(text(row("Launch at Login").toolTip), macTexts().loginItemUnavailable);
    EXPECT_FALSE(choose("Launch at Login"));
    EXPECT_TRUE([service() calls].empty());
}

}  // namespace

}  // namespace ferrowyn::test
