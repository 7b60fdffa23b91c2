#include <gmock/gmock.h>

#include "platform/macos/mac_accessibility_notifications.h"
#include "platform/macos/mac_application.h"
#include "platform/macos/mac_background_work.h"
#include "platform/macos/mac_system_services.h"
#include "tests/macos/objc/mac_test.h"

namespace ferrowyn::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacSystemTest : public MacTest {
protected:
    static void startFrom(NSString* path, NSString* identifier, NSDictionary* info) {
        fake_mac::foundation().mainBundle = [[NSBundle alloc] initWithPath:path identifier:identifier info:info];
    }
    static void post(NSNotificationName name) { [NSNotificationCenter.defaultCenter post:name userInfo:nil]; }
    /// Fails when the work leaves an object behind.
    static void expectNothingLeftBy(const std::function<void()>& work) {
        const auto before = objc_runtime::liveObjectCount();
        work();
        EXPECT_EQ(objc_runtime::liveObjectCount(), before);
    }
    static void leaveAnObject() {
        NSObject* __autoreleasing const left = [[NSObject alloc] init];
        EXPECT_NE(left, nil);
    }
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
        const std::vector<std::pair<std::string, std::string>> titlesAndKeys{
            {"Einstellungen …", ","}, {"", ""}, {"Ferrowyn beenden", "q"}};
        ASSERT_EQ(rows.itemArray.count, titlesAndKeys.size());
        for (std::size_t index = 0; index < titlesAndKeys.size(); ++index) {
            NSMenuItem* const row = [rows.itemArray objectAtIndex:index];
            EXPECT_EQ(std::pair(text(row.title), text(row.keyEquivalent)), titlesAndKeys[index]);
            EXPECT_EQ(row.separatorItem, index == 1);
            EXPECT_EQ([rows choose:row], index != 1);
        }
        EXPECT_EQ(opened, 1);
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

TEST_F(MacSystemTest, ATaskOfAWorkerOrOfTheTapsThreadLeavesNothingBehind) {
    PromptWorkers workers;
    MacBackgroundWork work(workers);
    std::vector<std::size_t> iterations;
    expectNothingLeftBy([&] { work.run(leaveAnObject); });
    expectNothingLeftBy([&] { inAutoreleasePool(leaveAnObject); });
    expectNothingLeftBy([&] {
        const auto before = objc_runtime::liveObjectCount();
        work.concurrentPerform(2, [&](std::size_t index) {
            EXPECT_EQ(objc_runtime::liveObjectCount(), before) << "nor does one iteration to the next";
            leaveAnObject();
            iterations.push_back(index);
        });
    });
    EXPECT_THAT(iterations, ElementsAre(0U, 1U));
}

TEST_F(MacSystemTest, TheBundleSaysWhatTheProgramIs) {
    const auto outside = MacApplication().bundleInfo();
    EXPECT_FALSE(outside.name || outside.shortVersion || outside.copyright || outside.updateHost || outside.homePage);
    EXPECT_EQ(outside.path, "/usr/local/bin");
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
    startFrom(
        @"/Applications/Ferrowyn.app", nil,
        @{@"CFBundleShortVersionString" : @2});
    EXPECT_FALSE(MacApplication().bundleInfo().shortVersion) << "of another type";
}

TEST_F(MacSystemTest, TheSystemSaysItsVersionTheProcessAndTheYearOfTheUsersCalendar) {
    fake_mac::foundation().systemVersion = {14, 5, 1};
    EXPECT_EQ(MacApplication().systemVersion(), "14.5");
    EXPECT_EQ(MacApplication().ownPid(), fake_mac::ownPid);
    const WallTime summer{Seconds(1'782'900'000)};
    EXPECT_EQ(MacApplication().calendarYear(summer), 2026);
    fake_mac::foundation().calendarYearsAhead = 543;
    EXPECT_EQ(MacApplication().calendarYear(summer), 2569);
}

TEST_F(MacSystemTest, TheProgramIsNotPutToSleepWhileItHasNoWindow) {
    {
        const MacActivity activity;
        EXPECT_THAT(fake_mac::foundation().activities, ElementsAre(0xEFFFFFULL)) << "the Mac itself may sleep";
    }
    EXPECT_THAT(fake_mac::foundation().activities, IsEmpty());
}

TEST_F(MacSystemTest, ThePolicyAndTheRestAreAskedOfTheApplicationObject) {
    MacApplication application;
    const std::vector<std::pair<ActivationPolicy, NSApplicationActivationPolicy>> policies{
        {ActivationPolicy::accessory, NSApplicationActivationPolicyAccessory},
        {ActivationPolicy::prohibited, NSApplicationActivationPolicyProhibited},
        {ActivationPolicy::regular, NSApplicationActivationPolicyRegular},
    };
    for (const auto& [policy, expected] : policies) {
        application.setActivationPolicy(policy);
        EXPECT_EQ(NSApplication.sharedApplication.activationPolicy, expected);
    }
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

TEST_F(MacSystemTest, TheDelegateHearsOfTheLaunchOfReopeningAndOfTheEndWhileItsOwnerLives) {
    std::vector<std::string> heard;
    NSApplication* const application = NSApplication.sharedApplication;
    id<NSApplicationDelegate> kept = nil;
    {
        const MacApplicationDelegate delegate({.onDidFinishLaunching = [&] { heard.emplace_back("launched"); },
                                               .onShouldHandleReopen =
                                                   [&](bool hasVisibleWindows) {
                                                       heard.emplace_back(hasVisibleWindows ? "reopened with windows"
                                                                                            : "reopened");
                                                       return hasVisibleWindows;
                                                   },
                                               .onWillTerminate = [&] { heard.emplace_back("ends"); }});
        kept = application.delegate;
        [application finishLaunching];
        EXPECT_TRUE([application reopenWithVisibleWindows:YES]);
        EXPECT_FALSE([application reopenWithVisibleWindows:NO]);
        [application willTerminate];
    }
    EXPECT_EQ(application.delegate, nil);
    // The toolkit may keep it.
    application.delegate = kept;
    [application finishLaunching];
    EXPECT_TRUE([application reopenWithVisibleWindows:NO]);
    EXPECT_THAT(heard, ElementsAre("launched", "reopened with windows", "reopened", "ends"));
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
    const std::vector<LoginItem::Error> errors{{"SMAppServiceErrorDomain", 1, "Operation not permitted"},
                                               {"NSPOSIXErrorDomain", -5, "Input/output error"}};
    for (const auto& error : errors) {
        SMAppService.mainAppService.nextError =
            [[NSError alloc] initWithDomain:fake_mac::string(error.domain)
                                       code:error.code
                                       text:fake_mac::string(error.localizedDescription)];
        const auto refused = error.code == 1 ? item.registerProgram() : item.unregisterProgram();
        ASSERT_TRUE(refused);
        EXPECT_EQ(refused->domain, error.domain);
        EXPECT_EQ(refused->code, error.code);
        EXPECT_EQ(refused->localizedDescription, error.localizedDescription);
    }
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
    startFrom(@"/Applications/Other.app", @"com.example.Other", [NSDictionary dictionary]);
    MacLog().write(LogLevel::standard, "ui", "line");
    std::vector<std::string> lines;
    for (const auto& line : fake_mac::services().logLines) {
        lines.push_back(line.subsystem + " " + line.category + " " + std::to_string(line.type) + ": " + line.text);
    }
    EXPECT_THAT(lines, ElementsAre("com.larkmoor.Ferrowyn permissions 0: Services active",
                                   "com.larkmoor.Ferrowyn input 16: 100 % of the taps failed: %s",
                                   "com.larkmoor.Ferrowyn permissions 2: ", "com.example.Other ui 0: line"))
        << "the subsystem is the bundle's identifier";
    EXPECT_EQ(fake_mac::services().madeLogs, 3) << "one a category";
}

}  // namespace

}  // namespace ferrowyn::test
