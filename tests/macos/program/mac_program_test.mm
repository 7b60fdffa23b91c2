#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/app_delegate.h"
#include "app/app_services.h"
#include "core/texts.h"
#include "input/switcher_controller.h"
#include "main/mac_application_events.h"
#include "platform/macos/mac_platform.h"
#include "platform/macos/mac_status_item.h"
#include "platform/macos/mac_system_services.h"
#include "platform/main_loop.h"
#include "platform/simulated/simulated_desktop.h"
#include "tests/app/recorded_interface.h"
#include "tests/macos/fake/fake_accessibility.h"
#include "tests/macos/fake/fake_keyboard.h"
#include "tests/macos/fake/fake_system.h"
#include "tests/macos/objc/mac_test.h"

namespace ferrowyn::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;
using Strings = std::vector<std::string>;

/// Windows that only note what is done to them, and the system's status item.
class MacInterface final : public RecordedInterface {
public:
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override { return std::make_unique<MacStatusItem>(); }
};

/// The whole program on a Mac with two applications: Notes, in front with window 77, and behind it Mail with window 88.
/// The clock, the workers and the network are the simulated desktop's. What the program does in which case, the tests
/// of its parts say; here is what only their composition can get wrong. When a test ends, no object of either half of
/// the system may be held any more, and none may have been misused.
class MacProgramTest : public MacTest {
protected:
    static constexpr Pid notes = 501;
    static constexpr Pid mail = 502;
    using Outcome = fake::Keyboard::Outcome;
    static constexpr fake::Keyboard::Key optionTab{.keyCode = 48, .flags = kCGEventFlagMaskAlternate};
    static constexpr fake::Keyboard::Key optionReleased{.type = kCGEventFlagsChanged};

    MacProgramTest() {
        fake::resetSystem();
        @autoreleasepool {
            NSScreen* const screen = [NSScreen screenWithFrame:NSMakeRect(0, 0, 1440, 900)
                                                  visibleFrame:NSMakeRect(0, 70, 1440, 805)];
            fake_mac::appKit().screens = @[ screen ];
            fake_mac::appKit().mainScreen = screen;
            addApplication(notes, @"Notes", @"com.example.Notes");
            mailElement = addApplication(mail, @"Mail", @"com.example.Mail");
            fake::addWindow(notes, 77, "Shopping", {100, 100, 800, 600});
            mailWindow = fake::addWindow(mail, 88, "Inbox", {100, 100, 800, 600});
            NSWorkspace.sharedWorkspace.frontmostApplication = running(notes);
            program = std::make_unique<Program>(toolkit->platform());
        }
    }
    void TearDown() override {
        @autoreleasepool {
            program.reset();
            // What waits on the loop goes with it.
            toolkit.reset();
        }
        EXPECT_THAT(fake::takeComplaints(), IsEmpty());
        EXPECT_FALSE(keyboard.hasTap());
        MacTest::TearDown();
    }

    fake::ElementId addApplication(Pid pid, NSString* name, NSString* identifier) {
        NSRunningApplication* const application = [[NSRunningApplication alloc] initWithPid:pid];
        application.localizedName = name;
        application.bundleIdentifier = identifier;
        [NSWorkspace.sharedWorkspace start:application];
        return accessibility.addApplication(pid);
    }
    /// The system says that the program was launched, and all comes to rest.
    void launch() {
        [NSApplication.sharedApplication finishLaunching];
        advance(Seconds(0));
    }
    /// Does all that waits for the main thread, on the run loop and on the simulated one, while this time passes.
    void advance(Seconds duration) {
        @autoreleasepool {
            fake::RunLoop::main().drain("kCFRunLoopDefaultMode");
            duration.count() > 0 ? toolkit->advance(duration) : toolkit->settle();
        }
    }
    Outcome press(const fake::Keyboard::Key& key) {
        const auto outcome = keyboard.press(key);
        advance(Seconds(0));
        return outcome;
    }
    void openSwitcher() {
        EXPECT_EQ(press(optionTab), Outcome::swallowed);
        EXPECT_TRUE(services().switcher().isVisible());
        static_cast<void>(accessibility.takeRequests());
        static_cast<void>(takeLog());
    }
    /// The system disables the tap for being too slow, until the program gives it up.
    void timeOutTapUntilItIsGivenUp() {
        for (const double pause : {0.25, 0.5, 1.0, 2.0, 0.0}) {
            keyboard.disableTap(kCGEventTapDisabledByTimeout);
            advance(Seconds(0));
            EXPECT_FALSE(keyboard.isTapEnabled());
            advance(Seconds(pause));
            EXPECT_EQ(keyboard.isTapEnabled(), pause > 0) << pause;
        }
        // The number of windows waits for the next time that the menu is made.
        advance(Seconds(0));
    }
    void setTrusted(bool isTrusted) {
        system.isTrusted = isTrusted;
        [[NSDistributedNotificationCenter defaultCenter] post:@"com.apple.accessibility.api" userInfo:nil];
        advance(Seconds(0.25));
        advance(Seconds(0));
    }

    [[nodiscard]] AppServices& services() { return *program->delegate.services(); }
    /// "show setup" and so on.
    [[nodiscard]] Strings takeSteps() {
        auto steps = program->interface.takeSteps();
        std::erase_if(steps, [](const std::string& step) { return step.starts_with("make "); });
        return steps;
    }
    [[nodiscard]] static NSRunningApplication* running(Pid pid) {
        return [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
    }
    [[nodiscard]] static NSPanel* panel() {
        NSArray<NSWindow*>* const windows = NSApplication.sharedApplication.windows;
        EXPECT_EQ(windows.count, 1U);
        return static_cast<NSPanel*>(windows.firstObject);
    }
    /// The messages of the unified log since it was last asked for, without the debug ones.
    [[nodiscard]] static Strings takeLog() {
        Strings messages;
        for (const auto& line : std::exchange(fake_mac::services().logLines, {})) {
            if (line.type != OS_LOG_TYPE_DEBUG) {
                messages.push_back(line.category + ": " + line.text);
            }
        }
        return messages;
    }
    [[nodiscard]] std::vector<WindowId> listedWindows() {
        std::vector<WindowId> ids;
        for (const auto& window : services().windowIndex().windows().get()) {
            ids.push_back(window.id);
        }
        return ids;
    }
    /// The user chooses the row; false when it is not enabled.
    bool choose(const std::string& title) {
        NSMenuItem* const item = rowTitled(title);
        EXPECT_NE(item, nil) << title;
        const bool wasSent = item != nil && [[NSStatusBar onlyItem].menu choose:item];
        advance(Seconds(0));
        return wasSent;
    }
    [[nodiscard]] static bool chooseSettingsInTheApplicationsMenu() {
        NSMenu* const menu = NSApplication.sharedApplication.mainMenu.itemArray.firstObject.submenu;
        EXPECT_EQ(text(menu.itemArray.firstObject.title), "Settings…");
        return [menu choose:menu.itemArray.firstObject];
    }
    /// What the menu bar shows: the button's symbol and words, the text of the menu's header, and the row to repair.
    [[nodiscard]] static Strings shownHealth() {
        NSStatusItem* const item = [NSStatusBar onlyItem];
        NSTextField* const subtitle =
            static_cast<NSTextField*>([item.menu.itemArray.firstObject.view.subviews objectAtIndex:2]);
        const auto rows = shownRows();
        return {text(item.button.image.symbolName), text(item.button.toolTip), text(subtitle.stringValue), rows.at(2)};
    }
    /// "perform AXRaise" of Mail's window, and so on.
    [[nodiscard]] static std::string of(fake::ElementId element, const std::string& request, const char* timeout) {
        return request + " of " + std::to_string(element.number) + " within " + timeout;
    }
    /// What raising Mail's window asks of Mail, in its order.
    [[nodiscard]] Strings raising() const {
        return {of(mailWindow, "perform AXRaise", "0.5"), of(mailWindow, "set AXMain to true", "0.5"),
                of(mailWindow, "set AXFocused to true", "0.5"),
                of(mailElement, "set AXFocusedWindow to " + std::to_string(mailWindow.number), "0.5"),
                of(mailElement, "set AXFrontmost to true", "0.5")};
    }

    fake::Accessibility& accessibility = fake::Accessibility::shared();
    fake::Keyboard& keyboard = fake::Keyboard::shared();
    fake::System& system = fake::System::shared();
    fake::ElementId mailElement;
    fake::ElementId mailWindow;

    /// The parts of the program, composed as in the program itself.
    struct Program {
        explicit Program(const Platform& toolkit)
            : systemDelegate(passingOnTo(told)),
              adapter({.mainLoop = toolkit.mainLoop,
                       .backgroundWork = toolkit.backgroundWork,
                       .httpClient = toolkit.httpClient,
                       .log = log,
                       .hostWidget = [](QWidget& /*widget*/, std::uintptr_t /*view*/) { return nullptr; },
                       .panelCornerRadius = 14}),
              delegate(adapter.platform(), interface),
              applicationMenu(makeApplicationMenu(interface, adapter.platform().texts, told)) {
            told = &delegate;
        }

        AppDelegate* told = nullptr;
        MacApplicationDelegate systemDelegate;
        MacLog log;
        MacPlatform adapter;
        MacInterface interface;
        AppDelegate delegate;
        std::unique_ptr<MacApplicationMenu> applicationMenu;
    };
    std::unique_ptr<SimulatedDesktop> toolkit = std::make_unique<SimulatedDesktop>();
    std::unique_ptr<Program> program;
};

TEST_F(MacProgramTest, WithTrustTheProgramWorksWithoutShowingAnyWindow) {
    launch();
    EXPECT_EQ(NSApplication.sharedApplication.activationPolicy, NSApplicationActivationPolicyAccessory);
    EXPECT_THAT(takeSteps(), IsEmpty());
    EXPECT_EQ(system.promptCount, 0);
    EXPECT_TRUE(keyboard.isTapEnabled());
    EXPECT_THAT(keyboard.tapRequest(),
                testing::Optional(fake::Keyboard::TapRequest{kCGSessionEventTap, kCGHeadInsertEventTap,
                                                             kCGEventTapOptionDefault, 0x1C00}));
    EXPECT_THAT(listedWindows(), ElementsAre(77U, 88U));
    launch();
    EXPECT_EQ(fake_mac::appKit().statusItems.size(), 1U) << "the system may say twice that the launch is over";
    EXPECT_THAT(takeLog(), ElementsAre("windows: Observation started for 2 processes", "input: Event tap installed",
                                       "permissions: Services active"));
    EXPECT_EQ(fake_mac::foundation().activities.size(), 1U) << "the system does not slow the program";
    program.reset();
    EXPECT_THAT(fake_mac::foundation().activities, IsEmpty());
}

TEST_F(MacProgramTest, WithoutTrustTheSystemAsksOnceAndTheSetupWindowIsShown) {
    system.isTrusted = false;
    launch();
    EXPECT_THAT(takeSteps(), ElementsAre("show setup"));
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_THAT(listedWindows(), IsEmpty());
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
    advance(Seconds(10));
    EXPECT_EQ(system.promptCount, 1);
    EXPECT_THAT(takeLog(), IsEmpty()) << "what never was active is not suspended";
}

TEST_F(MacProgramTest, WhatAWorkerDoesForTheProgramLeavesNothingBehind) {
    NSObject* __weak left = nil;
    bool wasThere = false;
    bool isLeft = true;
    program->adapter.platform().backgroundWork.run([&] {
        NSObject* __autoreleasing const autoreleased = [[NSObject alloc] init];
        left = autoreleased;
        wasThere = left != nil;
    });
    program->adapter.platform().backgroundWork.run([&] { isLeft = left != nil; });
    advance(Seconds(0));
    EXPECT_TRUE(wasThere);
    EXPECT_FALSE(isLeft);
}

TEST_F(MacProgramTest, WhatTheSystemTellsTheApplicationReachesTheProgramWhileItLives) {
    NSApplication* const application = NSApplication.sharedApplication;
    EXPECT_TRUE([application reopenWithVisibleWindows:NO]) << "before it was launched";
    EXPECT_TRUE(chooseSettingsInTheApplicationsMenu());
    EXPECT_THAT(takeSteps(), ElementsAre("show progress"));
    launch();
    EXPECT_THAT(takeSteps(), ElementsAre("show settings", "close progress"));
    EXPECT_TRUE([application reopenWithVisibleWindows:NO]);
    EXPECT_TRUE(chooseSettingsInTheApplicationsMenu());
    EXPECT_THAT(takeSteps(), ElementsAre("show setup", "show settings"));
    AppDelegate* const delegate = std::exchange(program->told, nullptr);
    EXPECT_TRUE([application reopenWithVisibleWindows:NO]);
    EXPECT_TRUE(chooseSettingsInTheApplicationsMenu());
    [application finishLaunching];
    [application willTerminate];
    EXPECT_THAT(takeSteps(), IsEmpty());
    EXPECT_TRUE(keyboard.hasTap());
    program->told = delegate;
    static_cast<void>(takeLog());
    [application willTerminate];
    EXPECT_FALSE(keyboard.hasTap());
    [application willTerminate];
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);
    EXPECT_THAT(takeLog(), ElementsAre("input: Event tap removed", "windows: Observation stopped"));
}

TEST_F(MacProgramTest, AKeyPressAndItsReleaseRaiseTheWindowBehindEvenIfItIsHiddenAndMinimized) {
    accessibility.element(mailWindow).attributes["AXMinimized"] = true;
    running(mail).hidden = YES;
    launch();
    openSwitcher();
    EXPECT_THAT(panel().calls, Contains("orderFrontRegardless"));
    EXPECT_EQ(press(optionReleased), Outcome::reachedApplication);
    EXPECT_FALSE(services().switcher().isVisible());
    EXPECT_EQ(panel().calls.back(), "orderOut");
    auto expected = raising();
    expected.insert(expected.begin(), of(mailWindow, "set AXMinimized to false", "0.5"));
    EXPECT_EQ(accessibility.takeRequests(), expected);
    EXPECT_FALSE(running(mail).hidden);
    EXPECT_TRUE(running(mail).active);
    advance(Seconds(0.5));
    EXPECT_THAT(accessibility.takeRequests(),
                IsSupersetOf({of(mailWindow, "copy AXMain", "0.5"), of(mailWindow, "copy AXFocused", "0.5")}));
    EXPECT_THAT(listedWindows(), ElementsAre(88U, 77U));
    EXPECT_THAT(takeLog(), Not(Contains(StartsWith("activation: ")))) << "all went as it should";
}

TEST_F(MacProgramTest, AClickElsewhereSwitchesNowhere) {
    launch();
    openSwitcher();
    [NSEvent pressElsewhere:NSEventTypeLeftMouseDown];
    advance(Seconds(0));
    EXPECT_FALSE(services().switcher().isVisible());
    EXPECT_EQ(panel().calls.back(), "orderOut");
    EXPECT_EQ(press(optionReleased), Outcome::reachedApplication);
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
}

TEST_F(MacProgramTest, AnApplicationThatHangsIsWaitedForWithinItsTimeouts) {
    accessibility.application(mail).hangs = true;
    launch();
    EXPECT_NEAR(accessibility.secondsWaited(), 0.5 + 0.35, 1e-6) << "one registration, and one snapshot";
    EXPECT_THAT(listedWindows(), ElementsAre(77U));
    EXPECT_THAT(accessibility.takeRequests(), Contains(of(mailElement, "copy AXWindows", "0.35")));
    accessibility.application(mail).hangs = false;
    [NSWorkspace.sharedWorkspace post:NSWorkspaceDidActivateApplicationNotification application:running(notes)];
    advance(Seconds(0.2));
    EXPECT_THAT(listedWindows(), ElementsAre(77U, 88U));

    openSwitcher();
    accessibility.application(mail).hangs = true;
    const double before = accessibility.secondsWaited();
    press(optionReleased);
    EXPECT_EQ(accessibility.takeRequests(), raising());
    EXPECT_NEAR(accessibility.secondsWaited() - before, 2.5, 1e-6) << "half a second for each of five requests";
    advance(Seconds(4));
    EXPECT_EQ(std::ranges::count(accessibility.takeRequests(), raising().front()), 3) << "after the first";
    EXPECT_THAT(takeLog(), Contains("activation: Could not confirm activation of window 88 in Mail"));
    EXPECT_TRUE(keyboard.isTapEnabled());
}

TEST_F(MacProgramTest, TheMenuBarShowsHowTheProgramIsDoingAndRepairsIt) {
    launch();
    const Strings ready{"macwindow.on.rectangle", "Ferrowyn", "Ready", "Open Switcher"};
    EXPECT_EQ(shownHealth(), ready);

    system.isSecureInputEnabled = true;
    advance(Seconds(2));
    EXPECT_THAT(shownHealth(),
                ElementsAre("keyboard.badge.ellipsis", "Ferrowyn — secure input is active, shortcut paused",
                            "Secure input active — shortcut paused", "Waiting for the other app to release it"));
    EXPECT_FALSE(choose("Waiting for the other app to release it"));
    system.isSecureInputEnabled = false;
    advance(Seconds(2));
    EXPECT_EQ(shownHealth(), ready);

    openSwitcher();
    timeOutTapUntilItIsGivenUp();
    EXPECT_FALSE(services().switcher().isVisible()) << "a session without a keyboard cannot be ended by it";
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_THAT(takeLog(), Contains("input: Global shortcut disabled after repeated tap timeouts"));
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);
    EXPECT_THAT(shownHealth(), ElementsAre("exclamationmark.triangle", "Ferrowyn — shortcut disabled by the system",
                                           "Shortcut disabled by the system", "Re-enable Shortcut"));
    keyboard.refusesTaps = true;
    EXPECT_TRUE(choose("Re-enable Shortcut"));
    EXPECT_THAT(shownHealth(), ElementsAre("exclamationmark.triangle", "Ferrowyn — Accessibility access was revoked",
                                           "Accessibility access was revoked", "Re-enable Shortcut"));
    keyboard.refusesTaps = false;
    EXPECT_TRUE(choose("Re-enable Shortcut"));
    EXPECT_EQ(shownHealth(), ready);
    EXPECT_EQ(press(optionTab), Outcome::swallowed);
}

TEST_F(MacProgramTest, EachRowOfTheMenuDoesWhatItSays) {
    launch();
    EXPECT_TRUE(choose("Grouped"));
    EXPECT_EQ(text([NSUserDefaults.standardUserDefaults objectForKey:@"switcher.layout"]), "grouped");
    EXPECT_THAT(shownRows(), ElementsAre("header", "-", "Open Switcher", "2 windows tracked", "-", "LAYOUT", "List",
                                         "Grouped", "Grid", "-", "Launch at Login", "Settings…", "Setup Guide…",
                                         "About Ferrowyn", "-", "Quit Ferrowyn"));
    EXPECT_EQ(rowTitled("Grouped").state, NSControlStateValueOn);
    EXPECT_EQ(rowTitled("List").state, NSControlStateValueOff);
    EXPECT_EQ(text(rowTitled("Open Switcher").attributedTitle.string), "Open Switcher   ⌥⇥");
    EXPECT_TRUE(choose("Settings…"));
    EXPECT_TRUE(choose("Setup Guide…"));
    EXPECT_TRUE(choose("About Ferrowyn"));
    EXPECT_THAT(takeSteps(), ElementsAre("show settings", "show setup", "show about"));
    EXPECT_TRUE(choose("Open Switcher"));
    EXPECT_THAT(panel().calls, Contains("orderFrontRegardless"));
    EXPECT_TRUE(choose("Quit Ferrowyn"));
    EXPECT_THAT(NSApplication.sharedApplication.calls, Contains("terminate"));
}

TEST_F(MacProgramTest, SecureInputThatDisablesTheTapEndsTheSessionAndTheTapComesBackAtOnce) {
    launch();
    openSwitcher();
    system.isSecureInputEnabled = true;
    keyboard.disableTap(kCGEventTapDisabledByUserInput);
    EXPECT_FALSE(keyboard.isTapEnabled());
    advance(Seconds(0));
    EXPECT_TRUE(keyboard.isTapEnabled());
    EXPECT_FALSE(services().switcher().isVisible());
    EXPECT_THAT(takeLog(), Contains("input: Re-enabling event tap (user-input transition)"));
    EXPECT_EQ(press({.keyCode = 0}), Outcome::reachedApplication);
    openSwitcher();
}

TEST_F(MacProgramTest, TrustThatIsRevokedSuspendsAndTrustThatReturnsActivates) {
    launch();
    openSwitcher();
    setTrusted(false);
    EXPECT_FALSE(keyboard.hasTap());
    EXPECT_FALSE(services().switcher().isVisible());
    EXPECT_THAT(listedWindows(), IsEmpty());
    EXPECT_THAT(shownHealth(), ElementsAre("exclamationmark.triangle", "Ferrowyn — Accessibility access required",
                                           "Accessibility access required", "Grant Accessibility Access…"));
    EXPECT_FALSE(choose("Open Switcher"));
    EXPECT_TRUE(choose("Grant Accessibility Access…"));
    EXPECT_THAT(takeSteps(), ElementsAre("show setup"));
    EXPECT_THAT(takeLog(), Contains("permissions: Services suspended — Accessibility trust missing"));
    EXPECT_EQ(press(optionTab), Outcome::reachedApplication);
    EXPECT_EQ(system.promptCount, 0) << "the user has just taken it away";

    setTrusted(true);
    EXPECT_TRUE(keyboard.isTapEnabled());
    EXPECT_THAT(listedWindows(), ElementsAre(77U, 88U));
    EXPECT_THAT(takeLog(), Contains("permissions: Services active"));
    openSwitcher();
}

TEST_F(MacProgramTest, TheLoginItemIsRegisteredAndUnregisteredFromTheMenuAndARefusalIsExplained) {
    SMAppService* const service = SMAppService.mainAppService;
    service.status = SMAppServiceStatusRequiresApproval;
    launch();
    EXPECT_EQ(rowTitled("Launch at Login").state, NSControlStateValueOn);
    EXPECT_EQ(text(rowTitled("Launch at Login").toolTip), macTexts().loginItemApproval);
    EXPECT_TRUE(choose("Launch at Login"));
    EXPECT_TRUE(choose("Launch at Login"));
    EXPECT_THAT(service.calls, ElementsAre("unregister", "register"));
    service.nextError = [[NSError alloc] initWithDomain:@"SMAppServiceErrorDomain" code:111 text:@"Invalid signature"];
    EXPECT_TRUE(choose("Launch at Login"));
    EXPECT_THAT(takeLog(), Contains("permissions: Launch at login toggle failed: Invalid signature"));
    EXPECT_TRUE(choose("Grid")) << "which makes the menu anew";
    EXPECT_EQ(text(rowTitled("Launch at Login").toolTip), macTexts().loginItemRefused);
    EXPECT_EQ(rowTitled("Launch at Login").state, NSControlStateValueOn);
    EXPECT_TRUE(rowTitled("Launch at Login").enabled) << "the user may try again";
}

}  // namespace

}  // namespace ferrowyn::test
