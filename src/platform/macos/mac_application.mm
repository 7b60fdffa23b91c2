#include "platform/macos/mac_application.h"

#import <AppKit/AppKit.h>

#include <cmath>
#include <utility>

#include "platform/macos/cocoa.h"

namespace ferrowyn {

namespace {

NSApplicationActivationPolicy systemPolicy(ActivationPolicy policy) {
    switch (policy) {
        case ActivationPolicy::regular:
            return NSApplicationActivationPolicyRegular;
        case ActivationPolicy::accessory:
            return NSApplicationActivationPolicyAccessory;
        case ActivationPolicy::prohibited:
            return NSApplicationActivationPolicyProhibited;
    }
    return NSApplicationActivationPolicyRegular;
}

}  // namespace

Pid MacApplication::ownPid() const {
    return NSProcessInfo.processInfo.processIdentifier;
}

Subscription MacApplication::observeDidBecomeActive(std::function<void()> handler) {
    return observeNotification(NSNotificationCenter.defaultCenter, NSApplicationDidBecomeActiveNotification,
                               [handler = std::move(handler)](NSNotification*) { handler(); });
}

/// A value that the build was not given is an empty text in the property list.
static std::optional<std::string> addressOrNothing(id _Nullable value) {
    auto text = stringOrNothing(value);
    return text && !text->empty() ? text : std::nullopt;
}

BundleInfo MacApplication::bundleInfo() const {
    NSBundle* const bundle = NSBundle.mainBundle;
    return {.name = stringOrNothing([bundle objectForInfoDictionaryKey:@"CFBundleName"]),
            .shortVersion = stringOrNothing([bundle objectForInfoDictionaryKey:@"CFBundleShortVersionString"]),
            .copyright = stringOrNothing([bundle objectForInfoDictionaryKey:@"NSHumanReadableCopyright"]),
            .path = utf8(bundle.bundlePath),
            .updateHost = addressOrNothing([bundle objectForInfoDictionaryKey:@"FerrowynUpdateHost"]),
            .homePage = addressOrNothing([bundle objectForInfoDictionaryKey:@"FerrowynHomePage"])};
}

std::string MacApplication::systemVersion() const {
    const NSOperatingSystemVersion version = NSProcessInfo.processInfo.operatingSystemVersion;
    return std::to_string(version.majorVersion) + "." + std::to_string(version.minorVersion);
}

std::optional<int> MacApplication::calendarYear(WallTime moment) const {
    NSDate* const date = [NSDate dateWithTimeIntervalSince1970:moment.time_since_epoch().count()];
    return static_cast<int>([NSCalendar.currentCalendar component:NSCalendarUnitYear fromDate:date]);
}

void MacApplication::setActivationPolicy(ActivationPolicy policy) {
    [NSApplication.sharedApplication setActivationPolicy:systemPolicy(policy)];
}

void MacApplication::activate() {
    [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
}

void MacApplication::bringToFront(WindowId window) {
    for (NSWindow* candidate in NSApplication.sharedApplication.windows) {
        if (static_cast<WindowId>(addressOf(candidate.contentView)) == window) {
            [candidate makeKeyAndOrderFront:nil];
            return;
        }
    }
}

void MacApplication::terminate() {
    [NSApplication.sharedApplication terminate:nil];
}

void MacApplication::revealInFileManager() {
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ NSBundle.mainBundle.bundleURL ]];
}

}  // namespace ferrowyn

@interface FerrowynApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithEvents:(ferrowyn::MacApplicationEvents)events;
/// Ends all callbacks: the toolkit may retain the delegate for longer than its owner lives.
- (void)forgetEvents;
@end

@implementation FerrowynApplicationDelegate {
    ferrowyn::MacApplicationEvents _events;
}

- (instancetype)initWithEvents:(ferrowyn::MacApplicationEvents)events {
    self = [super init];
    if (self != nil) {
        _events = std::move(events);
    }
    return self;
}

- (void)forgetEvents {
    _events = {};
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    static_cast<void>(notification);
    if (_events.onDidFinishLaunching) {
        _events.onDidFinishLaunching();
    }
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows {
    static_cast<void>(sender);
    return _events.onShouldHandleReopen ? _events.onShouldHandleReopen(hasVisibleWindows) : YES;
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    static_cast<void>(notification);
    if (_events.onWillTerminate) {
        _events.onWillTerminate();
    }
}

@end

namespace ferrowyn {

struct MacApplicationDelegate::Parts {
    FerrowynApplicationDelegate* delegate;
};

MacApplicationDelegate::MacApplicationDelegate(MacApplicationEvents events)
    : parts_(new Parts{[[FerrowynApplicationDelegate alloc] initWithEvents:std::move(events)]}) {
    // The application does not retain its delegate.
    NSApplication.sharedApplication.delegate = parts_->delegate;
}

MacApplicationDelegate::~MacApplicationDelegate() {
    [parts_->delegate forgetEvents];
    if (NSApplication.sharedApplication.delegate == parts_->delegate) {
        NSApplication.sharedApplication.delegate = nil;
    }
}

}  // namespace ferrowyn

/// The target of the rows that the program answers itself.
@interface FerrowynApplicationMenuTarget : NSObject
- (instancetype)initWithOnOpenSettings:(std::function<void()>)onOpenSettings;
- (void)openSettings:(id)sender;
@end

@implementation FerrowynApplicationMenuTarget {
    std::function<void()> _onOpenSettings;
}

- (instancetype)initWithOnOpenSettings:(std::function<void()>)onOpenSettings {
    self = [super init];
    if (self != nil) {
        _onOpenSettings = std::move(onOpenSettings);
    }
    return self;
}

- (void)openSettings:(id)sender {
    static_cast<void>(sender);
    _onOpenSettings();
}

@end

namespace ferrowyn {

struct MacApplicationMenu::Parts {
    FerrowynApplicationMenuTarget* target;
    NSMenu* mainMenu;
};

MacApplicationMenu::MacApplicationMenu(const MacApplicationMenuTitles& titles, std::function<void()> onOpenSettings)
    : parts_(
          new Parts{.target = [[FerrowynApplicationMenuTarget alloc] initWithOnOpenSettings:std::move(onOpenSettings)],
                    .mainMenu = [[NSMenu alloc] initWithTitle:@""]}) {
    // The system shows the application's name as the title of the first menu.
    auto* const menu = [[NSMenu alloc] initWithTitle:@""];
    // A row's modifier is Command unless it says otherwise.
    auto* const settings = [[NSMenuItem alloc] initWithTitle:nsString(titles.settings)
                                                      action:@selector(openSettings:)
                                               keyEquivalent:@","];
    settings.target = parts_->target;
    [menu addItem:settings];
    [menu addItem:[NSMenuItem separatorItem]];
    auto* const quit = [[NSMenuItem alloc] initWithTitle:nsString(titles.quit)
                                                  action:@selector(terminate:)
                                           keyEquivalent:@"q"];
    quit.target = NSApplication.sharedApplication;
    [menu addItem:quit];
    auto* const row = [[NSMenuItem alloc] initWithTitle:@"" action:nil keyEquivalent:@""];
    row.submenu = menu;
    [parts_->mainMenu addItem:row];
    NSApplication.sharedApplication.mainMenu = parts_->mainMenu;
}

MacApplicationMenu::~MacApplicationMenu() {
    if (NSApplication.sharedApplication.mainMenu == parts_->mainMenu) {
        NSApplication.sharedApplication.mainMenu = nil;
    }
}

int configureUtilityWindow(std::uintptr_t view, bool isResizable) {
    constexpr NSWindowStyleMask fixedSize = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                            NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskFullSizeContentView;
    NSWindow* const window = viewAt(view).window;
    window.styleMask = isResizable ? fixedSize | NSWindowStyleMaskResizable : fixedSize;
    window.titlebarAppearsTransparent = YES;
    window.releasedWhenClosed = NO;
    return static_cast<int>(std::ceil(window.frame.size.height - NSMaxY(window.contentLayoutRect)));
}

}  // namespace ferrowyn
