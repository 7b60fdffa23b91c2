#include <gmock/gmock.h>

#include "platform/macos/mac_screens.h"
#include "platform/macos/mac_system_looks.h"
#include "platform/macos/mac_workspace.h"
#include "tests/macos/objc/mac_test.h"

namespace ferrowyn::test {

namespace {

using testing::ElementsAre;
using Kind = WorkspaceEvent::Kind;

class MacDesktopTest : public MacTest {
protected:
    static NSRunningApplication* mail() {
        NSRunningApplication* const application = [[NSRunningApplication alloc] initWithPid:512];
        application.bundleIdentifier = @"com.example.Mail";
        application.localizedName = @"Mail — Große Post";
        application.bundleURL = [NSURL URLWithString:@"file:///Applications/Mail.app"];
        application.icon = [NSImage icon];
        return application;
    }
    static NSRunningApplication* helper() {
        NSRunningApplication* const application = [[NSRunningApplication alloc] initWithPid:513];
        application.activationPolicy = NSApplicationActivationPolicyProhibited;
        application.terminated = YES;
        return application;
    }
    static void start(NSRunningApplication* first, NSRunningApplication* second) {
        NSWorkspace.sharedWorkspace.runningApplications = @[ first, second ];
    }
    static NSBundle* bundle(NSString* name, NSDictionary* info) {
        return [[NSBundle alloc]
            initWithPath:[[@"/Applications/" stringByAppendingString:name] stringByAppendingString:@".app"]
              identifier:nil
                    info:info];
    }
    Subscription observe() {
        return workspace.observe([this](const WorkspaceEvent& event) { events.push_back(event); });
    }

    MacWorkspace workspace;
    std::vector<WorkspaceEvent> events;
};

TEST_F(MacDesktopTest, RunningApplicationsAreDescribedWhole) {
    start(mail(), helper());
    const auto all = workspace.runningApplications();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].pid, 512);
    EXPECT_FALSE(all[0].isTerminated);
    EXPECT_EQ(all[0].activationPolicy, ActivationPolicy::regular);
    EXPECT_EQ(all[0].bundleIdentifier, "com.example.Mail");
    EXPECT_EQ(all[0].localizedName, "Mail — Große Post");
    EXPECT_EQ(all[0].bundleURL, "/Applications/Mail.app");
    EXPECT_EQ(all[1].pid, 513);
    EXPECT_TRUE(all[1].isTerminated);
    EXPECT_EQ(all[1].activationPolicy, ActivationPolicy::prohibited);
    EXPECT_FALSE(all[1].bundleIdentifier);
    EXPECT_FALSE(all[1].localizedName);
    EXPECT_FALSE(all[1].bundleURL);
}

TEST_F(MacDesktopTest, OneApplicationIsFoundByItsProcess) {
    NSRunningApplication* const accessory = mail();
    accessory.activationPolicy = NSApplicationActivationPolicyAccessory;
    start(accessory, helper());
    const auto found = workspace.runningApplication(512);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->activationPolicy, ActivationPolicy::accessory);
    EXPECT_FALSE(workspace.runningApplication(99));
}

TEST_F(MacDesktopTest, TheFrontmostApplicationMayBeNone) {
    EXPECT_FALSE(workspace.frontmostPid());
    NSWorkspace.sharedWorkspace.frontmostApplication = mail();
    EXPECT_EQ(workspace.frontmostPid(), 512);
}

TEST_F(MacDesktopTest, EachNotificationOfTheWorkspaceIsAnEventWithItsApplication) {
    const auto subscription = observe();
    const std::vector<std::pair<NSNotificationName, Kind>> table{
        {NSWorkspaceDidLaunchApplicationNotification, Kind::didLaunch},
        {NSWorkspaceDidTerminateApplicationNotification, Kind::didTerminate},
        {NSWorkspaceDidActivateApplicationNotification, Kind::didActivate},
        {NSWorkspaceDidHideApplicationNotification, Kind::didHide},
        {NSWorkspaceDidUnhideApplicationNotification, Kind::didUnhide},
    };
    for (const auto& [name, kind] : table) {
        events.clear();
        [NSWorkspace.sharedWorkspace post:name application:mail()];
        ASSERT_EQ(events.size(), 1U) << text(name);
        EXPECT_EQ(events[0].kind, kind) << text(name);
        ASSERT_TRUE(events[0].application) << text(name);
        EXPECT_EQ(events[0].application->pid, 512);
    }
}

TEST_F(MacDesktopTest, SpacesAndScreensChangeWithoutAnApplication) {
    const auto subscription = observe();
    [NSWorkspace.sharedWorkspace post:NSWorkspaceActiveSpaceDidChangeNotification application:nil];
    [NSNotificationCenter.defaultCenter post:NSApplicationDidChangeScreenParametersNotification userInfo:nil];
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].kind, Kind::activeSpaceDidChange);
    EXPECT_FALSE(events[0].application);
    EXPECT_EQ(events[1].kind, Kind::screenParametersDidChange);
    EXPECT_FALSE(events[1].application);
}

TEST_F(MacDesktopTest, ANotificationAboutSomethingElseThanAnApplicationNamesNone) {
    const auto subscription = observe();
    [NSWorkspace.sharedWorkspace.notificationCenter post:NSWorkspaceDidLaunchApplicationNotification
                                                userInfo:@{NSWorkspaceApplicationKey : @"Mail"}];
    ASSERT_EQ(events.size(), 1U);
    EXPECT_FALSE(events[0].application);
}

TEST_F(MacDesktopTest, AnInstalledApplicationIsNamedByItsBundle) {
    fake_mac::installBundle(bundle(@"Mail", @{@"CFBundleDisplayName" : @"Post", @"CFBundleName" : @"Mail"}));
    EXPECT_EQ(workspace.installedApplicationName("com.example.Mail"), "Post");
    EXPECT_EQ(workspace.installedApplicationPath("com.example.Mail"), "/Applications/Mail.app");
    fake_mac::installBundle(bundle(
        @"Mail",
        @{@"CFBundleDisplayName" : @1,
          @"CFBundleName" : @"Mail"}));
    EXPECT_EQ(workspace.installedApplicationName("com.example.Mail"), "Mail");
    fake_mac::installBundle(bundle(@"Mail", @{@"CFBundleDisplayName" : @"", @"CFBundleName" : @"Mail"}));
    EXPECT_EQ(workspace.installedApplicationName("com.example.Mail"), "") << "an empty name is one";
}

TEST_F(MacDesktopTest, AnApplicationThatIsNotInstalledOrHasNoNameIsNotNamed) {
    EXPECT_FALSE(workspace.installedApplicationName("com.example.Gone"));
    EXPECT_FALSE(workspace.installedApplicationPath("com.example.Gone"));
    fake_mac::installBundle(bundle(@"Unnamed", [NSDictionary dictionary]));
    EXPECT_FALSE(workspace.installedApplicationName("com.example.Unnamed"));
    EXPECT_FALSE(workspace.installedApplicationName("com.example.Broken")) << "there is no bundle at its place";
}

TEST_F(MacDesktopTest, AddressesAreOpenedByTheWorkspace) {
    EXPECT_TRUE(workspace.open("https://ferrowyn.example/"));
    EXPECT_FALSE(workspace.open("")) << "no address";
    EXPECT_FALSE(workspace.open("no address at all"));
    NSWorkspace.sharedWorkspace.refusesToOpen = YES;
    EXPECT_FALSE(workspace.open("https://example.org/"));
    EXPECT_THAT(NSWorkspace.sharedWorkspace.openedAddresses,
                ElementsAre("https://ferrowyn.example/", "https://example.org/"));
}

TEST_F(MacDesktopTest, APageOfTheSettingsIsOpenedByItsAddress) {
    EXPECT_TRUE(workspace.openSettings(SettingsPage::accessibility));
    EXPECT_TRUE(workspace.openSettings(SettingsPage::loginItems));
    EXPECT_THAT(NSWorkspace.sharedWorkspace.openedAddresses,
                ElementsAre("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility",
                            "x-apple.systempreferences:com.apple.LoginItems-Settings.extension"));
    NSWorkspace.sharedWorkspace.refusesToOpen = YES;
    EXPECT_FALSE(workspace.openSettings(SettingsPage::loginItems));
}

TEST_F(MacDesktopTest, AnApplicationIsUnhiddenAndActivatedWithoutOptions) {
    NSRunningApplication* const application = mail();
    application.hidden = YES;
    start(application, helper());
    MacRunningApplicationControl control;
    EXPECT_TRUE(control.isHidden(512));
    EXPECT_FALSE(control.isActive(512));
    control.unhide(512);
    control.activate(512);
    EXPECT_FALSE(control.isHidden(512));
    EXPECT_TRUE(control.isActive(512));
    EXPECT_EQ(application.lastOptions, NSApplicationActivationOptions{});
    control.unhide(99);
    control.activate(99);
    EXPECT_FALSE(control.isHidden(99));
    EXPECT_FALSE(control.isActive(99));
}

TEST_F(MacDesktopTest, ScreensKeepTheCoordinatesThatGrowUpward) {
    // The second screen stands to the left and below the first.
    NSScreen* const first = [NSScreen screenWithFrame:NSMakeRect(0, 0, 1440, 900)
                                         visibleFrame:NSMakeRect(0, 70, 1440, 805)];
    NSScreen* const second = [NSScreen screenWithFrame:NSMakeRect(-1920, -180, 1920, 1080)
                                          visibleFrame:NSMakeRect(-1920, -180, 1920, 1055)];
    [NSScreen setScreens:@[ first, second ] main:second];
    const MacScreens screens;
    EXPECT_THAT(screens.all(), ElementsAre(Screen{{0, 0, 1440, 900}, {0, 70, 1440, 805}},
                                           Screen{{-1920, -180, 1920, 1080}, {-1920, -180, 1920, 1055}}));
    EXPECT_EQ(screens.main()->frame, (Rect{-1920, -180, 1920, 1080}));
    [NSScreen setScreens:@[ first, second ] main:nil];
    EXPECT_EQ(screens.main()->frame, (Rect{0, 0, 1440, 900}));
    [NSScreen setScreens:[NSArray array] main:nil];
    EXPECT_TRUE(screens.all().empty());
    EXPECT_FALSE(screens.main());
}

TEST_F(MacDesktopTest, ThePointersPlaceIsTheSystems) {
    [NSEvent setMouseLocation:NSMakePoint(-12.5, 640)];
    EXPECT_EQ(MacPointer().location(), (Point{-12.5, 640}));
}

TEST_F(MacDesktopTest, PressesOfEveryButtonElsewhereAreToldUntilTheTokenIsDropped) {
    MacPointer pointer;
    int count = 0;
    auto subscription = pointer.observeClicksElsewhere([&] { ++count; });
    EXPECT_EQ([NSEvent lastMonitorMask], 0x200000AULL);
    [NSEvent pressElsewhere:NSEventTypeLeftMouseDown];
    [NSEvent pressElsewhere:NSEventTypeRightMouseDown];
    [NSEvent pressElsewhere:NSEventTypeOtherMouseDown];
    EXPECT_EQ(count, 3);
    [NSEvent pressElsewhere:NSEventTypeMouseMoved];
    EXPECT_EQ(count, 3);
    subscription.reset();
    EXPECT_EQ([NSEvent monitorCount], 0U);
    [NSEvent pressElsewhere:NSEventTypeLeftMouseDown];
    EXPECT_EQ(count, 3);
}

TEST_F(MacDesktopTest, AMonitorThatTheSystemRefusesIsNotTakenAwayAgain) {
    [NSEvent setRefusesMonitors:YES];
    MacPointer pointer;
    auto subscription = pointer.observeClicksElsewhere([] {});
    EXPECT_FALSE(subscription);
}

TEST_F(MacDesktopTest, IconsAreDrawnInTheSizeThatIsAskedFor) {
    start(mail(), helper());
    MacIconSource icons;
    for (const auto& icon : {icons.iconForFile("/Applications/Mail.app"), icons.iconForProcess(512),
                             icons.genericApplicationIcon("Mail")}) {
        ASSERT_TRUE(icon);
        const PixelBuffer drawn = icon->render(48);
        EXPECT_EQ(drawn.width, 48);
        EXPECT_EQ(drawn.height, 48);
        ASSERT_EQ(drawn.pixels.size(), 48U * 48U);
        EXPECT_EQ(drawn.pixels[0], 0xFF000000U);
        EXPECT_EQ(drawn.pixels[47], 0xFF002F00U) << "the last of the first row";
        EXPECT_EQ(drawn.pixels[5 * 48 + 3], 0xFF000305U);
        EXPECT_EQ(drawn.pixels[48 * 48 - 1], 0xFF002F2FU);
    }
    EXPECT_EQ(NSGraphicsContext.currentContext, nil) << "what was drawn into before is again";
    EXPECT_THAT(NSWorkspace.sharedWorkspace.iconPaths, ElementsAre("/Applications/Mail.app"));
    ASSERT_EQ(fake_mac::drawnIconSizes().size(), 3U);
    for (const NSSize& size : fake_mac::drawnIconSizes()) {
        EXPECT_EQ(size.width, 32);
        EXPECT_EQ(size.height, 32);
    }
}

TEST_F(MacDesktopTest, AnIconThatOthersShareKeepsItsSize) {
    NSRunningApplication* const application = mail();
    start(application, helper());
    const auto size = application.icon.size;
    EXPECT_TRUE(MacIconSource().iconForProcess(512));
    EXPECT_EQ(application.icon.size.width, size.width);
    EXPECT_EQ(application.icon.size.height, size.height);
}

TEST_F(MacDesktopTest, TheSystemsColoursAreThoseOfTheAppearance) {
    auto& colors = fake_mac::systemColors();
    colors["NSAppearanceNameAqua systemOrange"] = {1, 0.5, 0};
    colors["NSAppearanceNameDarkAqua systemOrange"] = {1, 0.6, 0.2};
    colors["NSAppearanceNameAqua systemBlue"] = {0, 0, 1};
    colors["NSAppearanceNameAqua systemPurple"] = {-0.1, 0.4, 1.2};
    colors["NSAppearanceNameAqua systemYellow"] = {1, 0.8, 0};
    const MacSystemLooks looks;
    using Color = SystemLooks::Color;
    EXPECT_EQ(looks.color(Color::orange, ColorScheme::light), (RgbColor{255, 128, 0}));
    EXPECT_EQ(looks.color(Color::orange, ColorScheme::dark), (RgbColor{255, 153, 51}));
    EXPECT_EQ(looks.color(Color::blue, ColorScheme::light), (RgbColor{0, 0, 255}));
    EXPECT_EQ(looks.color(Color::purple, ColorScheme::light), (RgbColor{0, 102, 255})) << "outside of its space";
    EXPECT_EQ(looks.color(Color::yellow, ColorScheme::light), (RgbColor{255, 204, 0}));
}

TEST_F(MacDesktopTest, SymbolsOfTheSystemAreDrawnInTheirOwnProportions) {
    const MacSystemLooks looks;
    const auto symbol = looks.symbol("star.fill", 14, SymbolWeight::medium, 2);
    ASSERT_TRUE(symbol.has_value());
    EXPECT_EQ(symbol->width, 32);
    EXPECT_EQ(symbol->height, 28);
    EXPECT_EQ(symbol->pixels.size(), 32U * 28U);
    EXPECT_EQ(symbol->pixels.back(), 0x80000000U);
    const std::vector<std::pair<SymbolWeight, double>> weights{{SymbolWeight::light, -0.4},
                                                               {SymbolWeight::regular, 0},
                                                               {SymbolWeight::medium, 0.23},
                                                               {SymbolWeight::semibold, 0.3}};
    for (const auto& [weight, number] : weights) {
        fake_mac::drawnSymbols().clear();
        EXPECT_TRUE(looks.symbol("star", 9, weight, 1));
        ASSERT_EQ(fake_mac::drawnSymbols().size(), 1U);
        EXPECT_EQ(fake_mac::drawnSymbols()[0].name, "star");
        EXPECT_EQ(fake_mac::drawnSymbols()[0].pointSize, 9);
        EXPECT_EQ(fake_mac::drawnSymbols()[0].weight, number);
    }
    EXPECT_FALSE(looks.symbol("no.such.symbol", 14, SymbolWeight::medium, 1));
}

TEST_F(MacDesktopTest, AProcessThatGivesNoIconOrHasExitedHasNone) {
    start(mail(), helper());
    MacIconSource icons;
    EXPECT_FALSE(icons.iconForProcess(513));
    EXPECT_FALSE(icons.iconForProcess(99));
}

}  // namespace

}  // namespace ferrowyn::test
