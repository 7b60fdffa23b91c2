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
    static void install(const std::string& name, NSDictionary* info) {
        const std::string path = "/Applications/" + name + ".app";
        fake_mac::foundation().bundlesByPath[path] = [[NSBundle alloc] initWithPath:fake_mac::string(path)
                                                                         identifier:nil
                                                                               info:info];
    }

    MacWorkspace workspace;
    [[nodiscard]] static NSWorkspace* shared() { return NSWorkspace.sharedWorkspace; }
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
    EXPECT_FALSE(all[1].bundleIdentifier || all[1].localizedName || all[1].bundleURL);
}

TEST_F(MacDesktopTest, OneApplicationIsFoundByItsProcessAndTheFrontmostMayBeNone) {
    NSRunningApplication* const accessory = mail();
    accessory.activationPolicy = NSApplicationActivationPolicyAccessory;
    start(accessory, helper());
    const auto found = workspace.runningApplication(512);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->activationPolicy, ActivationPolicy::accessory);
    EXPECT_FALSE(workspace.runningApplication(99));
    EXPECT_FALSE(workspace.frontmostPid());
    shared().frontmostApplication = accessory;
    EXPECT_EQ(workspace.frontmostPid(), 512);
}

TEST_F(MacDesktopTest, EachNotificationOfTheWorkspaceIsAnEventWithItsApplication) {
    struct Row {
        NSNotificationName name;
        Kind kind;
        NSNotificationCenter* center;
        NSDictionary* userInfo;
        std::optional<Pid> pid;
    };
    NSNotificationCenter* const center = shared().notificationCenter;
    NSDictionary* const aboutMail = @{NSWorkspaceApplicationKey : mail()};
    std::vector<WorkspaceEvent> events;
    const auto subscription = workspace.observe([&](const WorkspaceEvent& event) { events.push_back(event); });
    for (const auto& row : std::vector<Row>{
             {NSWorkspaceDidLaunchApplicationNotification, Kind::didLaunch, center, aboutMail, 512},
             {NSWorkspaceDidTerminateApplicationNotification, Kind::didTerminate, center, aboutMail, 512},
             {NSWorkspaceDidActivateApplicationNotification, Kind::didActivate, center, aboutMail, 512},
             {NSWorkspaceDidHideApplicationNotification, Kind::didHide, center, aboutMail, 512},
             {NSWorkspaceDidUnhideApplicationNotification, Kind::didUnhide, center, aboutMail, 512},
             // What is no application names none.
             {NSWorkspaceDidLaunchApplicationNotification, Kind::didLaunch, center,
              @{NSWorkspaceApplicationKey : @"Mail"}, std::nullopt},
             {NSWorkspaceActiveSpaceDidChangeNotification, Kind::activeSpaceDidChange, center,
              [NSDictionary dictionary], std::nullopt},
             {NSApplicationDidChangeScreenParametersNotification, Kind::screenParametersDidChange,
              NSNotificationCenter.defaultCenter, nil, std::nullopt},
         }) {
        SCOPED_TRACE(text(row.name));
        events.clear();
        [row.center post:row.name userInfo:row.userInfo];
        ASSERT_EQ(events.size(), 1U);
        EXPECT_EQ(events[0].kind, row.kind);
        EXPECT_EQ(events[0].application ? std::optional(events[0].application->pid) : std::nullopt, row.pid);
    }
}

TEST_F(MacDesktopTest, AnInstalledApplicationIsNamedByItsBundle) {
    const std::vector<std::pair<NSDictionary*, std::optional<std::string>>> table{
        {@{@"CFBundleDisplayName" : @"Post", @"CFBundleName" : @"Mail"}, "Post"},
        {@{@"CFBundleDisplayName" : @1, @"CFBundleName" : @"Mail"}, "Mail"},
        // An empty name is one.
        {@{@"CFBundleDisplayName" : @"", @"CFBundleName" : @"Mail"}, ""},
        {[NSDictionary dictionary], std::nullopt},
    };
    for (const auto& [info, name] : table) {
        install("Mail", info);
        EXPECT_EQ(workspace.installedApplicationName("com.example.Mail"), name);
    }
    EXPECT_EQ(workspace.installedApplicationPath("com.example.Mail"), "/Applications/Mail.app");
    EXPECT_FALSE(workspace.installedApplicationName("com.example.Gone"));
    EXPECT_FALSE(workspace.installedApplicationPath("com.example.Gone"));
    EXPECT_FALSE(workspace.installedApplicationName("com.example.Broken")) << "there is no bundle at its place";
}

TEST_F(MacDesktopTest, AddressesAndPagesOfTheSettingsAreOpenedByTheWorkspace) {
    EXPECT_TRUE(workspace.open("https://ferrowyn.example/"));
    EXPECT_FALSE(workspace.open("")) << "no address";
    EXPECT_FALSE(workspace.open("no address at all"));
    EXPECT_TRUE(workspace.openSettings(SettingsPage::accessibility));
    EXPECT_TRUE(workspace.openSettings(SettingsPage::loginItems));
    EXPECT_THAT(shared().openedAddresses,
                ElementsAre("https://ferrowyn.example/",
                            "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility",
                            "x-apple.systempreferences:com.apple.LoginItems-Settings.extension"));
    shared().refusesToOpen = YES;
    EXPECT_FALSE(workspace.open("https://example.org/"));
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
    fake_mac::appKit().screens = @[ first, second ];
    fake_mac::appKit().mainScreen = second;
    const MacScreens screens;
    EXPECT_THAT(screens.all(), ElementsAre(Screen{{0, 0, 1440, 900}, {0, 70, 1440, 805}},
                                           Screen{{-1920, -180, 1920, 1080}, {-1920, -180, 1920, 1055}}));
    EXPECT_EQ(screens.main()->frame, (Rect{-1920, -180, 1920, 1080}));
    fake_mac::appKit().mainScreen = nil;
    EXPECT_EQ(screens.main()->frame, (Rect{0, 0, 1440, 900}));
    fake_mac::appKit().screens = nil;
    EXPECT_TRUE(screens.all().empty());
    EXPECT_FALSE(screens.main());
}

TEST_F(MacDesktopTest, ThePointersPlaceIsTheSystems) {
    fake_mac::appKit().mouseLocation = NSMakePoint(-12.5, 640);
    EXPECT_EQ(MacPointer().location(), (Point{-12.5, 640}));
}

TEST_F(MacDesktopTest, PressesOfEveryButtonElsewhereAreToldUntilTheTokenIsDropped) {
    MacPointer pointer;
    int count = 0;
    auto subscription = pointer.observeClicksElsewhere([&] { ++count; });
    EXPECT_EQ(fake_mac::appKit().lastMonitorMask, 0x200000AULL);
    for (const auto type :
         {NSEventTypeLeftMouseDown, NSEventTypeRightMouseDown, NSEventTypeOtherMouseDown, NSEventTypeMouseMoved}) {
        [NSEvent pressElsewhere:type];
    }
    EXPECT_EQ(count, 3);
    subscription.reset();
    [NSEvent pressElsewhere:NSEventTypeLeftMouseDown];
    EXPECT_EQ(count, 3);
    fake_mac::appKit().refusesMonitors = true;
    EXPECT_FALSE(pointer.observeClicksElsewhere([] {})) << "what was not made is not taken away";
}

TEST_F(MacDesktopTest, IconsAreDrawnInTheSizeThatIsAskedFor) {
    NSRunningApplication* const application = mail();
    start(application, helper());
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
    EXPECT_THAT(shared().iconPaths, ElementsAre("/Applications/Mail.app"));
    ASSERT_EQ(fake_mac::appKit().drawnIconSizes.size(), 3U);
    for (const NSSize& size : fake_mac::appKit().drawnIconSizes) {
        EXPECT_EQ(size.width, 32);
        EXPECT_EQ(size.height, 32);
    }
    EXPECT_EQ(application.icon.size.width, 512) << "others share the icon";
    EXPECT_EQ(application.icon.size.height, 512);
    EXPECT_FALSE(icons.iconForProcess(513)) << "gives no icon";
    EXPECT_FALSE(icons.iconForProcess(99)) << "has exited";
}

TEST_F(MacDesktopTest, TheSystemsColoursAreThoseOfTheAppearance) {
    auto& colors = fake_mac::appKit().systemColors;
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
        EXPECT_TRUE(looks.symbol("star", 9, weight, 1));
        const auto& drawn = fake_mac::appKit().drawnSymbols.back();
        EXPECT_EQ(drawn.name, "star");
        EXPECT_EQ(drawn.pointSize, 9);
        EXPECT_EQ(drawn.weight, number);
    }
    EXPECT_FALSE(looks.symbol("no.such.symbol", 14, SymbolWeight::medium, 1));
}

}  // namespace

}  // namespace ferrowyn::test
