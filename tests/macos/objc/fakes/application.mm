#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#import "tests/macos/objc/fakes/appkit.h"

namespace {

/// What the system keeps for the life of a process.
struct AppKitState {
    NSApplication* application;
    NSWorkspace* workspace;
    NSArray<NSScreen*>* screens;
    NSScreen* mainScreen;
    NSPoint mouseLocation{};
    bool refusesMonitors = false;
};

AppKitState state;

struct Monitor {
    id token;
    NSEventMask mask;
    void (^handler)(NSEvent*);
};

/// A monitor lives until it is removed, whatever its owner does.
std::vector<Monitor>& monitors() {
    static std::vector<Monitor> all;
    return all;
}

NSEventMask lastMonitorMask = 0;

std::vector<NSWindow * __weak>& windows() {
    static std::vector<NSWindow * __weak> all;
    return all;
}

std::string text(NSString* string) {
    return string.UTF8String == nullptr ? "" : string.UTF8String;
}

}  // namespace

namespace fake_mac {

void registerWindow(NSWindow* window) {
    windows().push_back(window);
}

void forgetAppKit() {
    state = {};
    lastMonitorMask = 0;
    fills().clear();
    drawnIconSizes().clear();
    drawnSymbols().clear();
    systemColors().clear();
    windows().clear();
}

}  // namespace fake_mac

NSNotificationName const NSApplicationDidBecomeActiveNotification = @"NSApplicationDidBecomeActiveNotification";
NSNotificationName const NSApplicationDidChangeScreenParametersNotification =
    @"NSApplicationDidChangeScreenParametersNotification";
NSString* const NSWorkspaceApplicationKey = @"NSWorkspaceApplicationKey";
NSNotificationName const NSWorkspaceDidLaunchApplicationNotification = @"NSWorkspaceDidLaunchApplicationNotification";
NSNotificationName const NSWorkspaceDidTerminateApplicationNotification =
    @"NSWorkspaceDidTerminateApplicationNotification";
NSNotificationName const NSWorkspaceDidActivateApplicationNotification =
    @"NSWorkspaceDidActivateApplicationNotification";
NSNotificationName const NSWorkspaceDidHideApplicationNotification = @"NSWorkspaceDidHideApplicationNotification";
NSNotificationName const NSWorkspaceDidUnhideApplicationNotification = @"NSWorkspaceDidUnhideApplicationNotification";
NSNotificationName const NSWorkspaceActiveSpaceDidChangeNotification = @"NSWorkspaceActiveSpaceDidChangeNotification";

@implementation UTType
@end

// Any constant that nothing else is.
UTType* const UTTypeApplicationBundle = static_cast<UTType*>(static_cast<id>(@"com.apple.application-bundle"));

@implementation NSRunningApplication
- (BOOL)unhide {
    _hidden = NO;
    return YES;
}
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options {
    _lastOptions = options;
    _active = YES;
    return YES;
}
+ (instancetype)runningApplicationWithProcessIdentifier:(int)pid {
    for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
        if (application.processIdentifier == pid) {
            return application;
        }
    }
    return nil;
}
- (instancetype)initWithPid:(int)pid {
    self = [super init];
    _processIdentifier = pid;
    return self;
}
@end

@implementation NSWorkspace {
    NSNotificationCenter* _notificationCenter;
    std::vector<std::string> _openedAddresses;
    std::vector<std::string> _revealedPaths;
    std::vector<std::string> _iconPaths;
}
+ (NSWorkspace*)sharedWorkspace {
    if (state.workspace == nil) {
        state.workspace = [[NSWorkspace alloc] init];
    }
    return state.workspace;
}
- (NSNotificationCenter*)notificationCenter {
    if (_notificationCenter == nil) {
        _notificationCenter = [[NSNotificationCenter alloc] init];
    }
    return _notificationCenter;
}
- (BOOL)openURL:(NSURL*)url {
    _openedAddresses.push_back(text(url.absoluteString));
    return !_refusesToOpen;
}
- (NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier {
    for (const std::string name : {"Mail", "Unnamed", "Broken"}) {
        if (text(bundleIdentifier) == "com.example." + name) {
            const std::string place = "file:///Applications/" + name + ".app";
            return [NSURL URLWithString:[[NSString alloc] initWithBytes:place.data()
                                                                 length:place.size()
                                                               encoding:NSUTF8StringEncoding]];
        }
    }
    return nil;
}
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)fileURLs {
    for (NSURL* url in fileURLs) {
        _revealedPaths.push_back(text(url.path));
    }
}
- (NSImage*)iconForFile:(NSString*)fullPath {
    _iconPaths.emplace_back(fullPath.UTF8String);
    return [NSImage icon];
}
- (NSImage*)iconForContentType:(UTType*)contentType {
    return contentType == UTTypeApplicationBundle ? [NSImage icon] : [[NSImage alloc] init];
}
- (std::vector<std::string>)openedAddresses {
    return _openedAddresses;
}
- (std::vector<std::string>)revealedPaths {
    return _revealedPaths;
}
- (std::vector<std::string>)iconPaths {
    return _iconPaths;
}
- (void)post:(NSNotificationName)name application:(NSRunningApplication*)application {
    [self.notificationCenter
            post:name
        userInfo:application == nil ? [NSDictionary dictionary] : @{NSWorkspaceApplicationKey : application}];
}
@end

@implementation NSScreen
+ (NSScreen*)screenWithFrame:(NSRect)frame visibleFrame:(NSRect)visibleFrame {
    NSScreen* const screen = [[NSScreen alloc] init];
    screen->_frame = frame;
    screen->_visibleFrame = visibleFrame;
    return screen;
}
+ (void)setScreens:(NSArray<NSScreen*>*)screens main:(NSScreen*)main {
    state.screens = screens;
    state.mainScreen = main;
}
+ (NSArray<NSScreen*>*)screens {
    return state.screens ?: [NSArray array];
}
+ (NSScreen*)mainScreen {
    return state.mainScreen;
}
@end

@implementation NSEvent
+ (NSEvent*)eventAt:(NSPoint)place {
    NSEvent* const event = [[NSEvent alloc] init];
    event->_locationInWindow = place;
    return event;
}
+ (NSPoint)mouseLocation {
    return state.mouseLocation;
}
+ (void)setMouseLocation:(NSPoint)place {
    state.mouseLocation = place;
}
+ (void)setRefusesMonitors:(BOOL)refuses {
    state.refusesMonitors = refuses;
}
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))block {
    if (state.refusesMonitors) {
        return nil;
    }
    lastMonitorMask = mask;
    const id token = [[NSObject alloc] init];
    monitors().push_back({token, mask, [block copy]});
    return token;
}
+ (void)removeMonitor:(id)eventMonitor {
    std::erase_if(monitors(), [eventMonitor](const Monitor& monitor) { return monitor.token == eventMonitor; });
}
+ (NSUInteger)monitorCount {
    return monitors().size();
}
+ (NSEventMask)lastMonitorMask {
    return lastMonitorMask;
}
+ (void)pressElsewhere:(NSEventType)type {
    @autoreleasepool {
        NSEvent* const event = [[NSEvent alloc] init];
        event->_type = type;
        const auto current = monitors();
        for (const Monitor& monitor : current) {
            if ((monitor.mask & (1ULL << type)) != 0) {
                monitor.handler(event);
            }
        }
    }
}
@end

@implementation NSApplication {
    std::vector<std::string> _calls;
    NSApplicationActivationPolicy _policy;
    NSImage* _applicationIconImage;
}
+ (NSApplication*)sharedApplication {
    if (state.application == nil) {
        state.application = [[NSApplication alloc] init];
    }
    return state.application;
}
- (NSArray<NSWindow*>*)windows {
    NSMutableArray* const all = [NSMutableArray array];
    for (NSWindow* window : windows()) {
        if (window != nil) {
            [all addObject:window];
        }
    }
    return all;
}
- (NSImage*)applicationIconImage {
    if (_applicationIconImage == nil) {
        _applicationIconImage = [NSImage icon];
    }
    return _applicationIconImage;
}
- (void)setApplicationIconImage:(NSImage*)image {
    _applicationIconImage = image;
}
- (NSApplicationActivationPolicy)policy {
    return _policy;
}
- (NSApplicationActivationPolicy)activationPolicy {
    return _policy;
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy {
    _policy = activationPolicy;
    _calls.emplace_back("setActivationPolicy");
    return YES;
}
- (void)activateIgnoringOtherApps:(BOOL)ignoreOtherApps {
    _calls.emplace_back(ignoreOtherApps ? "activate ignoring others" : "activate");
}
- (void)terminate:(id)sender {
    _calls.emplace_back("terminate");
}
- (std::vector<std::string>)calls {
    return _calls;
}
- (void)finishLaunching {
    const id<NSApplicationDelegate> told = self.delegate;
    if ([told respondsToSelector:@selector(applicationDidFinishLaunching:)]) {
        @autoreleasepool {
            [told applicationDidFinishLaunching:[[NSNotification alloc] init]];
        }
    }
}
- (BOOL)reopenWithVisibleWindows:(BOOL)hasVisibleWindows {
    const id<NSApplicationDelegate> told = self.delegate;
    return [told respondsToSelector:@selector(applicationShouldHandleReopen:hasVisibleWindows:)]
               ? [told applicationShouldHandleReopen:self hasVisibleWindows:hasVisibleWindows]
               : YES;
}
- (void)willTerminate {
    const id<NSApplicationDelegate> told = self.delegate;
    if ([told respondsToSelector:@selector(applicationWillTerminate:)]) {
        @autoreleasepool {
            [told applicationWillTerminate:[[NSNotification alloc] init]];
        }
    }
}
@end
