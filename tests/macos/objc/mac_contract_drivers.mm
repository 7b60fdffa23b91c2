#include "platform/macos/cocoa.h"
#include "platform/macos/mac_screens.h"
#include "platform/macos/mac_system_services.h"
#include "platform/macos/mac_workspace.h"
#include "tests/macos/objc/mac_test.h"
#include "tests/platform/contract/contracts.h"

namespace ferrowyn::contract {

namespace {

/// The fake Mac with what it checks at its end, for use in a driver.
class FakeMac : public test::MacTest {
public:
    ~FakeMac() override { TearDown(); }

    /// Delivers what waits, as a turn of the main loop does.
    static void runMainLoop() {
        @autoreleasepool {
            [NSOperationQueue.mainQueue drain];
        }
    }

private:
    void TestBody() override {}
};

class MacWorkspaceDriver final : public WorkspaceDriver {
public:
    Workspace& workspace() override { return workspace_; }
    Pid launch(const std::string& name) override {
        NSRunningApplication* const application = [[NSRunningApplication alloc] initWithPid:++lastPid_];
        application.localizedName = nsString(name);
        [NSWorkspace.sharedWorkspace start:application];
        [NSWorkspace.sharedWorkspace post:NSWorkspaceDidLaunchApplicationNotification application:application];
        return lastPid_;
    }
    void quit(Pid pid) override {
        NSWorkspace* const workspace = NSWorkspace.sharedWorkspace;
        NSRunningApplication* const application = running(pid);
        application.terminated = YES;
        NSArray<NSRunningApplication*>* const before = workspace.runningApplications;
        workspace.runningApplications = nil;
        for (NSRunningApplication* each in before) {
            if (each != application) {
                [workspace start:each];
            }
        }
        [workspace post:NSWorkspaceDidTerminateApplicationNotification application:application];
    }
    void activate(Pid pid) override {
        NSWorkspace.sharedWorkspace.frontmostApplication = running(pid);
        [NSWorkspace.sharedWorkspace post:NSWorkspaceDidActivateApplicationNotification application:running(pid)];
    }
    bool runUntil(const std::function<bool()>& predicate) override {
        FakeMac::runMainLoop();
        return predicate();
    }

private:
    static NSRunningApplication* running(Pid pid) {
        return [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
    }
    FakeMac mac_;
    MacWorkspace workspace_;
    Pid lastPid_ = 500;
};

class MacScreensDriver final : public ScreensDriver {
public:
    MacScreensDriver() { showDock(0); }
    Screens& screens() override { return screens_; }
    void showDock(double height) override {
        NSScreen* const screen = [NSScreen screenWithFrame:NSMakeRect(0, 0, 1440, 900)
                                              visibleFrame:NSMakeRect(0, 0, 1440, 900 - height)];
        fake_mac::appKit().screens = @[ screen ];
        fake_mac::appKit().mainScreen = screen;
        [NSNotificationCenter.defaultCenter post:NSApplicationDidChangeScreenParametersNotification userInfo:nil];
    }
    void removeDock() override { showDock(0); }
    bool runUntil(const std::function<bool()>& predicate) override {
        FakeMac::runMainLoop();
        return predicate();
    }

private:
    FakeMac mac_;
    MacScreens screens_;
};

class MacUserDefaultsDriver final : public UserDefaultsDriver {
public:
    UserDefaults& defaults() override { return defaults_; }
    bool isStored(const std::string& key) override {
        return [NSUserDefaults.standardUserDefaults storedObjectForKey:nsString(key)] != nil;
    }

private:
    FakeMac mac_;
    MacUserDefaults defaults_;
};

class MacLoginItemDriver final : public LoginItemDriver {
public:
    LoginItem& item() override { return item_; }
    void refuse() override {
        SMAppService.mainAppService.nextError = [[NSError alloc] initWithDomain:@"SMAppServiceErrorDomain"
                                                                           code:1
                                                                           text:@"Operation not permitted"];
    }

private:
    FakeMac mac_;
    MacLoginItem item_;
};

FERROWYN_HOLDS_TO(WorkspaceContract, Mac, std::make_unique<MacWorkspaceDriver>());
FERROWYN_HOLDS_TO(ScreensContract, Mac, std::make_unique<MacScreensDriver>());
FERROWYN_HOLDS_TO(UserDefaultsContract, Mac, std::make_unique<MacUserDefaultsDriver>());
FERROWYN_HOLDS_TO(LoginItemContract, Mac, std::make_unique<MacLoginItemDriver>());

}  // namespace

}  // namespace ferrowyn::contract
