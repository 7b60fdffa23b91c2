#include <gmock/gmock.h>

#include "platform/macos/mac_accessibility_notifications.h"
#include "platform/macos/mac_application.h"
#include "platform/macos/mac_background_work.h"
#include "platform/macos/mac_system_services.h"
#include "tests/macos/objc/fakes/services.h"
#include "tests/macos/objc/mac_test.h"

namespace ferrowyn::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacSystemTest : public MacTest {
protected:
    static void startFrom(NSString* path, NSString* identifier, NSDictionary* info) {
        fake_mac::setMainBundle([[NSBundle alloc] initWithPath:path identifier:identifier info:info]);
    }
    static void post(NSNotificationName name) { [NSNotificationCenter.defaultCenter post:name userInfo:nil]; }
};

/// Workers whose work is done when it is handed over.
class PromptWorkers final : public BackgroundWork {
public:
    void run(std::function<void()> work) override { work(); }
    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override {
        for (std::size_t index = 0; index < count; ++index) {
            iteration(index);
        }
    }
};

TEST_F(MacSystemTest, TheApplicationsMenuHasTheSettingsAndTheEnd) {
    NSApplication* const application = NSApplication.sharedApplication;
    int opened = 0;
    {
        const MacApplicationMenu menu({.settings = "Einstellungen …", .quit = "Ferrowyn beenden"}, [&] { ++opened; });
        ASSERT_EQ(application.mainMenu.itemArray.count, 1U);
        NSMenu* const rows = application.mainMenu.itemArray.firstObject.submenu;
        ASSERT_EQ(rows.itemArray.count, 3U);
        NSMenuItem* const settings = rows.itemArray.firstObject;
        EXPECT_EQ(text(settings.title), "Einstellungen …");
        EXPECT_EQ(text(settings.keyEquivalent), ",");
        EXPECT_TRUE([rows choose:settings]);
        EXPECT_EQ(opened, 1);
        EXPECT_TRUE([rows.itemArray objectAtIndex:1].separatorItem);
        NSMenuItem* const quit = [rows.itemArray objectAtIndex:2];
        EXPECT_EQ(text(quit.title), "Ferrowyn beenden");
        EXPECT_EQ(text(quit.keyEquivalent), "q");
        EXPECT_TRUE([rows choose:quit]);
        EXPECT_THAT(application.calls, ElementsAre("terminate"));
    }
    EXPECT_EQ(application.mainMenu, nil);
    NSMenu* const another = [[NSMenu alloc] initWithTitle:@""];
    {
        const MacApplicationMenu menu({}, [] {});
        application.mainMenu = another;
    }
    EXPECT_EQ(application.mainMenu, another) << "which is not this one's to take away";
}

TEST_F(MacSystemTest, AWorkersTaskLeavesNothingBehind) {
    PromptWorkers workers;
    MacBackgroundWork work(workers);
    const auto before = objc_runtime::liveObjectCount();
    std::vector<std::size_t> iterations;
    work.run([] {
        NSObject* __autoreleasing const left = [[NSObject alloc] init];
        EXPECT_NE(left, nil);
    });
    EXPECT_EQ(objc_runtime::liveObjectCount(), before);
    work.concurrentPerform(2, [&](std::size_t index) {
        EXPECT_EQ(objc_runtime::liveObjectCount(), before) << "nor does one iteration to the next";
        NSObject* __autoreleasing const left = [[NSObject alloc] init];
        EXPECT_NE(left, nil);
        iterations.push_back(index);
    });
    EXPECT_EQ(objc_runtime::liveObjectCount(), before);
    EXPECT_THAT(iterations, ElementsAre(0U, 1U));
}

TEST_F(MacSystemTest, AProgramOutsideABundleSaysNothingOfItself) {
    const MacApplication application;
    const auto info = application.bundleInfo();
    EXPECT_FALSE(info.name);
    EXPECT_FALSE(info.shortVersion);
    EXPECT_FALSE(info.copyright);
    EXPECT_EQ(info.path, "/usr/local/bin");
    EXPECT_FALSE(info.updateHost);
    EXPECT_FALSE(info.homePage);
}

TEST_F(MacSystemTest, TheBundleSaysWhatTheProgramIs) {
    startFrom(@"/Applications/Ferrowyn.app", @"com.larkmoor.Ferrowyn", @{
        @"CFBundleName" : @"Ferrowyn",
        @"CFBundleShortVersionString" : @"1.4.0",
        @"NSHumanReadableCopyright" : @"© 2026 Larkmoor",
        @"FerrowynUpdateHost" : @"updates.ferrowyn.example",
        @"FerrowynHomePage" : @"",
    });
    const auto info = MacApplication().bundleInfo();
    EXPECT_EQ(info.name, "Ferrowyn");
    EXPECT_EQ(info.shortVersion, "1.4.0");
    EXPECT_EQ(info.copyright, "© 2026 Larkmoor");
    EXPECT_EQ(info.path, "/Applications/Ferrowyn.app");
    EXPECT_EQ(info.updateHost, "updates.ferrowyn.example");
    EXPECT_FALSE(info.homePage) << "nobody has set it";
}

TEST_F(MacSystemTest, AValueOfAnotherTypeInTheBundleCountsAsAbsent) {
    startFrom(
        @"/Applications/Ferrowyn.app", nil,
        @{@"CFBundleShortVersionString" : @2});
    EXPECT_FALSE(MacApplication().bundleInfo().shortVersion);
}

TEST_F(MacSystemTest, TheSystemsVersionIsMajorAndMinor) {
    fake_mac::setSystemVersion(14, 5, 1);
    EXPECT_EQ(MacApplication().systemVersion(), "14.5");
    EXPECT_EQ(MacApplication().ownPid(), fake_mac::ownPid);
}

TEST_F(MacSystemTest, TheYearIsThatOfTheUsersCalendar) {
    const WallTime summer{Seconds(1'782'900'000)};
    EXPECT_EQ(MacApplication().calendarYear(summer), 2026);
    fake_mac::setCalendarAhead(543);
    EXPECT_EQ(MacApplication().calendarYear(summer), 2569);
}

TEST_F(MacSystemTest, TheProgramIsNotPutToSleepWhileItHasNoWindow) {
    {
        const MacActivity activity;
        EXPECT_THAT(fake_mac::activities(), ElementsAre(0xEFFFFFULL)) << "the Mac itself may sleep";
    }
    EXPECT_THAT(fake_mac::activities(), IsEmpty());
}

TEST_F(MacSystemTest, WhatIsDoneInAPoolLeavesNothingBehind) {
    const auto before = objc_runtime::liveObjectCount();
    bool wasDone = false;
    inAutoreleasePool([&] {
        NSObject* __autoreleasing const left = [[NSObject alloc] init];
        wasDone = left != nil;
    });
    EXPECT_TRUE(wasDone);
    EXPECT_EQ(objc_runtime::liveObjectCount(), before);
}

TEST_F(MacSystemTest, ThePolicyAndTheRestAreAskedOfTheApplicationObject) {
    MacApplication application;
    application.setActivationPolicy(ActivationPolicy::accessory);
    EXPECT_EQ(NSApplication.sharedApplication.activationPolicy, NSApplicationActivationPolicyAccessory);
    application.setActivationPolicy(ActivationPolicy::prohibited);
    EXPECT_EQ(NSApplication.sharedApplication.activationPolicy, NSApplicationActivationPolicyProhibited);
    application.setActivationPolicy(ActivationPolicy::regular);
    EXPECT_EQ(NSApplication.sharedApplication.activationPolicy, NSApplicationActivationPolicyRegular);
    application.activate();
    application.terminate();
    application.revealInFileManager();
    const auto calls = [NSApplication.sharedApplication calls];
    EXPECT_THAT(calls, ElementsAre("setActivationPolicy", "setActivationPolicy", "setActivationPolicy",
                                   "activate ignoring others", "terminate"));
    EXPECT_THAT(NSWorkspace.sharedWorkspace.revealedPaths, ElementsAre("/usr/local/bin"));
}

TEST_F(MacSystemTest, BecomingActiveIsToldUntilTheTokenIsDropped) {
    MacApplication application;
    expectToldUntilDropped([&](auto handler) { return application.observeDidBecomeActive(handler); },
                           [] {
                               post(NSApplicationDidBecomeActiveNotification);
                               post(NSApplicationDidChangeScreenParametersNotification);
                           });
}

TEST_F(MacSystemTest, WhatStillWaitsInTheQueueIsNotToldAfterTheTokenIsDropped) {
    NSOperationQueue.mainQueue.isDeferring = YES;
    MacApplication application;
    int count = 0;
    auto subscription = application.observeDidBecomeActive([&] { ++count; });
    post(NSApplicationDidBecomeActiveNotification);
    [NSOperationQueue.mainQueue drain];
    EXPECT_EQ(count, 1);
    post(NSApplicationDidBecomeActiveNotification);
    subscription.reset();
    [NSOperationQueue.mainQueue drain];
    EXPECT_EQ(count, 1);
}

TEST_F(MacSystemTest, TheAccessibilityDatabaseIsHeardOfFromAllProcesses) {
    expectToldUntilDropped(observeAccessibilityDatabase, [] {
        post(@"com.apple.accessibility.api");
        [[NSDistributedNotificationCenter defaultCenter] post:@"com.apple.other" userInfo:nil];
        [[NSDistributedNotificationCenter defaultCenter] post:@"com.apple.accessibility.api" userInfo:nil];
    });
}

TEST_F(MacSystemTest, TheDelegateHearsOfTheLaunchOfReopeningAndOfTheEnd) {
    std::vector<std::string> heard;
    bool answer = true;
    NSApplication* const application = NSApplication.sharedApplication;
    {
        const MacApplicationDelegate delegate({.onDidFinishLaunching = [&] { heard.emplace_back("launched"); },
                                               .onShouldHandleReopen =
                                                   [&](bool hasVisibleWindows) {
                                                       heard.emplace_back(hasVisibleWindows ? "reopened with windows"
                                                                                            : "reopened");
                                                       return answer;
                                                   },
                                               .onWillTerminate = [&] { heard.emplace_back("ends"); }});
        [application finishLaunching];
        EXPECT_TRUE([application reopenWithVisibleWindows:YES]);
        answer = false;
        EXPECT_FALSE([application reopenWithVisibleWindows:NO]);
        [application willTerminate];
    }
    EXPECT_THAT(heard, ElementsAre("launched", "reopened with windows", "reopened", "ends"));
    EXPECT_EQ(application.delegate, nil);
}

TEST_F(MacSystemTest, ADelegateThatTheToolkitKeepsIsSilentOnceItsOwnerIsGone) {
    int count = 0;
    id<NSApplicationDelegate> kept = nil;
    {
        const MacApplicationDelegate delegate({.onDidFinishLaunching = [&] { ++count; }});
        kept = NSApplication.sharedApplication.delegate;
    }
    NSApplication.sharedApplication.delegate = kept;
    [NSApplication.sharedApplication finishLaunching];
    EXPECT_TRUE([NSApplication.sharedApplication reopenWithVisibleWindows:NO]);
    EXPECT_EQ(count, 0);
}

TEST_F(MacSystemTest, EveryStateOfTheLoginItemIsToldApart) {
    const MacLoginItem item;
    const std::vector<std::pair<SMAppServiceStatus, LoginItem::Status>> table{
        {SMAppServiceStatusNotRegistered, LoginItem::Status::notRegistered},
        {SMAppServiceStatusEnabled, LoginItem::Status::enabled},
        {SMAppServiceStatusRequiresApproval, LoginItem::Status::requiresApproval},
        {SMAppServiceStatusNotFound, LoginItem::Status::notFound},
        {static_cast<SMAppServiceStatus>(17), LoginItem::Status::notRegistered},
    };
    for (const auto& [status, expected] : table) {
        SMAppService.mainAppService.status = status;
        EXPECT_EQ(item.status(), expected) << static_cast<int>(status);
    }
}

TEST_F(MacSystemTest, ARefusalOfTheLoginItemComesWithDomainCodeAndWords) {
    MacLoginItem item;
    SMAppService.mainAppService.nextError = [[NSError alloc] initWithDomain:@"SMAppServiceErrorDomain"
                                                                       code:1
                                                                       text:@"Operation not permitted"];
    const auto refused = item.registerProgram();
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->domain, "SMAppServiceErrorDomain");
    EXPECT_EQ(refused->code, 1);
    EXPECT_EQ(refused->localizedDescription, "Operation not permitted");
    SMAppService.mainAppService.nextError = [[NSError alloc] initWithDomain:@"NSPOSIXErrorDomain"
                                                                       code:-5
                                                                       text:@"Input/output error"];
    const auto failed = item.unregisterProgram();
    ASSERT_TRUE(failed);
    EXPECT_EQ(failed->domain, "NSPOSIXErrorDomain");
    EXPECT_EQ(failed->code, -5);
    EXPECT_EQ(failed->localizedDescription, "Input/output error");
}

TEST_F(MacSystemTest, WhatOthersWroteIntoTheDefaultsIsReadAsFarAsItCanBe) {
    const MacUserDefaults defaults;
    auto* const store = NSUserDefaults.standardUserDefaults;
    [store setObject:[NSNumber numberWithInt:12] forKey:@"switcher.maximumVisibleRows"];
    [store setObject:@[ @"a", @2 ] forKey:@"mixed"];
    [store setObject:@{@"a" : @"b"} forKey:@"dictionary"];
    EXPECT_EQ(defaults.value("switcher.maximumVisibleRows"), DefaultsValue(std::int64_t{12}));
    EXPECT_FALSE(defaults.value("mixed"));
    EXPECT_FALSE(defaults.value("dictionary"));
}

TEST_F(MacSystemTest, LinesGoToTheLogOfTheirCategoryAndCanBeReadByAll) {
    MacLog log;
    log.write(LogLevel::standard, "permissions", "Services active");
    log.write(LogLevel::error, "input", "100 % of the taps failed: %s");
    log.write(LogLevel::debug, "permissions", "");
    const auto& lines = fake_mac::logLines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].subsystem, "com.larkmoor.Ferrowyn");
    EXPECT_EQ(lines[0].category, "permissions");
    EXPECT_EQ(lines[0].type, OS_LOG_TYPE_DEFAULT);
    EXPECT_EQ(lines[0].text, "Services active");
    EXPECT_EQ(lines[1].category, "input");
    EXPECT_EQ(lines[1].type, OS_LOG_TYPE_ERROR);
    EXPECT_EQ(lines[1].text, "100 % of the taps failed: %s");
    EXPECT_EQ(lines[2].type, OS_LOG_TYPE_DEBUG);
    EXPECT_EQ(fake_mac::logCount(), 2) << "one a category";
}

TEST_F(MacSystemTest, TheLogsSubsystemIsTheBundlesIdentifier) {
    startFrom(@"/Applications/Other.app", @"com.example.Other", [NSDictionary dictionary]);
    MacLog log;
    log.write(LogLevel::standard, "ui", "line");
    EXPECT_EQ(fake_mac::logLines().at(0).subsystem, "com.example.Other");
}

}  // namespace

}  // namespace ferrowyn::test
