// The application and its menus, the workspace, screens, events and the menu bar.
#include <algorithm>
#include <string>
#include <vector>

#import "tests/macos/objc/fakes/appkit.h"

using fake_mac::appKit;
using fake_mac::utf8;

extern "C" void objc_msgSend();

namespace fake_mac {

AppKit& appKit() {
    static AppKit state;
    return state;
}

}  // namespace fake_mac

#define CONSTANT(_name) NSString* const _name = @ #_name

CONSTANT(NSApplicationDidBecomeActiveNotification);
CONSTANT(NSApplicationDidChangeScreenParametersNotification);
CONSTANT(NSWorkspaceApplicationKey);
CONSTANT(NSWorkspaceDidLaunchApplicationNotification);
CONSTANT(NSWorkspaceDidTerminateApplicationNotification);
CONSTANT(NSWorkspaceDidActivateApplicationNotification);
CONSTANT(NSWorkspaceDidHideApplicationNotification);
CONSTANT(NSWorkspaceDidUnhideApplicationNotification);
CONSTANT(NSWorkspaceActiveSpaceDidChangeNotification);

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
}
+ (NSWorkspace*)sharedWorkspace {
    return fake_mac::shared(appKit().workspace);
}
- (NSNotificationCenter*)notificationCenter {
    return fake_mac::shared(_notificationCenter);
}
- (BOOL)openURL:(NSURL*)url {
    _openedAddresses.push_back(utf8(url.absoluteString));
    return !_refusesToOpen;
}
- (NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier {
    for (const std::string name : {"Mail", "Unnamed", "Broken"}) {
        if (utf8(bundleIdentifier) == "com.example." + name) {
            return [NSURL URLWithString:fake_mac::string("file:///Applications/" + name + ".app")];
        }
    }
    return nil;
}
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)fileURLs {
    for (NSURL* url in fileURLs) {
        _revealedPaths.push_back(utf8(url.path));
    }
}
- (NSImage*)iconForFile:(NSString*)fullPath {
    _iconPaths.push_back(utf8(fullPath));
    return [NSImage icon];
}
- (NSImage*)iconForContentType:(UTType*)contentType {
    return contentType == UTTypeApplicationBundle ? [NSImage icon] : [[NSImage alloc] init];
}
- (void)start:(NSRunningApplication*)application {
    NSMutableArray<NSRunningApplication*>* const all = [NSMutableArray array];
    for (NSRunningApplication* other in _runningApplications) {
        [all addObject:other];
    }
    [all addObject:application];
    self.runningApplications = all;
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
+ (NSArray<NSScreen*>*)screens {
    return appKit().screens ?: [NSArray array];
}
+ (NSScreen*)mainScreen {
    return appKit().mainScreen;
}
@end

@implementation NSEvent
+ (NSEvent*)eventAt:(NSPoint)place {
    NSEvent* const event = [[NSEvent alloc] init];
    event->_locationInWindow = place;
    return event;
}
+ (NSPoint)mouseLocation {
    return appKit().mouseLocation;
}
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))block {
    if (appKit().refusesMonitors) {
        return nil;
    }
    appKit().lastMonitorMask = mask;
    appKit().monitors.push_back({[[NSObject alloc] init], mask, [block copy]});
    return appKit().monitors.back().token;
}
+ (void)removeMonitor:(id)eventMonitor {
    std::erase_if(appKit().monitors, [eventMonitor](const auto& monitor) { return monitor.token == eventMonitor; });
}
+ (void)pressElsewhere:(NSEventType)type {
    @autoreleasepool {
        NSEvent* const event = [[NSEvent alloc] init];
        event->_type = type;
        const auto current = appKit().monitors;
        for (const auto& monitor : current) {
            if ((monitor.mask & (1ULL << type)) != 0) {
                monitor.handler(event);
            }
        }
    }
}
@end

@implementation NSApplication
+ (NSApplication*)sharedApplication {
    return fake_mac::shared(appKit().application);
}
- (NSArray<NSWindow*>*)windows {
    NSMutableArray* const all = [NSMutableArray array];
    for (NSWindow* window : appKit().windows) {
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
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy {
    _activationPolicy = activationPolicy;
    _calls.emplace_back("setActivationPolicy");
    return YES;
}
- (void)activateIgnoringOtherApps:(BOOL)ignoreOtherApps {
    _calls.emplace_back(ignoreOtherApps ? "activate ignoring others" : "activate");
}
- (void)terminate:(id)sender {
    _calls.emplace_back("terminate");
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

@implementation NSMenuItem
+ (NSMenuItem*)separatorItem {
    NSMenuItem* const item = [[self alloc] initWithTitle:@"" action:nil keyEquivalent:@""];
    item.separatorItem = YES;
    return item;
}
- (instancetype)initWithTitle:(NSString*)string action:(SEL)selector keyEquivalent:(NSString*)charCode {
    self = [super init];
    _title = [string copy];
    _action = selector;
    _keyEquivalent = [charCode copy];
    _enabled = YES;
    return self;
}
- (void)setView:(NSView*)view {
    _view = view;
    view.enclosingMenuItem = self;
}
@end

@implementation NSMenu {
    NSMutableArray<NSMenuItem*>* _items;
}
- (instancetype)initWithTitle:(NSString*)title {
    self = [super init];
    _title = [title copy];
    _autoenablesItems = YES;
    _items = [NSMutableArray array];
    return self;
}
- (void)addItem:(NSMenuItem*)newItem {
    newItem.menu = self;
    [_items addObject:newItem];
}
- (NSArray*)itemArray {
    return [_items copy];
}
- (void)cancelTracking {
    _wasCancelled = YES;
}
- (BOOL)choose:(NSMenuItem*)item {
    const id target = item.target;
    const bool isEnabled =
        _autoenablesItems ? target != nil && [target respondsToSelector:item.action] : item.enabled != NO;
    if (!isEnabled || target == nil || item.action == nullptr) {
        return NO;
    }
    @autoreleasepool {
        using Send = void (*)(id, SEL, id);
        reinterpret_cast<Send>(objc_msgSend)(target, item.action, item);
    }
    return YES;
}
@end

@implementation NSStatusItem {
    NSStatusBarButton* _button;
}
- (NSStatusBarButton*)button {
    return fake_mac::shared(_button);
}
@end

@implementation NSStatusBar
+ (NSStatusBar*)systemStatusBar {
    return [[NSStatusBar alloc] init];
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    NSStatusItem* const item = [[NSStatusItem alloc] init];
    item.length = length;
    appKit().statusItems.push_back(item);
    return item;
}
- (void)removeStatusItem:(NSStatusItem*)item {
    std::erase_if(appKit().statusItems, [item](NSStatusItem* other) { return other == item; });
}
+ (NSStatusItem*)onlyItem {
    return appKit().statusItems.size() == 1 ? appKit().statusItems.front() : nil;
}
@end
